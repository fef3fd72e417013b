// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_READRESULT_H
#define ORV_EXT_CM_READRESULT_H

#include "OrvMoAttributeValue.h"
#include "values/QuietRelease.h"
#include "values/ReferenceList.h"

namespace OrvExtCmRouterService {

/// The result of one attribute read, handed back to its producer when this object goes, once, if
/// there is both a container and a function to release it.
///
/// Threads: none of its own.
class ReadResult {
public:
    ReadResult() = default;

    /// Starts with \p value, which stands until a read puts another in its place. It is the
    /// caller's and never handed to a producer, not even to one that leaves a function to release
    /// it and no container of its own.
    explicit ReadResult(VekMoAttributeValueContainer_3& value)
        : mResult{nullptr, &value}, mBorrowed(&value) {}

    ReadResult(const ReadResult&) = delete;
    ReadResult& operator=(const ReadResult&) = delete;
    ~ReadResult() {
        if (mResult.container != mBorrowed) {
            release(mResult);
        }
    }

    /// Hands \p result back, if there is something to hand back.
    static void release(const VekMoAttributeValueResult_3& result) {
        releaseQuietly(result.release, result.container);
    }

    /// The record, for a read to fill in.
    VekMoAttributeValueResult_3* record() { return &mResult; }

    /// The value. A producer that answers a read with no container at all means no values.
    const VekMoAttributeValueContainer_3& value() const { return valueOf(mResult); }

    /// The value as references: none if it is something else.
    const VekMoAttributeValueContainer_3& references() const {
        return areReferences(value()) ? value() : noValues;
    }

    /// The value of a plain record.
    static const VekMoAttributeValueContainer_3&
    valueOf(const VekMoAttributeValueResult_3& result) {
        return result.container != nullptr ? *result.container : noValues;
    }

private:
    static constexpr VekMoAttributeValueContainer_3 noValues{OrvMoAttributeTypeMoRef_3, 0, nullptr};

    VekMoAttributeValueResult_3 mResult{nullptr, nullptr};
    const VekMoAttributeValueContainer_3* mBorrowed = nullptr;
};

}

#endif
