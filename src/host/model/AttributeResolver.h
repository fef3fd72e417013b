// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_ATTRIBUTERESOLVER_H
#define ORV_HOST_MODEL_ATTRIBUTERESOLVER_H

#include "Model.h"
#include "ModelDraft.h"
#include "ProblemList.h"

#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

/// True if `name` may name an attribute, a member, an action or, if it has no ".", a class: all of
/// them can stand in a DN or in front of "=".
bool isUsableName(std::string_view name);

/// Makes definitions of what was said of attributes, members and parameters. The classes must be
/// known by name before.
class AttributeResolver {
public:
    AttributeResolver(const Model& model, ProblemList& problems)
        : mModel(model), mProblems(problems) {}

    /// `subject` begins the messages: "Attribute Cell.label". `fallback` is told as the place when
    /// the attribute itself has none.
    AttributeDef resolve(const AttributeDraft& draft, const std::string& subject,
                         const SourcePosition& fallback);

    /// All of them, with a check that their names differ. `prefix` and the name make the subject.
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
