// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_ROOTOBJECT_H
#define ORV_HOST_BASE_ROOTOBJECT_H

namespace OrvHost {

/// The class of the element at the root, the only one whose name clients know differently.
constexpr const char* kRootClass = "ManagedElement";
/// The name of the element at the root in internal DNs.
constexpr const char* kRootName = "1";

}

#endif
