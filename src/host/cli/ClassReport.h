// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CLASSREPORT_H
#define ORV_HOST_CLI_CLASSREPORT_H

#include "RepositoryFacts.h"
#include "ValueJson.h"
#include "model/Model.h"

#include <string>
#include <vector>

namespace OrvHost {

class Session;

/// All that is told of one class. Attributes, children and associations come from the model
/// repository; what that does not tell (types in words, defaults, actions) comes from the model.
class ClassReport {
public:
    ClassReport(Session& session, ClassIndex moc);

    JsonValue json() const;
    std::string text() const;

private:
    JsonValue attributeJson(const AttributeFacts& facts) const;
    std::string referenceText(const AttributeFacts& facts) const;
    std::vector<std::string> attributeRow(const AttributeFacts& facts) const;

    const Model& mModel;
    const ClassDef& mClass;
    std::vector<AttributeFacts> mAttributes;
    std::vector<std::string> mChildren;
    std::vector<ReferenceFacts> mReferences;
};

JsonValue toJson(const ReferenceFacts& facts);
std::string associationTable(const std::vector<ReferenceFacts>& associations);
std::vector<std::string> parentNames(const Model& model, const ClassDef& moc);

/// "0..1", "3", "1..*".
std::string boundsText(const Bounds& bounds);

}

#endif
