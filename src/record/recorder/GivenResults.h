// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_RECORDER_GIVENRESULTS_H
#define ORV_RECORD_RECORDER_GIVENRESULTS_H

#include "Recording.h"

namespace OrvRecord {

/// Records the release of a result that passed the border of the component: puts a function into
/// \p release that records the call and goes on to the one that was there. \p side says who gave
/// the result, \p call in which call. Nothing changes if \p given or \p release is null, or without
/// memory.
///
/// Threads: any; the result is released on any, once.
void keepForRelease(Side side, std::uint64_t call, OrvMoAttributeValueContainer_3* given,
                    void (*&release)(OrvMoAttributeValueContainer_3*)) noexcept;
void keepForRelease(Side side, std::uint64_t call, OrvMoAttributeValueContainer_3** given,
                    void (*&release)(OrvMoAttributeValueContainer_3**)) noexcept;

/// True if the component has not released all that the host gave.
bool isWaitingForRelease();

}

#endif
