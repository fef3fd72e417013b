// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_TOLDTABLES_H
#define ORV_TESTS_COMPONENT_SUPPORT_TOLDTABLES_H

#include "OrvOamSpiManagedObject_1.h"
#include "OrvOamSpiManagedObject_3.h"
#include "OrvOamSpiTransactionalResource_2.h"
#include "VekOamSpiManagedObject_3_1.h"

namespace Scripted {

/// \file
/// Tables that do what the component's do, and tell each call as a step of the host (Steps.h). If
/// no story is kept, they are the component's own.
///
/// \p offered must live as long as the given one is used. There is one component at a time: the
/// table of the last call of a function holds for all that it has given.

const OrvOamSpiManagedObject_1& told(const OrvOamSpiManagedObject_1& offered);
const OrvOamSpiManagedObject_3& told(const OrvOamSpiManagedObject_3& offered);
const VekOamSpiManagedObject_3_1& told(const VekOamSpiManagedObject_3_1& offered);
const OrvOamSpiTransactionalResource_2& told(const OrvOamSpiTransactionalResource_2& offered);

}

#endif
