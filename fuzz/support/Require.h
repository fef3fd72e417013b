// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_SUPPORT_REQUIRE_H
#define ORV_FUZZ_SUPPORT_REQUIRE_H

#include <cstdio>
#include <cstdlib>
#include <string>

namespace Fuzz {

/// Ends the process, which is how a fuzzer learns of a find, unless \p isTrue.
inline void require(bool isTrue, const std::string& what) {
    if (!isTrue) {
        std::fprintf(stderr, "FOUND: %s\n", what.c_str());
        std::abort();
    }
}

}

#endif
