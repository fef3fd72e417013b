// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVRETURN_H
#define ORV_SPI_ORVRETURN_H

#include <cstdint>

/// \file
/// Return codes. Conventions: OrvConventions.h.

/// Result of nearly every table function. Values other than those below belong to the host. A host
/// may use those below as well, so that a code does not tell who gave it.
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
