// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVMGMTSPIINTERFACE_1_H
#define ORV_SPI_ORVMGMTSPIINTERFACE_1_H

#include <cstddef>

/// \file
/// Identity of an interface. Conventions: OrvConventions.h.

/// Identity of an interface, and the head of every table: a pointer to a table is also a pointer to
/// its identity. The texts of a table live as long as the table. In a list of required interfaces
/// and in a question to the portal a field may be null, which asks for no particular component or
/// version; the interface name is always there. The component reads the identity of no table that a
/// host offers: one table may be offered under two identities, with either of them in its head.
struct OrvMgmtSpiInterface_1 {
    const char* componentName;
    const char* interfaceName;
    const char* interfaceVersion;
};

typedef OrvMgmtSpiInterface_1 VekMgmtSpiInterface_1;

/// \p identity as \p componentName offers it. The text is not copied.
constexpr VekMgmtSpiInterface_1 orvSpiOfferedBy(const VekMgmtSpiInterface_1& identity,
                                                const char* componentName) {
    return {componentName, identity.interfaceName, identity.interfaceVersion};
}

static_assert(sizeof(OrvMgmtSpiInterface_1) == 3 * sizeof(void*), "identity is three words");
static_assert(offsetof(OrvMgmtSpiInterface_1, interfaceName) == sizeof(void*), "second word");
static_assert(offsetof(OrvMgmtSpiInterface_1, interfaceVersion) == 2 * sizeof(void*), "third word");

#endif
