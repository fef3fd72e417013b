// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InstanceChecker.h"

#include "InstanceLinks.h"
#include "InstanceMembers.h"
#include "InstancePlan.h"
#include "InstanceTable.h"
#include "base/DnView.h"
#include "base/Join.h"
#include "model/ChoiceCheck.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace OrvHost {

namespace {

using Kind = InstanceProblemKind;

/// One check of one source.
class Run {
public:
    Run(const Model& model, const InstanceSource& source)
        : mModel(model),
          mSource(source),
          mPlan(model),
          mMembers(model, mTable),
          mLinks(model, mTable) {}

    InstanceReport execute() {
        mSource.visit([this](const Instance& instance) { enter(instance); });
        mSource.visit([this](const Instance& instance) { examine(instance); });
        mMembers.judge(mReport);
        mLinks.compare(mReport);
        return std::move(mReport);
    }

private:
    void enter(const Instance& instance) {
        const auto moc = mModel.findClassOfDn(instance.dn);
        if (!moc) {
            report(Kind::NoClass, instance.dn, {}, {},
                   {instance.dn, ": the model has no such path of classes."});
        } else if (!mTable.add(instance.dn, *moc)) {
            report(Kind::RepeatedObject, instance.dn, {}, {},
                   {instance.dn, ": there is more than one object of this name."});
        }
    }

    void examine(const Instance& instance) {
        const InstanceTable::Entry* entry = mTable.find(instance.dn);
        if (!entry || !isFirstVisit(entry->index)) {
            return;
        }
        const InstancePlan::Class& plan = mPlan.at(entry->moc);
        mHolder = *entry;
        mDn = instance.dn;
        mIsSeen.assign(plan.attributes.size(), false);
        mIsPresent.assign(plan.attributes.size(), false);
        examineParent();
        for (const NamedValue& attribute : instance.attributes) {
            examineNamed(plan, attribute);
        }
        examineAbsent(plan);
        examineChoices(plan);
    }

    /// A second object with the same DN is reported, and then ignored.
    bool isFirstVisit(InstanceTable::Index index) {
        mIsExamined.resize(std::max<std::size_t>(mIsExamined.size(), index + 1U));
        const bool isFirst = !mIsExamined[index];
        mIsExamined[index] = true;
        return isFirst;
    }

    void examineParent() {
        const DnView dn(mDn);
        if (!dn.hasParent()) {
            mMembers.add(std::nullopt, mHolder.moc);
            return;
        }
        const std::string_view parent = dn.parent().text();
        if (const InstanceTable::Entry* entry = mTable.find(parent)) {
            mMembers.add(entry->index, mHolder.moc);
        } else {
            report(Kind::NoParent, mDn, {}, parent,
                   {mDn, ": its parent ", parent, " does not exist."});
        }
    }

    void examineNamed(const InstancePlan::Class& plan, const NamedValue& attribute) {
        const auto position = plan.byName.find(attribute.first);
        if (position == plan.byName.end()) {
            report(Kind::NoAttribute, mDn, attribute.first, {},
                   {mDn, ": class ", mModel.classes[mHolder.moc].name, " has no attribute ",
                    attribute.first, "."});
            return;
        }
        mIsSeen[position->second] = true;
        mIsPresent[position->second] =
            isPresent(plan.attributes[position->second].def->type, attribute.second);
        examineValues(plan.attributes[position->second], attribute.second.values);
    }

    void examineAbsent(const InstancePlan::Class& plan) {
        for (std::size_t position = 0; position < plan.attributes.size(); ++position) {
            if (!mIsSeen[position] && plan.attributes[position].isExpected) {
                examineValues(plan.attributes[position], {});
            }
        }
    }

    void examineChoices(const InstancePlan::Class& plan) {
        const auto hasValue = [&](const std::string& name) {
            const auto position = plan.byName.find(name);
            return position != plan.byName.end() && mIsPresent[position->second];
        };
        for (const std::string& wrong :
             wrongChoices(mModel.classes[mHolder.moc].choices, hasValue)) {
            report(Kind::WrongChoice, mDn, {}, {}, {mDn, ": ", wrong, "."});
        }
    }

    void examineValues(const InstancePlan::Attribute& attribute, const std::vector<Value>& values) {
        const AttributeDef& def = *attribute.def;
        if (!def.multiplicity.contain(values.size())) {
            report(Kind::WrongCount, mDn, def.name, {},
                   {mDn, ": attribute ", def.name, " has ", std::to_string(values.size()),
                    values.size() == 1 ? " value" : " values", ", expected ",
                    toText(def.multiplicity), "."});
        }
        mCounts.assign(attribute.ends.size(), 0);
        examineReferences(def.name, def.type, values, &attribute);
        examineCardinalities(attribute, values.empty());
    }

    /// `attribute` is null for a member of a struct, because members belong to no association.
    void examineReferences(const std::string& name, const TypeDef& type,
                           const std::vector<Value>& values,
                           const InstancePlan::Attribute* attribute) {
        for (const Value& value : values) {
            if (type.kind == ValueKind::Struct) {
                examineStruct(name, type, std::get_if<StructValue>(&value));
            } else if (type.kind == ValueKind::MoRef) {
                examineReference(name, type, std::get_if<std::string>(&value), attribute);
            }
        }
    }

    void examineStruct(const std::string& name, const TypeDef& type, const StructValue* value) {
        if (!value) {
            return;
        }
        for (const NamedValue& member : value->members) {
            for (const AttributeDef& def : type.members) {
                if (def.name == member.first) {
                    examineReferences(joined({name, ".", def.name}), def.type, member.second.values,
                                      nullptr);
                }
            }
        }
    }

    void examineReference(const std::string& name, const TypeDef& type, const std::string* target,
                          const InstancePlan::Attribute* attribute) {
        if (!target) {
            return;
        }
        const InstanceTable::Entry* entry = mTable.find(*target);
        const auto moc = entry ? std::optional(entry->moc) : mModel.findClassOfDn(*target);
        if (!moc && type.targets.empty() && DnView(*target).isValid()) {
            return; // a client may write it, too: an object of another network, for example
        }
        if (!moc) {
            report(Kind::NoTargetClass, mDn, name, *target,
                   {mDn, ": attribute ", name, " names ", *target,
                    ", but the model has no such path of classes."});
        } else if (!isPermitted(type, *moc)) {
            report(Kind::ForbiddenClass, mDn, name, *target,
                   {mDn, ": attribute ", name, " names ", *target, " of class ",
                    mModel.classes[*moc].name, ", expected ", permittedText(type), "."});
        } else if (attribute) {
            follow(*attribute, *moc, entry, *target);
        }
    }

    void follow(const InstancePlan::Attribute& attribute, ClassIndex moc,
                const InstanceTable::Entry* entry, const std::string& target) {
        for (std::size_t position = 0; position < attribute.ends.size(); ++position) {
            const InstancePlan::End& end = attribute.ends[position];
            if (end.end->moc != moc) {
                continue;
            }
            ++mCounts[position];
            if (!entry) {
                report(Kind::NoTarget, mDn, attribute.def->name, target,
                       {mDn, ": attribute ", attribute.def->name, " names ", target,
                        ", which does not exist."});
            } else if (end.isBiDir) {
                mLinks.add(end.association, end.named, mHolder.index, entry->index);
            }
        }
    }

    void examineCardinalities(const InstancePlan::Attribute& attribute, bool isEmpty) {
        for (std::size_t position = 0; position < attribute.ends.size(); ++position) {
            const AssociationEnd& end = *attribute.ends[position].end;
            if (!end.cardinality.contain(mCounts[position])) {
                report(isEmpty ? Kind::NoReference : Kind::WrongCardinality, mDn, end.name, {},
                       {mDn, ": attribute ", end.name, " names ", std::to_string(mCounts[position]),
                        " of class ", mModel.classes[end.moc].name, ", expected ",
                        toText(end.cardinality), "."});
                mReport.problems.back().countedClass = mModel.classes[end.moc].name;
            }
        }
    }

    static bool isPermitted(const TypeDef& type, ClassIndex moc) {
        return type.targets.empty() ||
               std::find(type.targets.begin(), type.targets.end(), moc) != type.targets.end();
    }

    std::string permittedText(const TypeDef& type) const {
        std::string text;
        for (const ClassIndex target : type.targets) {
            text += (text.empty() ? "" : " or ") + mModel.classes[target].name;
        }
        return text;
    }

    void report(Kind kind, std::string_view dn, std::string_view attribute,
                std::string_view otherDn, std::initializer_list<std::string_view> pieces) {
        mReport.problems.push_back(
            {kind, std::string(dn), std::string(attribute), std::string(otherDn), joined(pieces)});
    }

    const Model& mModel;
    const InstanceSource& mSource;
    const InstancePlan mPlan;
    InstanceTable mTable;
    InstanceMembers mMembers;
    InstanceLinks mLinks;
    InstanceReport mReport;

    std::vector<bool> mIsExamined; ///< by object

    // The object that is being examined.
    InstanceTable::Entry mHolder;
    std::string_view mDn;
    std::vector<bool> mIsSeen;        ///< by attribute: it is given
    std::vector<bool> mIsPresent;     ///< by attribute: it has a value
    std::vector<std::size_t> mCounts; ///< by end of the attribute that is being examined
};

}

InstanceReport InstanceChecker::check(const InstanceSource& source) const {
    return Run(mModel, source).execute();
}

}
