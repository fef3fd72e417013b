// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "PlainJsonReader.h"

#include "DnUtil.h"
#include "base/DnView.h"
#include "base/RootObject.h"
#include "model/KeyValues.h"
#include "yang/instances/PlainJsonValue.h"
#include "yang/source/YangContext.h"
#include "yang/types/TypeFacts.h"

#include <libyang/libyang.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace OrvHost {

PlainJsonReader::PlainJsonReader(const YangSchema& schema) : mPlaces(schema) {}

/// One pass over one text. Every function returns false if the text is not plain; nothing of it is
/// used then.
class PlainJsonReader::Reading {
    using Member = DataPlaces::Member;
    using Place = DataPlaces::Place;

public:
    Reading(PlainJsonReader& reader, std::string_view text)
        : mReader(reader), mContext(reader.mPlaces.schema().context().get()), mText(text) {}

    bool readTop() {
        const Member* const only = mText.take('{') ? next(mReader.mPlaces.top(), nullptr) : nullptr;
        return only != nullptr && readAround(*only, "") && mText.take('}') && mText.isAtEnd();
    }
    std::vector<DataObject> takeObjects() { return std::move(mObjects); }

private:
    /// The member whose name comes next; null if the place has none of that name.
    const Member* next(const Place& place, const Member* former) {
        const auto name = mText.string();
        if (!name || !mText.take(':')) {
            return nullptr;
        }
        return place.after(former, [&](const Member& one) { return one.isCalled(*name); });
    }
    const Place& insideOf(const Member& member) { return mReader.mPlaces.insideOf(member); }

    /// Calls readOne for each member of an object of JSON. The keys of the place come first, and
    /// values in their order; the lists of objects may change places.
    template <class ReadOne>
    bool readMembers(const Place& place, const ReadOne& readOne) {
        if (!mText.take('{')) {
            return false;
        }
        std::vector<Block> blocks;
        const Member* member = nullptr;
        const Member* lastValue = nullptr;
        std::size_t keys = 0;
        do {
            member = next(place, member);
            if (member == nullptr || (!member->isKey && keys < place.keys)) {
                return false;
            }
            if (member->object == nullptr) {
                if (lastValue != nullptr && member <= lastValue) {
                    return false;
                }
                lastValue = member;
            }
            const std::size_t begin = mObjects.size();
            if (!readOne(*member)) {
                return false;
            }
            if (mObjects.size() > begin) {
                blocks.push_back({member, begin, mObjects.size()});
            }
            keys += member->isKey ? 1 : 0;
        } while (mText.take(','));
        return keys == place.keys && mText.take('}') && bringIntoOrder(blocks);
    }

    /// The objects that were read for one member.
    struct Block {
        const Member* member;
        std::size_t begin; ///< in mObjects
        std::size_t end;
    };
    /// Puts the objects at the end of mObjects into the order of their members. False if a member
    /// came twice.
    bool bringIntoOrder(std::vector<Block>& blocks) {
        const auto isAfter = [](const Block& one, const Block& other) {
            return one.member >= other.member;
        };
        if (std::adjacent_find(blocks.begin(), blocks.end(), isAfter) == blocks.end()) {
            return true;
        }
        const std::size_t begin = blocks.front().begin;
        std::sort(blocks.begin(), blocks.end(),
                  [](const Block& one, const Block& other) { return one.member < other.member; });
        if (std::adjacent_find(blocks.begin(), blocks.end(), isAfter) != blocks.end()) {
            return false;
        }
        std::vector<DataObject> ordered;
        ordered.reserve(mObjects.size() - begin);
        for (const Block& block : blocks) {
            std::move(iteratorAt(block.begin), iteratorAt(block.end), std::back_inserter(ordered));
        }
        std::move(ordered.begin(), ordered.end(), iteratorAt(begin));
        return true;
    }
    std::vector<DataObject>::iterator iteratorAt(std::size_t at) {
        return mObjects.begin() + static_cast<std::ptrdiff_t>(at);
    }

    template <class ReadOne>
    bool readArray(const ReadOne& readOne) {
        if (!mText.take('[')) {
            return false;
        }
        do {
            if (!readOne()) {
                return false;
            }
        } while (mText.take(','));
        return mText.take(']');
    }

    /// Objects, or containers around objects.
    bool readAround(const Member& member, const std::string& parentDn) {
        if (member.object != nullptr) {
            return readArray([&] { return readObject(member, parentDn); });
        }
        return member.isTransparent && readMembers(insideOf(member), [&](const Member& inner) {
                   return readAround(inner, parentDn);
               });
    }

    bool readObject(const Member& member, const std::string& parentDn) {
        const Place& place = insideOf(member);
        const std::size_t at = mObjects.size();
        mObjects.emplace_back();
        mObjects[at].moc = member.object->moc;
        mObjects[at].isBare = true;
        std::vector<std::string> keys;
        const auto readOne = [&](const Member& inner) {
            if (!inner.isKey) {
                return readContent(inner, at);
            }
            if (!readKey(inner, keys)) {
                return false;
            }
            mObjects[at].line = mText.line();
            return keys.size() < place.keys ||
                   nameObject(mObjects[at], *member.object, keys, parentDn);
        };
        return readMembers(place, readOne);
    }
    bool readKey(const Member& member, std::vector<std::string>& keys) {
        const auto value =
            PlainJsonValue::read(mText, mContext, member.node, kindOf(typeOfLeaf(member.node)));
        // The text of a number with a point has a form of its own, and so has what is empty.
        if (!value || std::holds_alternative<double>(*value) ||
            typeOfLeaf(member.node)->basetype == LY_TYPE_EMPTY) {
            return false;
        }
        keys.push_back(toText(*value));
        return true;
    }
    static bool nameObject(DataObject& object, const ObjectShape& shape,
                           const std::vector<std::string>& keys, const std::string& parentDn) {
        const std::string name = keys.size() == 1 ? keys.front() : joinKeys(keys);
        object.dn = DnView(parentDn).child(shape.className, name);
        const bool isRootOfManyKeys = keys.size() > 1 && shape.className == kRootClass;
        return !isRootOfManyKeys && Orv::DnUtil::validateMoNamingAttr(name.c_str());
    }

    /// What stands in an object, \p at its place in mObjects.
    bool readContent(const Member& member, std::size_t at) {
        if (member.object != nullptr) {
            const std::string parentDn = mObjects[at].dn;
            return readArray([&] { return readObject(member, parentDn); });
        }
        mObjects[at].isBare = false;
        if (member.isTransparent) {
            return readMembers(insideOf(member), [&](const Member& inner) {
                return !inner.isKey && readContent(inner, at);
            });
        }
        return readAttribute(member, mObjects[at].attributes);
    }

    bool readAttribute(const Member& member, std::vector<NamedValue>& values) {
        const ValueShape* const shape = member.value;
        // Another node of the same name would go on with the values of this one.
        if (shape == nullptr || (!values.empty() && values.back().first == shape->name)) {
            return false;
        }
        std::vector<Value>& all =
            values.emplace_back(shape->name, AttributeValue{shape->kind, {}}).second.values;
        const auto readOne = [&] { return readValue(member, all); };
        const bool isList = (member.node->nodetype & (LYS_LIST | LYS_LEAFLIST)) != 0;
        return (isList ? readArray(readOne) : readOne()) && (shape->isMultiple || all.size() == 1);
    }
    bool readValue(const Member& member, std::vector<Value>& values) {
        if (member.value->kind == ValueKind::Struct) {
            StructValue whole;
            const bool isRead = readMembers(insideOf(member), [&](const Member& inner) {
                return readAttribute(inner, whole.members);
            });
            values.emplace_back(std::move(whole));
            return isRead;
        }
        auto value = PlainJsonValue::read(mText, mContext, member.node, member.value->kind);
        if (value) {
            values.push_back(std::move(*value));
        }
        return value.has_value();
    }

    PlainJsonReader& mReader;
    const ly_ctx* mContext;
    JsonCursor mText;
    std::vector<DataObject> mObjects;
};

std::optional<std::vector<DataObject>> PlainJsonReader::read(std::string_view text) {
    Reading reading(*this, text);
    if (!reading.readTop()) {
        return std::nullopt;
    }
    return reading.takeObjects();
}

}
