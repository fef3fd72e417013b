// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_CONVERTEDRESULTDATA_H
#define ORV_EXT_CM_CONVERTEDRESULTDATA_H

#include "AutoMemory.h"
#include "OrvMoAttributeValue.h"

#include <cstdint>

namespace OrvExtCmRouterService {

/// A view of somebody's value, together with the memory of its conversion and with what is needed
/// to release the original. The view is read as an ordinary container. It starts as a copy of the
/// original's three fields; a conversion replaces `values`, never `type` or `count`, and never
/// writes to the original.
///
/// Destruction frees the conversion, nested views included, and leaves the original alone: only the
/// two release functions, which clients get, hand the original back.
///
/// Threads: one at a time.
class ConvertedResultData final : public OrvMoAttributeValueContainer_3, public Orv::AutoMemory {
public:
    using ReleaseFn = decltype(OrvMoAttributeValueResult_3::release);
    using MultiReleaseFn = decltype(OrvMoAttributeValuesResult_3::release);

    /// \p release may be null, as for a value that came from a client. A null \p container gives an
    /// empty view of type 0. The original must outlive the view.
    ConvertedResultData(ReleaseFn release, OrvMoAttributeValueContainer_3* container)
        : OrvMoAttributeValueContainer_3(container != nullptr ? *container
                                                              : OrvMoAttributeValueContainer_3{}),
          _origRelease(release),
          _origContainer(container) {}

    /// For the first view of a result of many values: what releases the whole original.
    void setOriginalMany(MultiReleaseFn release, OrvMoAttributeValueContainer_3** containers) {
        _origMultiRelease = release;
        _origContainers = containers;
    }

    /// A slot of the original, \p index below `count`.
    const OrvMoAttributeValue_3& originalValue(std::uint32_t index) const;

    /// The array to write converted slots to: a zeroed one, made at the first call.
    OrvMoAttributeValue_3* ownValues();

    /// A view of \p container that lives as long as this one.
    ConvertedResultData& addNested(OrvMoAttributeValueContainer_3* container);

    /// Releases a view together with its original, the original first. Null is nothing to release.
    static void releaseFunc(OrvMoAttributeValueContainer_3* container);

    /// Releases an array of views, the original's array first and once. \p containers came from
    /// calloc and is ended by a null pointer. Without a view there is nothing to release.
    static void multiReleaseFunc(OrvMoAttributeValueContainer_3** containers);

    /// Ends such an array and its views, and leaves the originals alone.
    static void deleteViews(OrvMoAttributeValueContainer_3** containers);

private:
    ReleaseFn _origRelease;
    OrvMoAttributeValueContainer_3* _origContainer;
    MultiReleaseFn _origMultiRelease = nullptr;
    OrvMoAttributeValueContainer_3** _origContainers = nullptr;
};

}

#endif
