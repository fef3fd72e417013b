// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVRETURN_H
#define ORV_SPI_ORVRETURN_H

#include <cstdint>

/// \file
/// Return codes, and the conventions that hold for every table in this directory.
///
/// 1. A table is a plain record: an interface identity (OrvMgmtSpiInterface_1), then pointers to
///    functions. A function takes no object pointer; any number of threads may be in it at once
///    unless its comment says otherwise.
/// 2. Words used for pointers: *borrowed* means valid for the duration of the call, the callee
///    copies what it keeps; *owned by the callee* means that the caller neither frees it nor keeps
///    it beyond the life that the comment names; *given* means that the caller must hand it back
///    through the release function that came with it.
/// 3. A pointer argument must not be null unless its comment says "may be null".
/// 4. Out parameters are written on success. What they hold after a failure is unspecified unless
///    the comment says otherwise, so initialise them before the call.
/// 5. Texts are NUL-terminated. A distinguished name (DN) comes in two forms: clients speak the
///    external form, the router and what stands behind it the internal form.
/// 6. Transaction handles are plain numbers; 0 is a handle like any other. One transaction is
///    driven by one thread at a time.
/// 7. Codes that a table does not know are passed on unchanged.

/// Result of nearly every table function. Values other than those below belong to the host.
typedef std::int32_t OrvReturnT;

constexpr OrvReturnT OrvOk = 0;                ///< success
constexpr OrvReturnT OrvNotActive = 2;         ///< the service is stopped, or the handle is unknown
constexpr OrvReturnT OrvFailure = -1;          ///< any failure without a code of its own
constexpr OrvReturnT OrvNotExist = -2;         ///< no such object; in a walk, the end of the list
constexpr OrvReturnT OrvAlreadyExist = -3;     ///< the name is taken
constexpr OrvReturnT OrvInvalidArgument = -8;  ///< an argument is not acceptable
constexpr OrvReturnT OrvValidationFailed = -9; ///< a rule of the model is violated

static_assert(sizeof(OrvReturnT) == 4, "32 bits");

#endif
