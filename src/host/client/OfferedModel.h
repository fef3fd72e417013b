// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_OFFEREDMODEL_H
#define ORV_HOST_CLIENT_OFFEREDMODEL_H

#include "repository/ModelDescription.h"

#include <vector>

namespace OrvHost {

class Host;

/// All classes as components see them: through the table VekOamSpiModelRepository_4 that \p host
/// offers at its portal. Throws NotOfferedError if there is none, and Orv::OrvException for errors
/// of the table.
std::vector<ClassDescription> describeOfferedClasses(Host& host);

}

#endif
