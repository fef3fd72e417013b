// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_MORECORD_H
#define ORV_HOST_STORE_MORECORD_H

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace OrvHost {

/// The variable part of a committed object in one block of memory: its naming value, then its
/// attributes in the form of AttributeBytes. It never changes after construction, and its texts
/// stay at their place when it is moved.
class MoRecord {
public:
    MoRecord() = default;
    MoRecord(std::string_view name, std::string_view attributes);

    std::string_view name() const {
        return mBlock ? std::string_view(mBlock.get() + sizeof(Head), head().nameLength)
                      : std::string_view();
    }
    std::string_view attributes() const {
        const Head sizes = head();
        return mBlock ? std::string_view(mBlock.get() + sizeof(Head) + sizes.nameLength,
                                         sizes.attributesLength)
                      : std::string_view();
    }
    /// Size of the block.
    std::size_t size() const {
        const Head sizes = head();
        return mBlock ? sizeof(Head) + sizes.nameLength + sizes.attributesLength : 0;
    }

private:
    struct Head {
        unsigned nameLength;
        unsigned attributesLength;
    };
    Head head() const {
        Head head{};
        if (mBlock) {
            std::memcpy(&head, mBlock.get(), sizeof(Head));
        }
        return head;
    }

    std::unique_ptr<char[]> mBlock; ///< head, name, attributes; null in an empty record
};

}

#endif
