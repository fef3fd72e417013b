// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_COMPONENT_MISCHIEF_H
#define ORV_FUZZ_COMPONENT_MISCHIEF_H

#include "support/ByteSource.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Fuzz {

/// The functions of the host, for departures from what they do.
enum class Slot : std::uint8_t {
    GetPortal,
    Register,
    Lookup,
    Join,
    AddMessage,
    Release,
    Log,
    // The router of version 3 as clients' operations use it.
    RouterSet,
    RouterGet,
    RouterGetMany,
    RouterIterate,
    RouterNext,
    RouterCreate,
    RouterDelete,
    RouterAction,
    RouterFinalize,
    RouterExists,
    RouterCount,
    // The same as the bookkeeping uses it; in the order above.
    VekSet,
    VekGet,
    VekGetMany,
    VekIterate,
    VekNext,
    VekCreate,
    VekDelete,
    VekAction,
    VekFinalize,
    VekExists,
    VekCount,
    RouterSetMany,
    // Version 1.
    Router1Set,
    Router1Get,
    Router1Iterate,
    Router1Next,
    Router1Create,
    Router1Delete,
    Router1Action,
    InterceptorGet,
    InterceptorGetMany,
    InterceptorSet,
    InterceptorSetMany,
    // The model.
    MocOfDn,
    GeneralText,
    MocProperties,
    FirstAttribute,
    FirstContainment,
    FirstBiDir,
    FirstUniDir,
    ContainedMoc,
    NextContainment,
    EndMoc,
    EndAttribute,
    EndProperties,
    EndText,
    EndFlag,
    EndBound,
    FirstEnd,
    SecondEnd,
    NextBiDir,
    UniDirEnd,
    NextUniDir,
    TypeCode,
    TypeBound,
    AttributeProperties,
    AttributeMoc,
    AttributeType,
    NextAttribute,
    ReferencedMoc,
    Count
};

/// How a call departs from what it honestly does.
enum class Kind : std::uint8_t {
    Fails,        ///< a code, and nothing done
    FailsAfter,   ///< all done, and a code
    Throws,       ///< a std::exception
    ThrowsAfter,  ///< all done, and then that
    AnswersEmpty, ///< OrvOk, and nothing done
    Lies,         ///< what a lie is, the function knows
    LiesToo,      ///< so that there are more lies than failures
    ThrowsOther   ///< something that is no std::exception
};

struct Departure {
    Slot slot;
    Kind kind;
    std::uint8_t after;         ///< so many calls are honest before it
    bool stays;                 ///< and all calls after it depart too
    const std::uint8_t* detail; ///< bytes for the details, of the fuzzer's input
    std::size_t detailSize;
    bool isOver = false;
};

/// Which calls of the host depart, and how, all made from bytes.
class Mischief {
public:
    Mischief(const std::uint8_t* data, std::size_t size) : mData(data), mSize(size) {}

    /// Reads departures from \p source, which stands in the bytes given first.
    void read(ByteSource& source);

    /// To be asked at each call: how it departs, or null.
    const Departure* next(Slot slot);

    /// From now on nothing departs.
    void calm() { mDepartures.clear(); }

private:
    const std::uint8_t* mData;
    std::size_t mSize;
    std::vector<Departure> mDepartures;
};

}

#endif
