// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AssociationSides.h"

namespace OrvHost {

AssociationSides::AssociationSides(const Model& model) {
    for (const BiDirAssociation& association : model.biDirAssociations) {
        for (const int near : {0, 1}) {
            const AssociationEnd& here = association.ends[near];
            const AssociationEnd& far = association.ends[1 - near];
            // With one attribute at both ends, both passes would enter the same side.
            if (find(here.moc, far.name, far.moc) == nullptr) {
                mSides[{here.moc, far.name}].push_back(
                    {far.moc, here.name, near == 0, here.keepAtDelete});
            }
        }
    }
}

const std::vector<AssociationSide>& AssociationSides::of(ClassIndex moc,
                                                         const std::string& attribute) const {
    static const std::vector<AssociationSide> kNone;
    const auto found = mSides.find({moc, attribute});
    return found != mSides.end() ? found->second : kNone;
}

const AssociationSide* AssociationSides::find(ClassIndex moc, const std::string& attribute,
                                              ClassIndex farClass) const {
    for (const AssociationSide& side : of(moc, attribute)) {
        if (side.farClass == farClass) {
            return &side;
        }
    }
    return nullptr;
}

}
