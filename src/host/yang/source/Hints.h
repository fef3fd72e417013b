// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SOURCE_HINTS_H
#define ORV_HOST_YANG_SOURCE_HINTS_H

#include <cstddef>
#include <string>

namespace OrvHost {

/// What to do about a message of the YANG library.
struct Hint {
    const char* sign; ///< a part of the message
    const char* text;
};

/// The first hint for a message, as " (text)"; empty if there is none.
template <std::size_t kCount>
std::string hintFor(const Hint (&hints)[kCount], const std::string& message) {
    for (const Hint& hint : hints) {
        if (message.find(hint.sign) != std::string::npos) {
            return std::string(" (") + hint.text + ")";
        }
    }
    return "";
}

}

#endif
