// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_ROUTER_RESULTBLOCK_H
#define ORV_HOST_ROUTER_RESULTBLOCK_H

#include "AutoMemory.h"
#include "OrvMoAttributeValue.h"
#include "model/Value.h"
#include "store/StoreTransaction.h"

#include <vector>

namespace OrvHost {

/// Makes results of version 3, which the receiver releases. Values that the store keeps are written
/// straight into one block of memory. Names of struct members and texts of enumerations are those
/// of the model, which must outlive every result.
OrvMoAttributeValueResult_3 makeResult(const AttributeView& view);
OrvMoAttributeValuesResult_3 makeResult(const std::vector<AttributeView>& views);
OrvMoAttributeValueResult_3 makeResult(const AttributeValue& value);

/// A result of version 1; \p memory owns it.
OrvMoAttributeValueContainer* makeResult(const AttributeView& view, Orv::AutoMemory& memory);

}

#endif
