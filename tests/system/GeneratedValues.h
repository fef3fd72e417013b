// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef SYSTEMTEST_GENERATEDVALUES_H
#define SYSTEMTEST_GENERATEDVALUES_H

#include "model/Model.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace SystemTest {

/// Makes values that a model permits, by trying texts and numbers of the usual forms. Always the
/// same ones. One thread.
class GeneratedValues {
public:
    /// \p model must outlive this object. \p reference is the DN that references get whose classes
    /// are not restricted.
    GeneratedValues(const OrvHost::Model& model, std::string reference)
        : mModel(model), mReference(std::move(reference)) {}

    /// Values for an attribute, at least one and as many as it must have; nothing if none of what
    /// is tried is permitted.
    std::optional<OrvHost::AttributeValue> valueOf(const OrvHost::AttributeDef& def) const;

    /// A text that can name an object of that class; nothing if none of what is tried can.
    std::optional<std::string> nameOf(const OrvHost::ClassDef& moc) const;

    /// The attributes and members that an object or struct leaves out because it has what belongs
    /// to another case of the same choice.
    static std::set<std::string> leftOut(const std::vector<OrvHost::ChoiceDef>& choices);

private:
    std::vector<OrvHost::Value> candidates(const OrvHost::TypeDef& type) const;
    std::optional<OrvHost::Value> structure(const OrvHost::TypeDef& type) const;

    const OrvHost::Model& mModel;
    std::string mReference;
};

}

#endif
