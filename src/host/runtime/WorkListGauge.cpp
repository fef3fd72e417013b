// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "WorkListGauge.h"

#include "base/DnView.h"

#include <new>

#include <malloc.h>

namespace OrvHost {

namespace {

// The functions of a table get no object argument.
WorkListGauge* theGauge = nullptr;

OrvReturnT doNothing(unsigned long) {
    return OrvOk;
}

OrvReturnT findValid(unsigned long, bool* result) {
    *result = true;
    return OrvOk;
}

/// What is not counted for want of memory is no reason to refuse a write.
template <class Work>
void tryToCount(const Work& work) noexcept {
    try {
        work();
    } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch): the count gives way
    }
}

}

WorkListGauge::WorkListGauge(Host& host, CostOf cost)
    : mModel(host.model()),
      mCostOf(cost),
      mTakesPart(mModel.classes.size()),
      mRouter3(*host.router().getInterface3()),
      mRouter3_1(*host.router().getInterface3_1()),
      mResource{{"WorkListGauge", nullptr, nullptr},
                &doNothing,
                &doNothing,
                &doNothing,
                &doNothing,
                &finish,
                &findValid} {
    for (const BiDirAssociation& association : mModel.biDirAssociations) {
        mTakesPart[association.ends[0].moc] = true;
        mTakesPart[association.ends[1].moc] = true;
    }
    theGauge = this;
    host.transactions().enrolInEach(&mResource);
    for (OrvOamSpiManagedObject_3* const table :
         {host.router().getInterface3(), host.router().getVekInterface3()}) {
        table->setMoAttribute = &setMoAttribute;
        table->createMo = &createMo;
    }
    host.router().getInterface3_1()->setMoAttributes = &setMoAttributes;
}

WorkListGauge::Size WorkListGauge::size() const {
    const std::lock_guard<std::mutex> guard(mMutex);
    return mSize;
}

OrvReturnT WorkListGauge::setMoAttribute(unsigned long txHandle, const char* dn,
                                         const char* attrName, const Container* value) {
    tryToCount([&] {
        if (dn != nullptr && attrName != nullptr && value != nullptr) {
            theGauge->note(txHandle, dn, attrName, *value);
        }
    });
    return theGauge->mRouter3.setMoAttribute(txHandle, dn, attrName, value);
}

OrvReturnT WorkListGauge::createMo(unsigned long txHandle, const char* dn, const char* className,
                                   const char* attrName, const char* attrValue,
                                   Named** attributes) {
    tryToCount([&] {
        if (dn != nullptr && className != nullptr && attrValue != nullptr) {
            theGauge->note(txHandle, DnView(dn).child(className, attrValue), attributes);
        }
    });
    return theGauge->mRouter3.createMo(txHandle, dn, className, attrName, attrValue, attributes);
}

OrvReturnT WorkListGauge::setMoAttributes(unsigned long txHandle, const char* dn,
                                          Named** attributes) {
    tryToCount([&] {
        if (dn != nullptr) {
            theGauge->note(txHandle, dn, attributes);
        }
    });
    return theGauge->mRouter3_1.setMoAttributes(txHandle, dn, attributes);
}

OrvReturnT WorkListGauge::finish(unsigned long txHandle) {
    theGauge->end(txHandle);
    return OrvOk;
}

void WorkListGauge::note(unsigned long txHandle, const std::string& dn, Named** attributes) {
    for (; attributes != nullptr && *attributes != nullptr; ++attributes) {
        if ((*attributes)->name != nullptr) {
            note(txHandle, dn, (*attributes)->name, (*attributes)->value);
        }
    }
}

void WorkListGauge::note(unsigned long txHandle, const std::string& dn, const char* attribute,
                         const Container& value) {
    if (value.type != OrvMoAttributeTypeMoRef_3) {
        return;
    }
    const auto moc = mModel.findClassOfDn(dn);
    if (moc && mTakesPart[*moc]) {
        const std::lock_guard<std::mutex> guard(mMutex);
        mOpen[txHandle].emplace(dn, attribute);
    }
}

void WorkListGauge::end(unsigned long txHandle) {
    std::unique_lock<std::mutex> lock(mMutex);
    const auto ended = mOpen.extract(txHandle);
    if (!ended) {
        return;
    }
    lock.unlock(); // others write meanwhile
    const std::int64_t bytes = costOf(ended.mapped());
    lock.lock();
    mSize.entries += ended.mapped().size();
    mSize.bytes += bytes;
}

// The component keeps a list of pairs in a map of transactions. Each has one node, with a head of
// four words; texts too long for the string object have their own block.
std::int64_t WorkListGauge::costOf(const Written& written) const {
    constexpr std::size_t kNodeHead = 4 * sizeof(void*);
    constexpr std::size_t kEntry = kNodeHead + sizeof(Written::value_type);
    constexpr std::size_t kList = kNodeHead + sizeof(std::pair<const unsigned long, Written>);
    const auto entries = static_cast<std::int64_t>(written.size());
    std::int64_t bytes = mCostOf(kList) + entries * mCostOf(kEntry);
    for (const auto& [dn, attribute] : written) {
        bytes += costOf(dn) + costOf(attribute);
    }
    return bytes;
}

std::int64_t WorkListGauge::costOf(const std::string& text) const {
    const bool isOnHeap = text.size() > std::string().capacity();
    return isOnHeap ? mCostOf(text.size() + 1) : 0;
}

std::int64_t WorkListGauge::costOfBlock(std::size_t bytes) {
    void* const block = ::operator new(bytes, std::nothrow);
    const std::size_t usable = block == nullptr ? bytes : malloc_usable_size(block);
    ::operator delete(block);
    return static_cast<std::int64_t>(usable);
}

}
