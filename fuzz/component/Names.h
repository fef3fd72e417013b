// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_COMPONENT_NAMES_H
#define ORV_FUZZ_COMPONENT_NAMES_H

#include "support/ByteSource.h"

#include <string>

/// \file
/// The few names that model, host and clients speak of, so that their choices meet.

namespace Fuzz {

constexpr const char* kClasses[] = {"ManagedElement", "Unit", "Cell",
                                    "Site",           "Part", "ManagedObject"};
constexpr const char* kReferences[] = {"cells", "unit", "site", "parts"};
constexpr const char* kAttributes[] = {"cells",
                                       "unit",
                                       "site",
                                       "parts",
                                       "place",
                                       "label",
                                       "managedElementId",
                                       "networkManagedElementId",
                                       "unitId",
                                       "cellId"};
constexpr const char* kRootIdentity = "paris"; ///< by which clients know the root

/// The value of the root's step in DNs of clients, and in those of the host.
enum class Form { External, Internal };

/// A DN, mostly one that makes sense; or a malformed one, an empty one, a very long one.
std::string makeDn(ByteSource& source, Form form);

/// A DN that makes sense, for \p choice from 0 to kGoodDns - 1.
std::string goodDn(std::size_t choice, Form form);
constexpr std::size_t kGoodDns = 32;

std::string makeClass(ByteSource& source);
std::string makeAttribute(ByteSource& source);
std::string makeNamingValue(ByteSource& source);

/// The class of the last step; empty if there is none.
std::string classOf(const std::string& dn);

/// All steps but the last one.
std::string parentOf(const std::string& dn);

}

#endif
