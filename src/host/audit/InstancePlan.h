// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_AUDIT_INSTANCEPLAN_H
#define ORV_HOST_AUDIT_INSTANCEPLAN_H

#include "model/Model.h"

#include <cstddef>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace OrvHost {

/// What must be checked at the objects of each class: the model, sorted by class and attribute.
/// Immutable.
class InstancePlan {
public:
    /// An association that an attribute takes part in.
    struct End {
        const AssociationEnd* end = nullptr;
        bool isBiDir = false;
        std::size_t association = 0; ///< bidirectional: position in the model
        std::size_t named = 0;       ///< bidirectional: the end that the attribute is named after
    };

    struct Attribute {
        const AttributeDef* def = nullptr;
        std::vector<End> ends;
        /// If it is absent, it must be checked as an attribute without values.
        bool isExpected = false;
    };

    struct Class {
        std::vector<Attribute> attributes; ///< as in ClassDef
        std::unordered_map<std::string, std::size_t, TextHash, std::equal_to<>> byName;
    };

    /// `model` must outlive the plan.
    explicit InstancePlan(const Model& model);

    const Class& at(ClassIndex moc) const { return mClasses[moc]; }

private:
    void addEnds(const Model& model);
    Attribute& find(ClassIndex owner, const std::string& name);

    std::vector<Class> mClasses;
};

}

#endif
