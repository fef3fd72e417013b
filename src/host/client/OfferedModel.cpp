// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OfferedModel.h"

#include "ClientErrors.h"
#include "runtime/Host.h"
#include "runtime/InterfaceIdentity.h"

namespace OrvHost {

std::vector<ClassDescription> describeOfferedClasses(Host& host) {
    const auto* table = host.find<VekOamSpiModelRepository_4>(VekOamSpiModelRepository_4_Id);
    if (table == nullptr) {
        throw NotOfferedError("nobody offers " + identityText(VekOamSpiModelRepository_4_Id));
    }
    return describeClasses(RepositoryReader(*table), topLevelClasses(host.model()));
}

}
