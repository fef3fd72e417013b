// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_HOSTRETURN_H
#define ORV_HOST_BASE_HOSTRETURN_H

#include "OrvReturn.h"

#include <string>

namespace OrvHost {

/// Return codes of the reference host, in addition to those that every table has. The router also
/// uses OrvNotActive (no such transaction or iterator), OrvNotExist (no such object, class,
/// attribute or action), OrvAlreadyExist (there is an object with that DN) and OrvInvalidArgument
/// (a value, a DN or a parameter does not fit the model).

/// Another transaction has changed the object, or is about to. The transaction that gets this code
/// can only be aborted: its snapshot is out of date, so validate and commit refuse it from then on.
constexpr OrvReturnT OrvHostWriteConflict = -101;
/// The attribute exists, but clients cannot set it: it names the object or only the system sets it.
constexpr OrvReturnT OrvHostNotWritable = -102;
/// The class exists, but its objects are not allowed at that place.
constexpr OrvReturnT OrvHostNotContained = -103;
/// The request is not possible in the current phase of the transaction.
constexpr OrvReturnT OrvHostWrongState = -104;
/// Nothing can be committed now: the disk or the server that keeps the commits does not take them.
/// Nothing of the transaction has happened.
constexpr OrvReturnT OrvHostStoreUnavailable = -105;
/// What keeps the commits did not answer, so it is not known whether the transaction is committed.
constexpr OrvReturnT OrvHostOutcomeUnknown = -106;

/// The name and the meaning of a code, for people: of the codes in this file and of those that
/// every table has. Any thread.
std::string returnText(OrvReturnT code);

}

#endif
