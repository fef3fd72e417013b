// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_DNFORM_H
#define ORV_HOST_MODEL_DNFORM_H

#include "Model.h"

#include <string>
#include <string_view>
#include <vector>

/// \file
/// A step of a DN can be written `Class=value` or `Class.attribute=value`, with the naming
/// attribute or the key's own name. Both name the same object. The host keeps and shows the first
/// form only; these functions bring what comes in into it. DNs can be internal or external. Any
/// thread.

namespace OrvHost {

/// \p dn with all steps in the form `Class=value`. Steps with another attribute, with a class that
/// the model does not have, or of another form are left as they are. Allocates nothing if there is
/// nothing to change.
std::string shortDn(const Model& model, std::string dn);

/// The same for a text of somebody else: a view of that text, which is copied only if it has to
/// change. The text must outlive the object.
class ShortDn {
public:
    ShortDn(const Model& model, std::string_view dn) : mGiven(dn) {
        if (mayBeLong(dn)) {
            shorten(model);
        }
    }

    // It stands wherever a text is taken.
    // NOLINTNEXTLINE(google-explicit-constructor)
    operator std::string_view() const { return mChanged.empty() ? mGiven : mChanged; }

    /// False for almost all DNs, which have no "." at all.
    static bool mayBeLong(std::string_view dn) { return dn.find('.') != std::string_view::npos; }

private:
    void shorten(const Model& model);

    std::string_view mGiven;
    std::string mChanged; ///< empty: the text is short as it was given
};

/// The same for all references in a value, those in structs included.
void shortenReferences(const Model& model, AttributeValue& value);
void shortenReferences(const Model& model, std::vector<NamedValue>& values);

}

#endif
