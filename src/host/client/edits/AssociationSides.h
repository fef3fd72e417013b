// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_EDITS_ASSOCIATIONSIDES_H
#define ORV_HOST_CLIENT_EDITS_ASSOCIATIONSIDES_H

#include "model/Model.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// An attribute as one side of a bidirectional association.
struct AssociationSide {
    ClassIndex farClass = 0;
    std::string farAttribute; ///< of the objects of farClass, with the references back
    bool isFirst = false;     ///< belongs to the end that the model defines first
    /// When an object with this attribute is deleted, its DN stays in farAttribute.
    bool isKeptAtDelete = false;
};

/// The sides of all bidirectional associations of a model, by class and attribute. Immutable.
class AssociationSides {
public:
    explicit AssociationSides(const Model& model);

    /// The associations that \p attribute of \p moc realises, in the order of the model: one for
    /// each class at the far side. Empty: none.
    const std::vector<AssociationSide>& of(ClassIndex moc, const std::string& attribute) const;

    /// The one with objects of class \p farClass, or null.
    const AssociationSide* find(ClassIndex moc, const std::string& attribute,
                                ClassIndex farClass) const;

private:
    std::map<std::pair<ClassIndex, std::string>, std::vector<AssociationSide>> mSides;
};

}

#endif
