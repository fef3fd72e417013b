// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_DNTEXT_H
#define ORV_HOST_BASE_DNTEXT_H

#include <optional>
#include <string>
#include <string_view>

namespace OrvHost {

/// One step of an internal DN: `Class=value`. Views into the DN.
struct DnStep {
    std::string_view className;
    std::string_view value;
};

/// A DN split into its parent and its last step.
struct SplitDn {
    std::string_view parent; ///< empty: at the top level
    DnStep leaf;
};

/// Takes the last step off \p dn. Nothing if that step is not of the form `Class=value` or the
/// parent is an empty text before a comma.
std::optional<SplitDn> splitDn(std::string_view dn);

/// True if \p text has the form of a DN: steps `Class=value`, none of them with an empty part.
bool isDn(std::string_view text);

/// The DN of a child. \p parent may be empty.
std::string childDn(std::string_view parent, std::string_view className, std::string_view value);

/// The common part of the DNs of all children of one class under \p parent: everything before the
/// value.
std::string childPrefix(std::string_view parent, std::string_view className);

}

#endif
