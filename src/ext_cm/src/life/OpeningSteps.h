// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_OPENINGSTEPS_H
#define ORV_EXT_CM_OPENINGSTEPS_H

#include "OrvReturn.h"
#include "values/IdMappings.h"

#include <string>

/// \file
/// What the operations on MOs begin with, in every interface version. Those that continue or end a
/// walk do not: they look their iterator up instead.

namespace OrvExtCmRouterService {

/// True if all these pointers, which an operation reads through, are there.
template <class... Pointers>
bool areThere(const Pointers*... pointers) {
    return (... && (pointers != nullptr));
}

/// For operations that read through nothing but the DN.
inline bool nothingElse() {
    return true;
}

/// What every operation on \p dn asks before it does anything: OrvNotActive if the service is
/// stopped, OrvFailure if the DN is null or \p areReadable says that other arguments cannot be
/// read. A stopped service reads none of them.
template <class AreReadable>
OrvReturnT admit(bool started, const char* dn, const AreReadable& areReadable) {
    if (!started) {
        return OrvNotActive;
    }
    return dn != nullptr && areReadable() ? OrvOk : OrvFailure;
}

/// How an operation begins.
struct Opened {
    OrvReturnT code; ///< OrvOk, or the answer that ends the operation
    std::string dn;  ///< internal; empty if the code is not OrvOk
};

/// For an operation on the MO \p dn (external): what admit answers, OrvNotExist if the DN cannot be
/// translated, otherwise OrvOk and the internal form.
template <class AreReadable>
Opened openOperation(bool started, const IdMappings& mappings, const char* dn,
                     const AreReadable& areReadable) {
    const OrvReturnT admitted = admit(started, dn, areReadable);
    Opened opened{admitted, admitted == OrvOk ? mappings.toInternalDn(dn) : std::string()};
    if (admitted == OrvOk && opened.dn.empty()) {
        opened.code = OrvNotExist;
    }
    return opened;
}

/// For a question about the children of \p dn: the same, but an empty DN is the top level and does
/// not go to the translator.
template <class AreReadable>
Opened openWalk(bool started, const IdMappings& mappings, const char* dn,
                const AreReadable& areReadable) {
    if (started && dn != nullptr && *dn == '\0') {
        return {admit(started, dn, areReadable), {}};
    }
    return openOperation(started, mappings, dn, areReadable);
}

/// For the creation of a child of \p dn: the same, but an empty DN goes to the translator, which
/// may answer it with an empty one.
template <class AreReadable>
Opened openCreation(bool started, const IdMappings& mappings, const char* dn,
                    const AreReadable& areReadable) {
    Opened opened = openOperation(started, mappings, dn, areReadable);
    if (opened.code == OrvNotExist && *dn == '\0') {
        opened.code = OrvOk;
    }
    return opened;
}

}

#endif
