// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_COMPONENT_GIFTS_H
#define ORV_FUZZ_COMPONENT_GIFTS_H

#include "AutoMemory.h"
#include "OrvMoAttributeValue.h"
#include "OrvReturn.h"
#include "support/ByteSource.h"

#include <cstddef>
#include <map>
#include <memory>

namespace Fuzz {

/// The results that the host has given and not got back yet. A result lies in memory of its own,
/// which goes when it is released, so that a use after that is seen.
class Gifts {
public:
    using One = OrvMoAttributeValueResult_3;
    using Many = OrvMoAttributeValuesResult_3;

    /// Gives \p container, which lies in \p memory, through \p result. Without a release function
    /// it is taken back at the end of the operation.
    void give(std::unique_ptr<Orv::AutoMemory> memory, OrvMoAttributeValueContainer_3* container,
              bool hasRelease, One& result);
    void give(std::unique_ptr<Orv::AutoMemory> memory, OrvMoAttributeValueContainer_3** containers,
              bool hasRelease, Many& result);

    /// Gives what \p details say: a value that is not the attribute's, any number of containers, or
    /// nothing. \p result may be null.
    OrvReturnT giveAny(One* result, ByteSource& details);
    OrvReturnT giveAny(Many* result, ByteSource& details);

    /// The number of gifts so far.
    std::size_t given() const { return mGiven; }
    /// What was given after the first \p given is released once or not at all, since the call that
    /// gave it has failed.
    void forgiveAfter(std::size_t given);

    /// Ends the process if something that had to be released has not been. Nothing is out then.
    void endOperation(const char* operation);

    static void releaseOne(OrvMoAttributeValueContainer_3* container);
    static void releaseMany(OrvMoAttributeValueContainer_3** containers);

private:
    struct Gift {
        std::unique_ptr<Orv::AutoMemory> memory;
        std::size_t number;
        bool mustReturn;
    };

    void enter(std::unique_ptr<Orv::AutoMemory> memory, const void* gift, bool hasRelease);
    void takeBack(const void* gift);

    std::map<const void*, Gift> mOut;
    std::size_t mGiven = 0;
};

}

#endif
