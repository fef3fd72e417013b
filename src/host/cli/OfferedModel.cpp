// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OfferedModel.h"

#include "CliError.h"
#include "runtime/Host.h"
#include "runtime/InterfaceIdentity.h"

namespace OrvHost {

namespace {

constexpr VekMgmtSpiInterface_1 kRepository{"VekOamSpiModelRepositoryService",
                                            "VekOamSpiModelRepository", "4"};

}

std::vector<ClassDescription> describeOfferedClasses(Host& host) {
    const auto* table = host.find<VekOamSpiModelRepository_4>(kRepository);
    if (table == nullptr) {
        throw LoadError("nobody offers " + identityText(kRepository));
    }
    return describeClasses(RepositoryReader(*table), topLevelClasses(host.model()));
}

}
