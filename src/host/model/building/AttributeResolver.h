// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_BUILDING_ATTRIBUTERESOLVER_H
#define ORV_HOST_MODEL_BUILDING_ATTRIBUTERESOLVER_H

#include "ModelDraft.h"
#include "ProblemList.h"
#include "model/Model.h"

#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

/// True if `name` may be the name of an attribute, a member, an action or, if it has no ".", a
/// class. All of these can appear in a DN or before a "=".
bool isUsableName(std::string_view name);

/// Turns the declarations of attributes, members and parameters into definitions. The names of the
/// classes must be known before.
class AttributeResolver {
public:
    AttributeResolver(const Model& model, ProblemList& problems)
        : mModel(model), mProblems(problems) {}

    /// `subject` begins the messages: "Attribute Cell.label". `fallback` is reported as the place
    /// if the attribute itself has none.
    AttributeDef resolve(const AttributeDraft& draft, const std::string& subject,
                         const SourcePosition& fallback);

    /// Resolves all of them, and checks that their names are different. `prefix` and the name give
    /// the subject.
    std::vector<AttributeDef> resolveAll(const std::vector<AttributeDraft>& drafts,
                                         const std::string& prefix, const SourcePosition& fallback);

private:
    void resolveTargets(const AttributeDraft& draft, const std::string& subject, AttributeDef& def);
    void checkEnumerators(const AttributeDef& def, const std::string& subject);
    void checkDefault(const AttributeDef& def, const std::string& subject);

    const Model& mModel;
    ProblemList& mProblems;
};

}

#endif
