// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef CELL_STATE_OPERATIONALSTATE_H
#define CELL_STATE_OPERATIONALSTATE_H

#include <orv/OrvMoAttributeValue.h>

/// The attribute that this component serves, and the router's attribute that its value is computed
/// from.
constexpr const char* servedAttribute = "operationalState";
constexpr const char* sourceAttribute = "administrativeState";

/// True if \p attrName names the attribute that this component serves.
bool isServed(const char* attrName);

/// True if this write shuts a cell down. \p value may be null.
bool isShutdown(const char* attrName, const OrvMoAttributeValueContainer_3* value);

/// True if \p administrative is the state of a locked cell. A state that is missing or has no value
/// counts as locked. May be null.
bool isLocked(const OrvMoAttributeValueContainer_3* administrative);

/// The operational state of a cell with this administrative state: a cell works unless it is
/// locked. \p administrative may be null. The returned text is a constant.
const char* operationalState(const OrvMoAttributeValueContainer_3* administrative);

#endif
