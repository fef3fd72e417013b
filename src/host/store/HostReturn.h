// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_HOSTRETURN_H
#define ORV_HOST_STORE_HOSTRETURN_H

#include "OrvReturn.h"

#include <string>

namespace OrvHost {

/// Return codes of the reference host beyond those that every table knows. The router also uses
/// OrvNotActive (no such transaction or iterator), OrvNotExist (no such object, class, attribute or
/// action), OrvAlreadyExist (an object with that DN is there) and OrvInvalidArgument (a value, a
/// DN or a parameter does not fit the model).

/// Another transaction has changed the object, or is about to. The transaction that gets this code
/// can only be aborted: its view is out of date, so validate and commit refuse it from then on.
constexpr OrvReturnT OrvHostWriteConflict = -101;
/// The attribute exists, but clients do not set it: it names the object or belongs to the system.
constexpr OrvReturnT OrvHostNotWritable = -102;
/// The class exists, but its objects do not stand at that place.
constexpr OrvReturnT OrvHostNotContained = -103;
/// The transaction is in a phase in which this cannot be done.
constexpr OrvReturnT OrvHostWrongState = -104;

/// The name of a code and what it means, for people: of the codes above and of those that every
/// table knows. Any thread.
std::string returnText(OrvReturnT code);

}

#endif
