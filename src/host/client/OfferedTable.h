// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_OFFEREDTABLE_H
#define ORV_HOST_CLIENT_OFFEREDTABLE_H

#include "ClientErrors.h"
#include "OrvMgmtSpiInterface_1.h"
#include "runtime/Host.h"
#include "runtime/InterfaceIdentity.h"

namespace OrvHost {

/// The table that a started component offers under \p id. Throws NotOfferedError if none does. For
/// the clients of this library, and for benchmarks, which measure the calls of tables themselves.
template <class Table>
Table* requireOffered(Host& host, const VekMgmtSpiInterface_1& id) {
    Table* table = host.find<Table>(id);
    if (table == nullptr) {
        throw NotOfferedError("no started component offers " + identityText(id));
    }
    return table;
}

}

#endif
