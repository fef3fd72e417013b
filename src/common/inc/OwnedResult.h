// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_COMMON_OWNEDRESULT_H
#define ORV_COMMON_OWNEDRESULT_H

#include "OrvMoAttributeValue.h"

#include <utility>

/// \file
/// What a receiver does with a result that was given to it: releases it once. For clients,
/// interceptors and components alike. Conventions: OrvConventions.h.

namespace Orv {

/// Calls \p release, which may be null, with \p given. What it throws is dropped: the receiver has
/// used the value by then, and nothing may leave the destructors that release one.
template <class Given>
void releaseQuietly(void (*release)(Given*), Given* given) noexcept {
    if (release == nullptr) {
        return;
    }
    try {
        release(given);
    } catch (...) { // NOLINT(bugprone-empty-catch): see above
    }
}

/// Lets the producer of \p result release it. Nothing happens if there is no value, or no function
/// to release it.
inline void giveBack(const OrvMoAttributeValueResult_3& result) noexcept {
    if (result.container != nullptr) {
        releaseQuietly(result.release, result.container);
    }
}

/// The same for many values. A function to release them is called also if there is no array.
inline void giveBack(const OrvMoAttributeValuesResult_3& result) noexcept {
    releaseQuietly(result.release, result.containers);
}

/// Owns a result of the type \p Result, one of the two above, and releases it exactly once, however
/// its scope is left.
///
/// Two uses. Either read into a record of your own, and put it here after a success: the result of
/// a failed call has no meaning. Or read into record(): then what the call leaves is released also
/// after a failure, as the component does with what a router leaves.
///
/// Threads: one at a time.
template <class Result>
class OwnedResult {
public:
    /// Owns nothing yet.
    OwnedResult() = default;

    /// Takes \p result over.
    explicit OwnedResult(const Result& result) : mResult(result) {}

    OwnedResult(OwnedResult&& other) noexcept : mResult(other.take()) {}
    OwnedResult(const OwnedResult&) = delete;
    OwnedResult& operator=(const OwnedResult&) = delete;
    OwnedResult& operator=(OwnedResult&&) = delete;
    ~OwnedResult() { giveBack(mResult); }

    /// The result. It ends with this object.
    const Result& get() const { return mResult; }

    /// The record, for a call to write to while nothing is owned yet: what is overwritten is not
    /// released.
    Result* record() { return &mResult; }

    /// The result, for the caller to release. This object owns nothing any more.
    Result take() { return std::exchange(mResult, Result{}); }

private:
    Result mResult{};
};

}

#endif
