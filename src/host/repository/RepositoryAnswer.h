// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_REPOSITORY_REPOSITORYANSWER_H
#define ORV_HOST_REPOSITORY_REPOSITORYANSWER_H

#include "OrvReturn.h"
#include "RepositoryHandle.h"
#include "RepositoryRows.h"
#include "VekOamSpiModelRepository_4.h"
#include "model/Model.h"

/// \file
/// The common frame of the repository's functions: each checks its arguments in the same way and
/// then reads one row of the index. The return codes that ModelRepository documents are made here.

namespace OrvHost {

/// The rows of the one repository of the process; of no repository if there is none. Only
/// ModelRepository writes it, in its constructor and destructor, while nobody uses the table.
/// Hidden, so that each function finds it without a look into a table of addresses.
[[gnu::visibility("hidden")]] extern constinit RepositoryRows currentRepository;

/// The code for a call that found no row for its handle, or has no place for its result.
inline OrvReturnT refusalOf(Handle handle) {
    if (currentRepository.model() == nullptr) {
        return OrvNotActive;
    }
    return handle == 0 ? OrvNotExist : OrvInvalidArgument;
}

/// Checks the arguments, then lets `read(row, result)` write the result and return the code. `Find`
/// is the function of RepositoryRows that finds the row of `handle`: none for zero.
template <auto Find, class Out, class Read>
OrvReturnT answer(Handle handle, Out* out, const Read& read) {
    const auto* const row = (currentRepository.*Find)(handle);
    if (row == nullptr || out == nullptr) {
        return refusalOf(handle);
    }
    return read(*row, *out);
}

/// The result is a member of the row, a handle; 0 in it means "not there" or "end of the list".
template <auto Find, auto Member>
OrvReturnT answerHandle(Handle handle, Handle* out) {
    return answer<Find>(handle, out, [](const auto& row, Handle& result) -> OrvReturnT {
        if (row.*Member == 0) {
            return OrvNotExist;
        }
        result = row.*Member;
        return OrvOk;
    });
}

/// The handle of a block of general properties is the handle of its owner with one bit set.
template <auto Find>
OrvReturnT answerProperties(Handle owner, Handle* properties) {
    return answer<Find>(owner, properties, [owner](const auto&, Handle& result) -> OrvReturnT {
        result = owner | kPropertiesBit;
        return OrvOk;
    });
}

/// Writes a bound by its property identifier.
inline OrvReturnT answerBound(const Bounds& bounds, int identifier, long long& result) {
    switch (identifier) {
    case VekOamSpiMrLowerBound_4:
        result = bounds.lower;
        return OrvOk;
    case VekOamSpiMrUpperBound_4:
        result = bounds.upper;
        return OrvOk;
    default:
        return OrvInvalidArgument;
    }
}

}

#endif
