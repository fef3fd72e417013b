// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RouterTap.h"

#include "MemoryGauge.h"
#include "Tally.h"
#include "base/DnView.h"

#include <atomic>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Soak {

using namespace OrvHost;

namespace {

using Container = OrvMoAttributeValueContainer_3;
using Named = OrvMoNamedAttributeValueContainer_3;
using WorkList = std::set<std::pair<std::string, std::string>>;

// The functions of a table get no object argument.
const Model* theModel = nullptr;
Tally* theTally = nullptr;
std::vector<bool> takesPart; // by class
OrvOamSpiManagedObject_3 router3;
VekOamSpiManagedObject_3_1 router3_1;

std::atomic<std::int64_t> liveResults{0};
std::atomic<std::uint64_t> openedIterators{0};
std::atomic<std::uint64_t> recordedEntries{0};
std::atomic<std::int64_t> recordedBytes{0};
std::atomic<void (*)(Container*)> releaseOne{nullptr};
std::atomic<void (*)(Container**)> releaseMany{nullptr};
thread_local WorkList workList;

void note(const std::string& dn, const char* attribute, const Container& value) {
    if (value.type != OrvMoAttributeTypeMoRef_3) {
        return;
    }
    const auto moc = theModel->findClassOfDn(dn);
    if (moc && takesPart[*moc]) {
        workList.emplace(dn, attribute);
    }
}

void note(const std::string& dn, Named** attributes) {
    for (; attributes != nullptr && *attributes != nullptr; ++attributes) {
        note(dn, (*attributes)->name, (*attributes)->value);
    }
}

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

OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                          const Container* value) {
    note(dn, attrName, *value);
    return router3.setMoAttribute(txHandle, dn, attrName, value);
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

OrvReturnT createMo(unsigned long txHandle, const char* dn, const char* className,
                    const char* attrName, const char* attrValue, Named** attributes) {
    note(OrvHost::DnView(dn).child(className, attrValue), attributes);
    return router3.createMo(txHandle, dn, className, attrName, attrValue, attributes);
}

OrvReturnT action(unsigned long txHandle, const char* dn, const char* name, Named** parameters,
                  OrvMoAttributeValueResult_3* result) {
    const OrvReturnT code = router3.action(txHandle, dn, name, parameters, result);
    if (code == OrvOk) {
        count(result->release, releaseOne, &countedReleaseOne);
    }
    return code;
}

OrvReturnT setMoAttributes(unsigned long txHandle, const char* dn, Named** attributes) {
    note(dn, attributes);
    return router3_1.setMoAttributes(txHandle, dn, attributes);
}

void tap(OrvOamSpiManagedObject_3& table) {
    table.setMoAttribute = &setMoAttribute;
    table.getMoAttribute = &getMoAttribute;
    table.getMoAttributes = &getMoAttributes;
    table.newMoIterator = &newMoIterator;
    table.createMo = &createMo;
    table.action = &action;
}

std::int64_t textCost(const std::string& text) {
    const bool isOnHeap = text.size() > std::string().capacity();
    return isOnHeap ? MemoryGauge::costOf(text.size() + 1) : 0;
}

}

RouterTap::RouterTap(const Model& model, CmRouter& router, Tally& tally) {
    theModel = &model;
    theTally = &tally;
    takesPart.assign(model.classes.size(), false);
    for (const BiDirAssociation& association : model.biDirAssociations) {
        takesPart[association.ends[0].moc] = true;
        takesPart[association.ends[1].moc] = true;
    }
    router3 = *router.getInterface3();
    router3_1 = *router.getInterface3_1();
    tap(*router.getInterface3());
    tap(*router.getVekInterface3());
    router.getInterface3_1()->setMoAttributes = &setMoAttributes;
}

std::int64_t RouterTap::unreleased() {
    return liveResults;
}

std::uint64_t RouterTap::iterators() {
    return openedIterators;
}

// The component keeps a list of pairs in a map of transactions. Each has one node, with a head of
// four words; texts too long for the string object have their own block.
void RouterTap::endTransaction() {
    constexpr std::size_t kNodeHead = 4 * sizeof(void*);
    constexpr std::size_t kEntry = kNodeHead + sizeof(WorkList::value_type);
    constexpr std::size_t kList = kNodeHead + sizeof(std::pair<const unsigned long, WorkList>);
    std::int64_t bytes = workList.empty() ? 0 : MemoryGauge::costOf(kList);
    for (const auto& [dn, attribute] : workList) {
        bytes += MemoryGauge::costOf(kEntry) + textCost(dn) + textCost(attribute);
    }
    recordedEntries += workList.size();
    recordedBytes += bytes;
    workList.clear();
}

std::uint64_t RouterTap::workListEntries() {
    return recordedEntries;
}

std::int64_t RouterTap::workListBytes() {
    return recordedBytes;
}

}
