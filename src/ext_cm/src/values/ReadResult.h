// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_READRESULT_H
#define ORV_EXT_CM_READRESULT_H

#include "OrvMoAttributeValue.h"
#include "OwnedResult.h"
#include "values/ReferenceList.h"

namespace OrvExtCmRouterService {

/// The result of one attribute read, as a value. It is given back to its producer when this object
/// goes, also after a read that failed.
///
/// Threads: none of its own.
class ReadResult {
public:
    ReadResult() = default;

    /// Starts with \p value, which stays until a read puts another in its place. It belongs to the
    /// caller: no release function is ever called for it, also if a producer leaves one without a
    /// container of its own.
    explicit ReadResult(VekMoAttributeValueContainer_3& value)
        : mOwner(VekMoAttributeValueResult_3{nullptr, &value}), mBorrowed(&value) {}

    ReadResult(const ReadResult&) = delete;
    ReadResult& operator=(const ReadResult&) = delete;
    ~ReadResult() {
        if (mOwner.get().container == mBorrowed) {
            mOwner.take();
        }
    }

    /// The record, for one read to fill in.
    VekMoAttributeValueResult_3* record() { return mOwner.record(); }

    /// The value. A producer that answers a read with no container at all means no values.
    const VekMoAttributeValueContainer_3& value() const { return valueOf(mOwner.get()); }

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

    Orv::OwnedResult<VekMoAttributeValueResult_3> mOwner;
    const VekMoAttributeValueContainer_3* mBorrowed = nullptr;
};

}

#endif
