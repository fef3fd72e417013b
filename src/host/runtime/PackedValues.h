// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_RUNTIME_PACKEDVALUES_H
#define ORV_HOST_RUNTIME_PACKEDVALUES_H

#include "base/TextHash.h"
#include "model/Value.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace OrvHost {

/// Keeps named values of any kind in few bytes, whether they fit a model or not: a data set holds
/// those of a million objects. Names of attributes and members are kept once.
///
/// One thread at a time.
class PackedValues {
public:
    PackedValues() = default;
    PackedValues(const PackedValues&) = delete;
    PackedValues& operator=(const PackedValues&) = delete;

    std::string pack(const std::vector<NamedValue>& values);
    /// Writes to \p values what this object has packed into \p bytes. Their memory is used again.
    void unpack(std::string_view bytes, std::vector<NamedValue>& values) const;
    std::vector<NamedValue> unpack(std::string_view bytes) const {
        std::vector<NamedValue> values;
        unpack(bytes, values);
        return values;
    }

private:
    struct Writer;
    struct Reader;

    std::uint32_t numberOf(const std::string& name);

    std::unordered_map<std::string, std::uint32_t, TextHash, std::equal_to<>> mNumbers;
    std::vector<const std::string*> mNames; ///< by number; in mNumbers, which never moves them
    std::string mBuffer;                    ///< for pack: its memory is used again
};

}

#endif
