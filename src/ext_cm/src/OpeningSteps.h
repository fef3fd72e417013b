// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_OPENINGSTEPS_H
#define ORV_EXT_CM_OPENINGSTEPS_H

#include "IdMappings.h"
#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvReturn.h"

#include <string>

/// \file
/// What a service and its operations begin with in every interface version.

namespace OrvExtCmRouterService {

/// Asks the host's portal, which may be null, for a table. \p table gets what the host writes,
/// whatever its code.
template <class Table>
OrvReturnT lookUpTable(OrvMgmtSpiInterfacePortal_1* portal, const VekMgmtSpiInterface_1& identity,
                       Table*& table) {
    if (portal == nullptr) {
        return OrvFailure;
    }
    void* found = table;
    const OrvReturnT code = portal->getInterface(identity, &found);
    table = static_cast<Table*>(found);
    return code;
}

/// True if all these pointers, which an operation reads through, are there.
template <class... Pointers>
bool areThere(const Pointers*... pointers) {
    return (... && (pointers != nullptr));
}

/// For an operation on the MO \p dn (external): OrvNotActive if the service is stopped, OrvFailure
/// if the DN is null or the other arguments cannot be read, OrvNotExist if the DN cannot be
/// translated, otherwise OrvOk and the internal form. Nothing has been done yet when it refuses.
OrvReturnT openOperation(bool started, bool argumentsAreReadable, const IdMappings& mappings,
                         const char* dn, std::string& internalDn);

/// For a question about the children of \p dn: the same, but an empty DN is the top level and does
/// not go to the translator.
OrvReturnT openWalk(bool started, bool argumentsAreReadable, const IdMappings& mappings,
                    const char* dn, std::string& internalDn);

/// For the creation of a child of \p dn: the same, but an empty DN goes to the translator, which
/// may answer it with an empty one.
OrvReturnT openCreation(bool started, bool argumentsAreReadable, const IdMappings& mappings,
                        const char* dn, std::string& internalDn);

}

#endif
