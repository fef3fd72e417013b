// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_ORV_COMMON_DNUTIL_H
#define ORV_ORV_COMMON_DNUTIL_H

#include <string>

namespace Orv {

/// Questions about the text of DNs, the same for both forms. Any text is accepted, whether it is a
/// DN or not. Conventions: OrvConventions.h.
///
/// Stateless: any thread, any time. They throw std::bad_alloc at most.
class DnUtil {
public:
    /// True if `value` may stand as a naming value in a DN: not empty, valid UTF-8, no control
    /// character, none of `,` `=` `+` `"` `\` `<` `>` `;`, no space at either end. `value` is
    /// borrowed and may be null, which is not valid. The component asks this for the attribute
    /// "networkManagedElementId" only, not for the naming values of new MOs.
    static bool validateMoNamingAttr(const char* value);

    /// The MOC path of `dn`: the class names of its steps joined by ",". A step `Class.attr=value`
    /// counts as `Class`. "Parent=1,Unit=7" gives "Parent,Unit"; an empty DN an empty path. A comma
    /// at the very beginning is passed over: a model that finds the MOC of a DN with this operation
    /// must look for that comma first (OrvConventions.h, 8). The result is the key under which
    /// interceptors are registered, and equal to what repeated popLeafClass gives.
    static std::string getMocPath(const std::string& dn);

    /// Takes the last step off `dn` and puts its class into `leaf`: from "Parent=1,Unit.label=7" it
    /// leaves "Parent=1" and the leaf "Unit". False, with both untouched, if `dn` is empty.
    static bool popLeafClass(std::string& dn, std::string& leaf);
};

}

#endif
