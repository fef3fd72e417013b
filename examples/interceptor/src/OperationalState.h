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

/// The operational state of a cell with this administrative state: a cell works unless it is
/// locked. A state that is missing or has no value counts as locked. \p administrative may be null.
/// The returned text is a constant.
const char* operationalState(const OrvMoAttributeValueContainer_3* administrative);

#endif
