// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_OUTPUT_CLASSREPORT_H
#define ORV_HOST_CLI_OUTPUT_CLASSREPORT_H

#include "ValueJson.h"
#include "model/Model.h"
#include "repository/ModelDescription.h"

#include <string>
#include <vector>

namespace OrvHost {

/// All facts that are shown about one class. Attributes, children and associations come from the
/// model repository; what that does not have (types in words, defaults, actions) comes from the
/// model.
class ClassReport {
public:
    /// `model` must have the class and outlive the report.
    ClassReport(const Model& model, ClassDescription description);

    JsonValue json() const;
    std::string text() const;

private:
    JsonValue attributeJson(const AttributeDescription& facts) const;
    std::string referenceText(const AttributeDescription& facts) const;
    std::vector<std::string> attributeRow(const AttributeDescription& facts) const;

    const Model& mModel;
    const ClassDef& mClass;
    ClassDescription mDescription;
};

JsonValue toJson(const ReferenceDescription& facts);
std::string associationTable(const std::vector<ReferenceDescription>& associations);
std::vector<std::string> parentNames(const Model& model, const ClassDef& moc);

}

#endif
