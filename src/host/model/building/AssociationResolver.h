// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_BUILDING_ASSOCIATIONRESOLVER_H
#define ORV_HOST_MODEL_BUILDING_ASSOCIATIONRESOLVER_H

#include "ModelDraft.h"
#include "ProblemList.h"
#include "model/Model.h"

#include <cstddef>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace OrvHost {

/// Turns the declared ends into associations: checks each end, finds the opposite of each
/// bidirectional one, and gives the attributes their permitted classes. The classes and attributes
/// of the model must be resolved before.
class AssociationResolver {
public:
    AssociationResolver(const std::vector<ReferenceDraft>& drafts, Model& model,
                        ProblemList& problems);

    void resolve();

private:
    /// One end. Without `isResolved` only `draft` is valid, and the problems of the end are already
    /// reported.
    struct Reference {
        const ReferenceDraft* draft = nullptr;
        bool isResolved = false;
        ClassIndex owner = 0;
        AttributeIndex attribute = 0;
        ClassIndex target = 0;
        Bounds cardinality;
    };
    /// The ends of one attribute, in the order of their declaration.
    using Group = std::vector<Reference*>;
    using Key = std::tuple<std::string, std::string, std::string>; ///< owner, attribute, target

    void enter(const ReferenceDraft& draft);
    void checkSecondMention(const ReferenceDraft& first, const ReferenceDraft& second);

    void resolveNames(Reference& reference);
    bool resolveAttribute(Reference& reference);
    bool resolveTarget(Reference& reference);

    std::vector<Group> groupByAttribute();
    void checkOneDirection(const Group& group);
    void settleCardinalities(const Group& group);
    void checkMultiplicity(const Group& group);
    void permitTargets(const Group& group);

    void associate(std::size_t index);
    bool hasAgreeingOpposite(const Reference& reference);
    void explainMissingOpposite(const Reference& reference);
    void associateBoth(std::size_t index, std::size_t opposite);
    AssociationEnd makeEnd(const Reference& reference) const;
    AttributeDef& attributeOf(const Reference& reference);

    Model& mModel;
    ProblemList& mProblems;
    std::vector<Reference> mReferences; ///< each end once, in the order of declaration
    std::map<Key, std::size_t> mIndexByKey;
};

}

#endif
