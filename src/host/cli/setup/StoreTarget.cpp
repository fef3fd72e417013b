// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StoreTarget.h"

namespace OrvHost {

namespace {

const std::string kPrefix = "postgresql:";

}

bool isPostgresql(const std::string& store) {
    return store.rfind(kPrefix, 0) == 0;
}

std::string postgresqlTarget(const std::string& store) {
    return store.rfind(kPrefix + "//", 0) == 0 ? store : store.substr(kPrefix.size());
}

}
