// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ObjectText.h"

#include "base/DnView.h"
#include "base/RootObject.h"
#include "client/ClientSession.h"
#include "client/SubtreeReader.h"
#include "client/edits/ClientState.h"
#include "model/KeyValues.h"
#include "yang/instances/InstanceDataStream.h"
#include "yang/instances/ObjectWriter.h"
#include "yang/types/ValueCodec.h"

#include <libyang/libyang.h>

#include <algorithm>
#include <map>
#include <set>

namespace OrvHost {

namespace {

using Filters = std::vector<const FilterNode*>;

/// The objects of a filter's steps that name one object are not looked for among all.
std::optional<std::string> nameIn(const FilterNode& filter, const ObjectShape& shape) {
    std::vector<std::string> keys;
    for (const lysc_node* key : shape.keys) {
        const auto found = std::find_if(filter.children.begin(), filter.children.end(),
                                        [key](const FilterNode& child) {
                                            return child.isContentMatch() && child.isAbout(key);
                                        });
        if (found == filter.children.end()) {
            return std::nullopt;
        }
        keys.push_back(found->text);
    }
    return keys.size() == 1 ? keys.front() : joinKeys(keys);
}

/// What of one object the filters select.
class ObjectMatch {
public:
    ObjectMatch(const WireModel& model, const ObjectShape& shape, std::vector<std::string> keys,
                std::vector<NamedValue> values)
        : mModel(model), mShape(shape), mKeys(std::move(keys)), mValues(std::move(values)) {}

    void apply(const FilterNode& filter) {
        const std::size_t before = mBelow.size();
        if (filter.children.empty()) {
            mIsWhole = true;
        } else if (!applyLevel(filter.children, nullptr)) {
            mBelow.resize(before);
        }
    }

    /// True if the filters select the object and all below it.
    bool isWhole() const { return mIsWhole; }
    /// True if a value or the name is selected.
    bool isSelected() const { return mIsWhole || mIsNamed || !mSelected.empty(); }
    /// The filters for the objects below.
    const Filters& below() const { return mBelow; }

    std::vector<NamedValue> takeValues() {
        if (mIsWhole) {
            return std::move(mValues);
        }
        std::vector<NamedValue> values;
        for (const NamedValue& value : mValues) {
            if (const auto found = mSelected.find(value.first); found != mSelected.end()) {
                values.emplace_back(value.first, std::move(found->second));
            }
        }
        return values;
    }

private:
    /// The elements of one level: of the object itself, or of the container around its attributes.
    bool applyLevel(const std::vector<FilterNode>& level, const lysc_node* wrapper) {
        bool selectsAll = true;
        for (const FilterNode& node : level) {
            if (node.isContentMatch()) {
                if (!matches(node, wrapper)) {
                    return false;
                }
            } else {
                selectsAll = false;
            }
        }
        if (selectsAll && wrapper == nullptr) {
            mIsWhole = true;
            return true;
        }
        for (const NamedValue& value : mValues) {
            const ValueShape& shape = shapeOf(value, mShape.attributes);
            if (shape.wrapper == wrapper) {
                select(value, shape, level, selectsAll);
            }
        }
        if (wrapper == nullptr) {
            selectNodes(level);
        }
        return true;
    }

    void select(const NamedValue& value, const ValueShape& shape,
                const std::vector<FilterNode>& level, bool selectsAll) {
        AttributeValue& wanted = mSelected.try_emplace(value.first).first->second;
        wanted = selectsAll ? value.second : reduced(value.second, shape, level, wanted);
        if (wanted.values.empty()) {
            mSelected.erase(value.first);
        }
    }

    /// Keys, the container around attributes, and classes below.
    void selectNodes(const std::vector<FilterNode>& level) {
        for (const FilterNode& node : level) {
            mIsNamed = mIsNamed || isAboutKey(node);
            if (const lysc_node* wrapper = wrapperOf(node)) {
                if (node.children.empty()) {
                    selectAllIn(wrapper);
                } else {
                    applyLevel(node.children, wrapper);
                }
            }
            const bool isClass =
                std::any_of(mShape.children.begin(), mShape.children.end(),
                            [&](const ObjectShape* child) { return node.isAbout(child->list); });
            if (isClass) {
                mBelow.push_back(&node);
            }
        }
    }

    bool isAboutKey(const FilterNode& node) const {
        return std::any_of(mShape.keys.begin(), mShape.keys.end(),
                           [&](const lysc_node* key) { return node.isAbout(key); });
    }

    const lysc_node* wrapperOf(const FilterNode& node) const {
        for (const ValueShape& shape : mShape.attributes) {
            if (shape.wrapper != nullptr && node.isAbout(shape.wrapper)) {
                return shape.wrapper;
            }
        }
        return nullptr;
    }

    void selectAllIn(const lysc_node* wrapper) {
        for (const NamedValue& value : mValues) {
            if (shapeOf(value, mShape.attributes).wrapper == wrapper) {
                mSelected[value.first] = value.second;
            }
        }
    }

    bool matches(const FilterNode& node, const lysc_node* wrapper) const {
        for (std::size_t at = 0; wrapper == nullptr && at < mShape.keys.size(); ++at) {
            if (node.isAbout(mShape.keys[at])) {
                return mKeys[at] == node.text;
            }
        }
        return std::any_of(mValues.begin(), mValues.end(), [&](const NamedValue& value) {
            const ValueShape& shape = shapeOf(value, mShape.attributes);
            return shape.wrapper == wrapper && holds(value.second, shape, node);
        });
    }

    bool isText(const Value& value, const ValueShape& shape, const FilterNode& node) const {
        if (shape.kind == ValueKind::Struct) {
            return false;
        }
        const EncodedValue encoded = encodeValue(value, shape.node, mModel.schema().context());
        return encoded.text == (encoded.isIdentity ? node.identity : node.text);
    }

    bool holds(const AttributeValue& value, const ValueShape& shape, const FilterNode& node) const {
        return node.isAbout(shape.node) &&
               std::any_of(value.values.begin(), value.values.end(),
                           [&](const Value& one) { return isText(one, shape, node); });
    }

    /// The values that the elements about this attribute select, with those of \p known.
    AttributeValue reduced(const AttributeValue& value, const ValueShape& shape,
                           const std::vector<FilterNode>& level,
                           const AttributeValue& known) const {
        AttributeValue result{value.kind, {}};
        for (const Value& one : value.values) {
            Value part = one;
            bool isWanted =
                std::find(known.values.begin(), known.values.end(), one) != known.values.end();
            for (const FilterNode& node : level) {
                isWanted = isWanted || (node.isAbout(shape.node) && keep(part, shape, node));
            }
            if (isWanted) {
                result.values.push_back(std::move(part));
            }
        }
        return result;
    }

    /// Reduces \p value to what the element selects. False if that is nothing.
    bool keep(Value& value, const ValueShape& shape, const FilterNode& node) const {
        auto* members = std::get_if<StructValue>(&value);
        if (members == nullptr || node.children.empty()) {
            return node.text.empty() || isText(value, shape, node);
        }
        bool selectsAll = true;
        for (const FilterNode& child : node.children) {
            if (!child.isContentMatch()) {
                selectsAll = false;
                continue;
            }
            const bool isMatched = std::any_of(
                members->members.begin(), members->members.end(), [&](const NamedValue& member) {
                    return holds(member.second, shapeOf(member, shape.members), child);
                });
            if (!isMatched) {
                return false;
            }
        }
        if (selectsAll) {
            return true;
        }
        StructValue kept;
        for (const NamedValue& member : members->members) {
            AttributeValue part =
                reduced(member.second, shapeOf(member, shape.members), node.children, {});
            if (!part.values.empty()) {
                kept.members.emplace_back(member.first, std::move(part));
            }
        }
        value = std::move(kept);
        return !std::get<StructValue>(value).members.empty();
    }

    const WireModel& mModel;
    const ObjectShape& mShape;
    std::vector<std::string> mKeys;
    std::vector<NamedValue> mValues;
    bool mIsWhole = false;
    bool mIsNamed = false;
    std::map<std::string, AttributeValue> mSelected;
    Filters mBelow;
};

class Writer {
public:
    Writer(ClientSession& session, unsigned long txHandle, const WireModel& model, bool onlyConfig,
           std::ostream& out)
        : mSession(session),
          mState(session.clients().version3(), txHandle),
          mTxHandle(txHandle),
          mModel(model),
          mOnlyConfig(onlyConfig),
          mStream(model.sharedSchema(), DataFormat::Xml, out) {}

    /// The subtree of an object; empty: everything.
    void writeAll(const std::string& dn) {
        SubtreeReader(mSession, mTxHandle)
            .read(
                dn,
                [this](const ObjectState& object) {
                    if (mLeftOut > 0 || isLeftOut(object.dn)) {
                        ++mLeftOut;
                    } else {
                        open(object.dn, valuesToSave(object, mOnlyConfig));
                    }
                },
                [this] {
                    if (mLeftOut > 0) {
                        --mLeftOut;
                    } else {
                        mStream.close();
                    }
                });
    }

    void writeSelected(const std::string& dn, const ObjectShape* shape, const Filters& filters) {
        for (const ObjectShape* child : mModel.schema().childrenOf(shape)) {
            const Filters about = filtersAbout(*child, filters);
            if (about.empty() || isLeftOut(*child)) {
                continue;
            }
            for (const std::string& name : namesOf(dn, *child, about)) {
                mSession.cancellation().throwIfCancelled();
                writeObject(DnView(dn).child(child->className, name), *child, about);
            }
        }
    }

    void finish() { mStream.finish(); }

private:
    bool isLeftOut(const ObjectShape& shape) const {
        return mOnlyConfig && (shape.list->flags & LYS_CONFIG_W) == 0;
    }

    bool isLeftOut(const std::string& dn) const {
        const ObjectShape* shape = mOnlyConfig ? mModel.schema().findByDn(dn) : nullptr;
        return shape != nullptr && isLeftOut(*shape);
    }

    /// The filters for the objects of a class, from inside the containers around them.
    static Filters filtersAbout(const ObjectShape& shape, Filters filters) {
        for (const lysc_node* wrapper : shape.wrappers) {
            Filters inside;
            for (const FilterNode* filter : filters) {
                if (!filter->isAbout(wrapper)) {
                    continue;
                }
                if (filter->children.empty()) {
                    inside.push_back(nullptr);
                }
                for (const FilterNode& child : filter->children) {
                    inside.push_back(&child);
                }
            }
            if (std::find(inside.begin(), inside.end(), nullptr) != inside.end()) {
                static const FilterNode everything;
                return {&everything};
            }
            filters = std::move(inside);
        }
        filters.erase(
            std::remove_if(filters.begin(), filters.end(),
                           [&](const FilterNode* one) { return !one->isAbout(shape.list); }),
            filters.end());
        return filters;
    }

    std::vector<std::string> namesOf(const std::string& dn, const ObjectShape& shape,
                                     const Filters& filters) {
        std::vector<std::string> names;
        for (const FilterNode* filter : filters) {
            const auto name = nameIn(*filter, shape);
            if (!name) {
                return mState.children(dn, shape.className);
            }
            const bool isNew = std::find(names.begin(), names.end(), *name) == names.end();
            const std::string child = DnView(dn).child(shape.className, *name);
            if (isNew && DnView(child).isValid() &&
                DnView(child).depth() == DnView(dn).depth() + 1 && mState.exists(child)) {
                names.push_back(*name);
            }
        }
        return names;
    }

    void writeObject(const std::string& dn, const ObjectShape& shape, const Filters& filters) {
        const ClassDef& moc = mSession.model().classes[shape.moc];
        ObjectMatch match(mModel, shape, keysOf(shape, DnView(dn).last().value()),
                          valuesToSave({dn, &moc, mState.attributes(dn, moc)}, mOnlyConfig));
        for (const FilterNode* filter : filters) {
            match.apply(*filter);
        }
        if (match.isWhole()) {
            openWaiting();
            writeAll(dn);
            return;
        }
        mWaiting.push_back({dn, match.takeValues(), false});
        if (match.isSelected()) {
            openWaiting();
        }
        if (!match.below().empty()) {
            writeSelected(dn, &shape, match.below());
        }
        if (mWaiting.back().isOpen) {
            mStream.close();
        }
        mWaiting.pop_back();
    }

    /// An object of which nothing but its place matters is written only if something below it is.
    void openWaiting() {
        for (Waiting& one : mWaiting) {
            if (!one.isOpen) {
                open(one.dn, one.values);
                one.isOpen = true;
            }
        }
    }

    void open(const std::string& dn, const std::vector<NamedValue>& values) {
        const DnStep step = DnView(dn).last();
        mStream.open(step.className(), std::string(step.value()), values);
    }

    struct Waiting {
        std::string dn;
        std::vector<NamedValue> values;
        bool isOpen;
    };

    ClientSession& mSession;
    ClientState mState;
    unsigned long mTxHandle;
    const WireModel& mModel;
    bool mOnlyConfig;
    InstanceDataStream mStream;
    std::vector<Waiting> mWaiting;
    std::size_t mLeftOut = 0; ///< open objects that are not written: the first one and those below
};

}

void writeObjects(ClientSession& session, unsigned long txHandle, const WireModel& model,
                  const ObjectSelection& selection, std::ostream& out) {
    Writer writer(session, txHandle, model, selection.onlyConfig, out);
    if (!selection.filter) {
        writer.writeAll("");
    } else {
        Filters filters;
        for (const FilterNode& filter : *selection.filter) {
            filters.push_back(&filter);
        }
        writer.writeSelected("", nullptr, filters);
    }
    writer.finish();
}

}
