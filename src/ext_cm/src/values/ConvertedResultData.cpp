// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "values/ConvertedResultData.h"

#include "OwnedResult.h"

#include <cstdlib>

namespace OrvExtCmRouterService {

namespace {

// A client releases only what was handed out to it, and that is always a view.
ConvertedResultData* viewOf(OrvMoAttributeValueContainer_3* container) {
    return static_cast<ConvertedResultData*>(container);
}

}

const OrvMoAttributeValue_3& ConvertedResultData::originalValue(std::uint32_t index) const {
    return _origContainer->values[index];
}

// Slots are the producer's until one must change: a value without DNs costs no copy.
OrvMoAttributeValue_3* ConvertedResultData::ownValues() {
    if (values == _origContainer->values) {
        values = malloc<OrvMoAttributeValue_3>(count);
    }
    return values;
}

ConvertedResultData& ConvertedResultData::addNested(OrvMoAttributeValueContainer_3* container) {
    auto* const nested = new ConvertedResultData(nullptr, container);
    own(nested);
    return *nested;
}

void ConvertedResultData::releaseFunc(OrvMoAttributeValueContainer_3* container) {
    if (container == nullptr) {
        return;
    }
    const ConvertedResultData* const view = viewOf(container);
    Orv::giveBack(OrvMoAttributeValueResult_3{view->_origRelease, view->_origContainer});
    delete view;
}

// The first view answers for the producer's whole array, the others have nothing to release.
void ConvertedResultData::multiReleaseFunc(OrvMoAttributeValueContainer_3** containers) {
    if (containers == nullptr || containers[0] == nullptr) {
        return;
    }
    const ConvertedResultData* const first = viewOf(containers[0]);
    if (first->_origContainers != nullptr) {
        Orv::releaseQuietly(first->_origMultiRelease, first->_origContainers);
    }
    deleteViews(containers);
}

void ConvertedResultData::deleteViews(OrvMoAttributeValueContainer_3** containers) {
    for (std::size_t index = 0; containers[index] != nullptr; ++index) {
        delete viewOf(containers[index]);
    }
    std::free(static_cast<void*>(containers));
}

}
