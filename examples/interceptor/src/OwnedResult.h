// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef CELL_STATE_OWNEDRESULT_H
#define CELL_STATE_OWNEDRESULT_H

#include <OrvMoAttributeValue.h>

#include <utility>

// [give-back]
/// Lets the producer of a result release it. Each of the fields may be null.
inline void giveBack(const OrvMoAttributeValueResult_3& result) {
    if (result.release != nullptr && result.container != nullptr) {
        result.release(result.container);
    }
}
inline void giveBack(const OrvMoAttributeValuesResult_3& result) {
    if (result.release != nullptr) {
        result.release(result.containers);
    }
}
// [/give-back]

/// Owns the result of a read that succeeded and releases it exactly once, however its scope is
/// left. The result of a read that failed is undefined and must not be put here.
template <class Result>
class OwnedResult {
public:
    explicit OwnedResult(const Result& result) : mResult(result) {}
    OwnedResult(OwnedResult&& other) noexcept : mResult(std::exchange(other.mResult, Result{})) {}
    OwnedResult& operator=(OwnedResult&&) = delete;
    ~OwnedResult() { giveBack(mResult); }

    const Result& get() const { return mResult; }

private:
    Result mResult;
};

#endif
