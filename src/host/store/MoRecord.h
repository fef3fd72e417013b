// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_MORECORD_H
#define ORV_HOST_STORE_MORECORD_H

#include <cstddef>
#include <memory>
#include <string_view>

namespace OrvHost {

/// The variable part of a committed object in one block of memory: its naming value, then its
/// attributes in the form of AttributeBytes. It never changes after construction.
class MoRecord {
public:
    MoRecord() = default;
    MoRecord(std::string_view name, std::string_view attributes);

    std::string_view name() const;
    std::string_view attributes() const;
    /// Size of the block.
    std::size_t size() const;

private:
    struct Head {
        unsigned nameLength;
        unsigned attributesLength;
    };
    Head head() const;

    std::unique_ptr<char[]> mBlock; ///< head, name, attributes; null in an empty record
};

}

#endif
