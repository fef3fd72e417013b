// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "PictureReader.h"

#include "base/Counted.h"
#include "base/DnView.h"
#include "cli/errors/CliErrors.h"
#include "client/ClientSession.h"
#include "client/CountBelow.h"
#include "client/DnResolver.h"

#include <unordered_set>
#include <utility>

namespace OrvHost {

namespace {

bool holdsReferences(const TypeDef& type) {
    if (type.kind == ValueKind::MoRef) {
        return true;
    }
    for (const AttributeDef& member : type.members) {
        if (holdsReferences(member.type)) {
            return true;
        }
    }
    return false;
}

// A value that is not a text is a reference without a target.
std::string targetIn(const ReadSlot& slot) {
    const auto* text = std::get_if<std::string>(&slot);
    return text != nullptr ? *text : std::string();
}

const ReadValue* memberIn(const ReadSlot& slot, const std::string& name) {
    const auto* members = std::get_if<ReadStruct>(&slot);
    if (members == nullptr) {
        return nullptr;
    }
    for (const NamedReadValue& member : members->members) {
        if (member.first == name) {
            return &member.second;
        }
    }
    return nullptr;
}

void addLinks(const std::string& path, const TypeDef& type, const ReadValue& value,
              std::vector<PicturedLink>& links) {
    for (const ReadSlot& slot : value.slots) {
        if (type.kind == ValueKind::MoRef) {
            links.push_back({path, targetIn(slot)});
            continue;
        }
        for (const AttributeDef& member : type.members) {
            if (const ReadValue* inner = memberIn(slot, member.name)) {
                addLinks(path + "." + member.name, member.type, *inner, links);
            }
        }
    }
}

AttributeValue referencesIn(const ReadValue& value) {
    AttributeValue references{ValueKind::MoRef, {}};
    for (const ReadSlot& slot : value.slots) {
        references.values.emplace_back(targetIn(slot));
    }
    return references;
}

/// Counts objects level by level, and throws if there are too many.
class Room {
public:
    explicit Room(const TreeExtent& extent)
        : mExtent(extent),
          // Only the page is read with values.
          mMoreAdvice(extent.wantsValues ? "" : "; --html makes a page for many objects") {}

    void take(std::uint64_t objects) {
        if (objects == 0) {
            return;
        }
        mText += (mText.empty() ? "" : " + ") + std::to_string(objects);
        mTaken += objects;
        if (mTaken > mExtent.objects) {
            throw AnswerError("that is more than " + counted(mExtent.objects, "object") +
                              "; level by level: " + mText +
                              ". Draw less with --depth or from another DN, or raise --limit" +
                              mMoreAdvice);
        }
    }

private:
    const TreeExtent& mExtent;
    std::string mMoreAdvice;
    std::string mText;
    std::uint64_t mTaken = 0;
};

}

TreePicture PictureReader::read(const TreeExtent& extent) {
    mPicture = {};
    mPicture.token = &mSession.cancellation();
    mWantsValues = extent.wantsValues;
    mPicture.title = extent.dn.empty() ? "/" : extent.dn;
    Room room(extent);
    Level level = begin(extent);
    room.take(mPicture.objects.size());
    std::uint64_t below = countChildren(level);
    for (std::uint64_t depth = 0; depth < extent.depth && below > 0; ++depth) {
        room.take(below);
        level = addBelow(level);
        if (extent.dn.empty() && depth == 0 && level.size() == 1) {
            mPicture.title = level.front().dn; // people know a network by its root
        }
        below = countChildren(level);
    }
    countHidden(level);
    readOutside(extent.objects);
    return std::move(mPicture);
}

PictureReader::Level PictureReader::begin(const TreeExtent& extent) {
    if (extent.dn.empty()) {
        return {{}};
    }
    mSession.requireObject(extent.dn);
    mPicture.objects.push_back(readObject(extent.dn));
    return {{extent.dn, 0}};
}

std::uint64_t PictureReader::countChildren(const Level& level) {
    std::uint64_t sum = 0;
    for (const Parent& parent : level) {
        mSession.cancellation().throwIfCancelled();
        for (const std::string& className : childClassesOf(mSession, parent.dn)) {
            sum += mSession.client().count(mTxHandle, parent.dn, className);
        }
    }
    return sum;
}

PictureReader::Level PictureReader::addBelow(const Level& level) {
    Level next;
    for (const Parent& parent : level) {
        for (const std::string& className : childClassesOf(mSession, parent.dn)) {
            mSession.client().forEachChild(
                mTxHandle, parent.dn, className, [&](const std::string& name) {
                    next.push_back(
                        {DnView(parent.dn).child(className, name), mPicture.objects.size()});
                    mPicture.objects.push_back(readObject(next.back().dn));
                    mPicture.objects.back().parent = parent.position;
                    return true;
                });
        }
    }
    return next;
}

void PictureReader::countHidden(const Level& level) {
    for (const Parent& parent : level) {
        unsigned long long& hidden =
            parent.position ? mPicture.objects[*parent.position].hiddenBelow : mPicture.hiddenBelow;
        hidden = countBelow(mSession, mTxHandle, parent.dn);
    }
}

void PictureReader::readOutside(std::uint64_t limit) {
    std::unordered_set<std::string> known;
    for (const PicturedObject& object : mPicture.objects) {
        known.insert(object.dn);
    }
    for (const PicturedObject& object : mPicture.objects) {
        mSession.cancellation().throwIfCancelled();
        for (const PicturedLink& link : object.links) {
            if (!known.insert(link.target).second) {
                continue;
            }
            if (mPicture.outside.size() < limit) {
                readOutside(link.target);
            } else {
                mPicture.unread.insert(link.target);
            }
        }
    }
}

// An object that the model does not allow, or that clients cannot name, is not read: it does not
// exist.
void PictureReader::readOutside(const std::string& dn) {
    const bool isPossible = !dn.empty() && DnResolver(mSession.model()).classOf(dn) != nullptr;
    if (isPossible && mSession.client().exists(mTxHandle, dn)) {
        mPicture.outside.push_back(readObject(dn));
    }
}

PicturedObject PictureReader::readObject(const std::string& dn) const {
    PicturedObject object;
    object.dn = dn;
    if (const ClassDef* moc = DnResolver(mSession.model()).classOf(dn)) {
        object.className = moc->name;
        readReferences(*moc, object);
    }
    return object;
}

void PictureReader::readReferences(const ClassDef& moc, PicturedObject& object) const {
    std::vector<std::string> names;
    for (const AttributeDef& attribute : moc.attributes) {
        if (mWantsValues || holdsReferences(attribute.type)) {
            names.push_back(attribute.name);
        }
    }
    if (names.empty()) {
        return;
    }
    for (auto& [name, value] : mSession.client().get(mTxHandle, object.dn, names, &moc)) {
        const TypeDef& type = moc.findAttribute(name)->type;
        if (holdsReferences(type)) {
            addLinks(name, type, value, object.links);
        }
        if (type.kind == ValueKind::MoRef) {
            object.references.emplace_back(name, referencesIn(value));
        }
        if (mWantsValues) {
            object.values.emplace_back(name, std::move(value));
        }
    }
}

}
