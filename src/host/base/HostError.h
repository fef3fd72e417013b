// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_HOSTERROR_H
#define ORV_HOST_BASE_HOSTERROR_H

#include "HostReturn.h"

#include <stdexcept>
#include <string>

namespace OrvHost {

/// A request that the host's core refuses: the code that a table returns, and a text with what was
/// wrong, where, and what was expected.
class HostError : public std::runtime_error {
public:
    HostError(OrvReturnT code, const std::string& text) : std::runtime_error(text), mCode(code) {}

    OrvReturnT code() const noexcept { return mCode; }

private:
    OrvReturnT mCode;
};

}

#endif
