// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_TYPES_TYPEREADER_H
#define ORV_HOST_YANG_TYPES_TYPEREADER_H

#include "model/Model.h"
#include "yang/source/YangContext.h"

#include <memory>

namespace OrvHost {

/// The type of a leaf or leaf-list, without the targets of a reference, which the caller must add.
/// The check in it keeps `context` alive if it needs it.
TypeDef readType(const lysc_node* node, const std::shared_ptr<const YangContext>& context);

/// The type of a key: an enumeration stays an enumeration; every other type becomes a text, because
/// a key is a part of the DN.
TypeDef readKeyType(const lysc_node* node, const std::shared_ptr<const YangContext>& context);

}

#endif
