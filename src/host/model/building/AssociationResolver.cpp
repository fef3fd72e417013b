// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AssociationResolver.h"

#include <algorithm>
#include <utility>

namespace OrvHost {

namespace {

std::string nameOf(const ReferenceDraft& draft) {
    return draft.owner + "." + draft.attribute;
}

std::string subjectOf(const ReferenceDraft& draft) {
    return "Association end " + nameOf(draft);
}

/// A symmetric association: a class with itself, through one attribute.
bool isItsOwnOpposite(const ReferenceDraft& draft) {
    return draft.owner == draft.target && draft.attribute == draft.opposite;
}

bool isSameBounds(const std::optional<Bounds>& left, const std::optional<Bounds>& right) {
    return left.has_value() == right.has_value() &&
           (!left || (left->lower == right->lower && left->upper == right->upper));
}

bool agree(const ReferenceDraft& left, const ReferenceDraft& right) {
    return isSameBounds(left.cardinality, right.cardinality) && left.roleText == right.roleText &&
           left.keep == right.keep && left.opposite == right.opposite;
}

/// Adds two bounds; the sum with an open bound is open.
std::int64_t boundSum(std::int64_t left, std::int64_t right) {
    return left > kUnbounded - right ? kUnbounded : left + right;
}

}

AssociationResolver::AssociationResolver(const std::vector<ReferenceDraft>& drafts, Model& model,
                                         ProblemList& problems)
    : mModel(model), mProblems(problems) {
    for (const ReferenceDraft& draft : drafts) {
        enter(draft);
    }
}

void AssociationResolver::enter(const ReferenceDraft& draft) {
    const Key key(draft.owner, draft.attribute, draft.target);
    const auto [known, isNew] = mIndexByKey.emplace(key, mReferences.size());
    if (isNew) {
        mReferences.emplace_back().draft = &draft;
    } else {
        checkSecondMention(*mReferences[known->second].draft, draft);
    }
}

void AssociationResolver::checkSecondMention(const ReferenceDraft& first,
                                             const ReferenceDraft& second) {
    if (!isItsOwnOpposite(first) || !isItsOwnOpposite(second)) {
        mProblems.add(second.source, {subjectOf(second), ": the association with class ",
                                      second.target, " is declared more than once."});
    } else if (!agree(first, second)) {
        mProblems.add(second.source,
                      {subjectOf(second), ": both ends are this one attribute, so they must have "
                                          "the same cardinality, role and flags."});
    }
}

void AssociationResolver::resolve() {
    for (Reference& reference : mReferences) {
        resolveNames(reference);
    }
    for (const Group& group : groupByAttribute()) {
        checkOneDirection(group);
        settleCardinalities(group);
        checkMultiplicity(group);
        permitTargets(group);
    }
    for (std::size_t index = 0; index < mReferences.size(); ++index) {
        associate(index);
    }
}

void AssociationResolver::resolveNames(Reference& reference) {
    const ReferenceDraft& draft = *reference.draft;
    const bool hasAttribute = resolveAttribute(reference);
    const bool hasTarget = resolveTarget(reference);
    reference.isResolved = hasAttribute && hasTarget;
    if (draft.cardinality) {
        mProblems.checkBounds(draft.source, subjectOf(draft) + ", cardinality", *draft.cardinality);
    }
    if (!reference.isResolved) {
        return;
    }
    const std::vector<ClassIndex>& permitted = attributeOf(reference).type.targets;
    if (!permitted.empty() &&
        std::find(permitted.begin(), permitted.end(), reference.target) == permitted.end()) {
        mProblems.add(draft.source, {subjectOf(draft), ": the class ", draft.target,
                                     " is none of the target classes of the attribute."});
    }
}

bool AssociationResolver::resolveAttribute(Reference& reference) {
    const ReferenceDraft& draft = *reference.draft;
    const auto owner = mModel.findClass(draft.owner);
    if (!owner) {
        mProblems.add(draft.source, {subjectOf(draft), ": the class ", draft.owner,
                                     " does not exist in the model."});
        return false;
    }
    const ClassDef& moc = mModel.classes[*owner];
    const auto attribute = moc.findAttributeIndex(draft.attribute);
    if (!attribute) {
        mProblems.add(draft.source, {subjectOf(draft), ": class ", draft.owner,
                                     " has no attribute ", draft.attribute, "."});
        return false;
    }
    const ValueKind kind = moc.attributes[*attribute].type.kind;
    if (kind != ValueKind::MoRef) {
        mProblems.add(draft.source, {subjectOf(draft), ": the attribute is a ", kindName(kind),
                                     ", expected a reference."});
        return false;
    }
    reference.owner = *owner;
    reference.attribute = *attribute;
    return true;
}

bool AssociationResolver::resolveTarget(Reference& reference) {
    const ReferenceDraft& draft = *reference.draft;
    const auto target = mModel.findClass(draft.target);
    if (!target) {
        mProblems.add(draft.source, {subjectOf(draft), ": the target class \"", draft.target,
                                     "\" does not exist in the model."});
        return false;
    }
    reference.target = *target;
    return true;
}

std::vector<AssociationResolver::Group> AssociationResolver::groupByAttribute() {
    std::map<std::pair<ClassIndex, AttributeIndex>, std::size_t> positions;
    std::vector<Group> groups;
    for (Reference& reference : mReferences) {
        if (reference.isResolved) {
            const auto key = std::make_pair(reference.owner, reference.attribute);
            const auto [position, isNew] = positions.emplace(key, groups.size());
            if (isNew) {
                groups.emplace_back();
            }
            groups[position->second].push_back(&reference);
        }
    }
    return groups;
}

// For a write of such an attribute, the component would update the opposite sides for its
// bidirectional classes and then refuse the same values for its unidirectional ones.
void AssociationResolver::checkOneDirection(const Group& group) {
    const ReferenceDraft& first = *group.front()->draft;
    for (const Reference* reference : group) {
        const ReferenceDraft& draft = *reference->draft;
        if (draft.opposite.empty() != first.opposite.empty()) {
            mProblems.add(draft.source, {subjectOf(draft),
                                         ": the attribute has an opposite for one of the classes ",
                                         first.target, " and ", draft.target,
                                         " and none for the other; expected the same for all."});
        }
    }
}

void AssociationResolver::settleCardinalities(const Group& group) {
    const AttributeDef& attribute = attributeOf(*group.front());
    Bounds bounds = attribute.multiplicity;
    if (group.size() > 1 || !attribute.isWritable || attribute.isConditional) {
        bounds.lower = 0;
    }
    for (Reference* reference : group) {
        reference->cardinality = reference->draft->cardinality.value_or(bounds);
    }
}

void AssociationResolver::checkMultiplicity(const Group& group) {
    Bounds sum{0, 0};
    for (const Reference* reference : group) {
        sum.lower = boundSum(sum.lower, reference->cardinality.lower);
        sum.upper = boundSum(sum.upper, reference->cardinality.upper);
    }
    const Bounds& bounds = attributeOf(*group.front()).multiplicity;
    if (sum.lower > bounds.upper || sum.upper < bounds.lower) {
        const ReferenceDraft& draft = *group.front()->draft;
        mProblems.add(draft.source, {subjectOf(draft), ": the attribute holds ", toText(bounds),
                                     " values, its associations together ask for ", toText(sum),
                                     ": no number of values can satisfy both."});
    }
}

void AssociationResolver::permitTargets(const Group& group) {
    std::vector<ClassIndex>& targets = attributeOf(*group.front()).type.targets;
    if (targets.empty()) {
        for (const Reference* reference : group) {
            targets.push_back(reference->target);
        }
    }
}

void AssociationResolver::associate(std::size_t index) {
    const Reference& reference = mReferences[index];
    if (!reference.isResolved) {
        return;
    }
    const ReferenceDraft& draft = *reference.draft;
    if (draft.opposite.empty()) {
        mModel.uniDirAssociations.push_back({reference.owner, makeEnd(reference), draft.source});
    } else if (hasAgreeingOpposite(reference)) {
        const auto opposite = mIndexByKey.find(Key(draft.target, draft.opposite, draft.owner));
        if (opposite->second >= index) {
            associateBoth(index, opposite->second);
        }
    }
}

bool AssociationResolver::hasAgreeingOpposite(const Reference& reference) {
    const ReferenceDraft& draft = *reference.draft;
    const auto found = mIndexByKey.find(Key(draft.target, draft.opposite, draft.owner));
    if (found == mIndexByKey.end()) {
        explainMissingOpposite(reference);
        return false;
    }
    const ReferenceDraft& opposite = *mReferences[found->second].draft;
    if (opposite.opposite != draft.attribute) {
        const std::string named = opposite.opposite.empty()
                                      ? "no opposite at all"
                                      : draft.owner + "." + opposite.opposite + " as its opposite";
        mProblems.add(draft.source, {subjectOf(draft), ": names ", nameOf(opposite),
                                     " as its opposite, but that one names ", named, "."});
        return false;
    }
    return mReferences[found->second].isResolved;
}

void AssociationResolver::explainMissingOpposite(const Reference& reference) {
    const ReferenceDraft& draft = *reference.draft;
    const std::string opposite = draft.target + "." + draft.opposite;
    const AttributeDef* attribute = mModel.classes[reference.target].findAttribute(draft.opposite);
    std::string reason = "class " + draft.target + " has no attribute " + draft.opposite;
    if (attribute && attribute->type.kind != ValueKind::MoRef) {
        reason = "that attribute is a " + std::string(kindName(attribute->type.kind)) +
                 ", expected a reference";
    } else if (attribute) {
        reason =
            "that attribute is not declared as an end of an association with class " + draft.owner;
    }
    mProblems.add(draft.source,
                  {subjectOf(draft), ": names ", opposite, " as its opposite, but ", reason, "."});
}

void AssociationResolver::associateBoth(std::size_t index, std::size_t opposite) {
    const Reference& first = mReferences[index];
    const Reference& second = mReferences[opposite];
    // Readers of the table cannot distinguish the two ends if different classes use the same
    // attribute name: one of the two directions would not be updated.
    if (first.owner != second.owner && first.draft->attribute == second.draft->attribute) {
        mProblems.add(second.draft->source, {subjectOf(*second.draft),
                                             ": both ends of an association between different "
                                             "classes are named ",
                                             first.draft->attribute, ", expected two names."});
        return;
    }
    mModel.biDirAssociations.push_back({{makeEnd(second), makeEnd(first)}, first.draft->source});
}

AssociationEnd AssociationResolver::makeEnd(const Reference& reference) const {
    const ReferenceDraft& draft = *reference.draft;
    const std::string& role = draft.roleText.empty() ? draft.target : draft.roleText;
    return {reference.target, draft.attribute, role, reference.cardinality, draft.keep};
}

AttributeDef& AssociationResolver::attributeOf(const Reference& reference) {
    return mModel.classes[reference.owner].attributes[reference.attribute];
}

}
