// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_TEXTHASH_H
#define ORV_HOST_BASE_TEXTHASH_H

#include <cstddef>
#include <functional>
#include <string_view>

namespace OrvHost {

/// Hash of texts for tables of std::string in which one looks up by std::string_view, too.
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
        return std::hash<std::string_view>()(text);
    }
};

}

#endif
