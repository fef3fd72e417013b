// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RouterTap.h"

#include "Tally.h"

#include <atomic>
#include <string>

namespace Soak {

using namespace OrvHost;

namespace {

using Container = OrvMoAttributeValueContainer_3;
using Named = OrvMoNamedAttributeValueContainer_3;

// The functions of a table get no object argument.
Tally* theTally = nullptr;
OrvOamSpiManagedObject_3 router3;

std::atomic<std::int64_t> liveResults{0};
std::atomic<std::uint64_t> openedIterators{0};
std::atomic<void (*)(Container*)> releaseOne{nullptr};
std::atomic<void (*)(Container**)> releaseMany{nullptr};

void countedReleaseOne(Container* container) {
    --liveResults;
    releaseOne.load()(container);
}

void countedReleaseMany(Container** containers) {
    --liveResults;
    releaseMany.load()(containers);
}

/// Replaces the router's release function by \p counted. The router has only one such function for
/// all results.
template <class Release>
void count(Release& release, std::atomic<Release>& original, Release counted) {
    if (release == nullptr) {
        return;
    }
    Release expected = nullptr;
    if (!original.compare_exchange_strong(expected, release) && expected != release) {
        theTally->fail("the router releases results of one kind in two ways");
    }
    release = counted;
    ++liveResults;
}

OrvReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                          OrvMoAttributeValueResult_3* result) {
    const OrvReturnT code = router3.getMoAttribute(txHandle, dn, attrName, result);
    if (code == OrvOk) {
        count(result->release, releaseOne, &countedReleaseOne);
    }
    return code;
}

OrvReturnT getMoAttributes(unsigned long txHandle, const char* dn, const char** attrNames,
                           OrvMoAttributeValuesResult_3* result) {
    const OrvReturnT code = router3.getMoAttributes(txHandle, dn, attrNames, result);
    if (code == OrvOk) {
        count(result->release, releaseMany, &countedReleaseMany);
    }
    return code;
}

OrvReturnT newMoIterator(unsigned long txHandle, const char* dn, const char* className,
                         unsigned long long* iterator) {
    ++openedIterators;
    return router3.newMoIterator(txHandle, dn, className, iterator);
}

OrvReturnT action(unsigned long txHandle, const char* dn, const char* name, Named** parameters,
                  OrvMoAttributeValueResult_3* result) {
    const OrvReturnT code = router3.action(txHandle, dn, name, parameters, result);
    if (code == OrvOk) {
        count(result->release, releaseOne, &countedReleaseOne);
    }
    return code;
}

void tap(OrvOamSpiManagedObject_3& table) {
    table.getMoAttribute = &getMoAttribute;
    table.getMoAttributes = &getMoAttributes;
    table.newMoIterator = &newMoIterator;
    table.action = &action;
}

}

RouterTap::RouterTap(CmRouter& router, Tally& tally) {
    theTally = &tally;
    router3 = *router.getInterface3();
    tap(*router.getInterface3());
    tap(*router.getVekInterface3());
}

std::int64_t RouterTap::unreleased() {
    return liveResults;
}

std::uint64_t RouterTap::iterators() {
    return openedIterators;
}

}
