// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_COUNTED_H
#define ORV_HOST_BASE_COUNTED_H

#include <cstdint>
#include <string>
#include <string_view>

namespace OrvHost {

/// "1 object", "2 objects": \p noun is what one of them is called.
inline std::string counted(std::uint64_t number, std::string_view noun) {
    return std::to_string(number).append(" ").append(noun).append(number == 1 ? "" : "s");
}

}

#endif
