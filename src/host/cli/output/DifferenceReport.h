// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_OUTPUT_DIFFERENCEREPORT_H
#define ORV_HOST_CLI_OUTPUT_DIFFERENCEREPORT_H

#include "Colours.h"
#include "ValueJson.h"
#include "client/StateComparison.h"

#include <string>
#include <vector>

namespace OrvHost {

/// A document for each object, in their order.
JsonValue toJson(const std::vector<ObjectDifference>& differences);

/// For people: lines, all ended; the objects with a sign, and below each its attributes.
std::string toText(const std::vector<ObjectDifference>& differences, const Colours& colours);

}

#endif
