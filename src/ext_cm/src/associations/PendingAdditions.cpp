// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "associations/PendingAdditions.h"

#include <compare>
#include <functional>
#include <iterator>
#include <utility>

namespace OrvExtCmRouterService {

// Records of one source, one for each target, stand side by side in any order.
bool PendingAdditions::SourceOrder::operator()(const Record& left, const Record& right) const {
    const std::strong_ordering order = sourceOf(left) <=> sourceOf(right);
    return std::is_neq(order) ? std::is_lt(order) : std::less<const void*>()(&*left, &*right);
}

PendingAdditions::Source PendingAdditions::sourceOf(const Record& record) {
    const BackPointerData& addition = record->second;
    return {addition.txHandle, addition.sourceAttribute, addition.sourceDn};
}

PendingAdditions::Attribute PendingAdditions::attributeOf(const Record& record) {
    return {record->second.txHandle, record->second.sourceAttribute};
}

// In both orders or in none.
void PendingAdditions::add(const char* targetDn, BackPointerData addition) {
    const Record record = isPlaceFor(targetDn)
                              ? mStore.emplace_hint(mNearTarget, targetDn, std::move(addition))
                              : mStore.emplace(targetDn, std::move(addition));
    mNearTarget = std::next(record);
    try {
        mNear = std::next(mSources.insert(mNear, record));
        count();
    } catch (...) {
        erase(record);
        throw;
    }
}

// Whether a record added in front of mNearTarget is behind all others with its key.
bool PendingAdditions::isPlaceFor(std::string_view targetDn) const {
    return (mNearTarget == mStore.end() || targetDn < mNearTarget->first) &&
           (mNearTarget == mStore.begin() || std::prev(mNearTarget)->first <= targetDn);
}

void PendingAdditions::erase(Record record) {
    mNearTarget = mStore.erase(record);
}

void PendingAdditions::drop(Record record) {
    const bool isNear = mNear != mSources.end() && *mNear == record;
    mNear = mSources.erase(isNear ? mNear : mSources.find(record));
    erase(record);
    count();
}

void PendingAdditions::drop(Sources::iterator first, Sources::iterator last) {
    while (first != last) {
        const Record record = *first;
        first = mSources.erase(first);
        erase(record);
    }
    mNear = last;
    count();
}

// The first record of the target, or where it would stand.
PendingAdditions::Record PendingAdditions::firstOf(const std::string& targetDn) const {
    const bool isNear =
        mNearTarget != mStore.end() && mNearTarget->first == targetDn &&
        (mNearTarget == mStore.begin() || std::prev(mNearTarget)->first != targetDn);
    return isNear ? mNearTarget : mStore.lower_bound(targetDn);
}

std::vector<PendingAdditions::Record> PendingAdditions::activeRecords(unsigned long txHandle,
                                                                      const std::string& targetDn) {
    std::vector<Record> records;
    for (Record record = firstOf(targetDn); record != mStore.end() && record->first == targetDn;
         ++record) {
        if (record->second.active && record->second.txHandle == txHandle) {
            records.push_back(record);
        }
    }
    return records;
}

void PendingAdditions::dropTransaction(unsigned long txHandle) {
    if (mSources.empty()) {
        return;
    }
    const auto range = mSources.equal_range(Transaction{txHandle});
    drop(range.first, range.second);
}

// Attribute by attribute: the next one is found before the texts of this one may go.
void PendingAdditions::dropSources(unsigned long txHandle, const std::string& dn, Match match) {
    const auto range = mSources.equal_range(Transaction{txHandle});
    for (auto next = range.first; next != range.second;) {
        const std::string_view attribute = (*next)->second.sourceAttribute;
        next = mSources.upper_bound(attributeOf(*next));
        dropSources(txHandle, dn, attribute, match);
    }
}

// DNs that begin with one text stand side by side, from where that text would stand on.
void PendingAdditions::dropSources(unsigned long txHandle, const std::string& dn,
                                   std::string_view attribute, Match match) {
    const auto first = mSources.lower_bound(Source{txHandle, attribute, dn});
    const auto end = mSources.upper_bound(Attribute{txHandle, attribute});
    auto last = first;
    while (last != end && match((*last)->second.sourceDn, dn)) {
        ++last;
    }
    drop(first, last);
}

}
