// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_UNIT_EXT_CM_PLAINHOST_H
#define ORV_TESTS_UNIT_EXT_CM_PLAINHOST_H

#include "OrvOamSpiManagedObject_3.h"
#include "VekMgmtSpiThreadContext_2.h"
#include "VekOamSpiModelRepository_4.h"

/// Host tables that answer at once and take no lock: where the scripted host would take most of the
/// time, or where locks are counted.
namespace PlainHost {

/// A router where every MO is there, every attribute empty and every write taken.
OrvOamSpiManagedObject_3* router();
/// How many reads the router has answered since this was last set.
extern int reads;

/// A model of one class with one attribute, "ys", which holds any number of references to the
/// class. It is both the bidirectional association of the class with itself and its unidirectional
/// one.
VekOamSpiModelRepository_4* repository();

/// Takes every message.
VekMgmtSpiThreadContext_2* threadContext();

/// The three tables, as Orv::Portal looks them up.
OrvReturnT lookup(VekMgmtSpiInterface_1 id, void** result);

}

#endif
