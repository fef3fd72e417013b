// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_PENDINGADDITIONS_H
#define ORV_EXT_CM_PENDINGADDITIONS_H

#include "VekOamSpiModelRepository_4.h"

#include <atomic>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace OrvExtCmRouterService {

/// An addition to a back-pointer that waits for its target to be created.
struct BackPointerData {
    unsigned long txHandle = 0;       ///< the transaction that queued it
    std::string backPointerAttribute; ///< only for a reader of the store: the edit finds the
                                      ///< name from `end` again
    VekOamSpiMrAssociationEndHandle_4T end = 0; ///< the end at the source's class
    std::string sourceDn;                       ///< the DN to add
    bool active = true;                         ///< an inactive record is never applied
    std::string sourceAttribute; ///< the attribute of the source that names the target
};

/// Adds to a store of waiting additions and takes out of it, of whole transactions, of sources and
/// one by one. It keeps a second order of the records, by where they come from, so that what a
/// source has queued is found without a walk over what all others have.
///
/// Invariant: every record of the store stands once in the second order, as long as only this
/// object adds and takes out, and no field changes that it orders by. Taking out needs no
/// memory and so cannot fail.
///
/// Threads: no lock of its own, but isEmpty needs none.
class PendingAdditions {
public:
    /// By the DN of the target that is not there yet; under one key in order of insertion.
    using Store = std::multimap<std::string, BackPointerData>;
    using Record = Store::iterator;

    /// True if the source \p sourceDn is meant by \p dn; only for one that begins with \p dn.
    using Match = bool (*)(const std::string& sourceDn, const std::string& dn);

    /// \p store is empty and outlives this object.
    explicit PendingAdditions(Store& store) : mStore(store) {}
    PendingAdditions(const PendingAdditions&) = delete;
    PendingAdditions& operator=(const PendingAdditions&) = delete;

    /// True if nothing waits. From any thread: an addition that this thread has made is seen.
    bool isEmpty() const { return mCount.load(std::memory_order_acquire) == 0; }

    void add(const char* targetDn, BackPointerData addition);
    void drop(Record record);

    /// What the transaction would have applied to \p targetDn, in the order of queueing.
    std::vector<Record> activeRecords(unsigned long txHandle, const std::string& targetDn);

    void dropTransaction(unsigned long txHandle);
    void dropSources(unsigned long txHandle, const std::string& dn, Match match);
    void dropSources(unsigned long txHandle, const std::string& dn, std::string_view attribute,
                     Match match);

private:
    // What the second order can be searched for.
    struct Transaction {
        unsigned long txHandle;
    };
    using Attribute = std::tuple<unsigned long, std::string_view>;
    using Source = std::tuple<unsigned long, std::string_view, std::string_view>;

    /// By transaction, then attribute of the source, then DN of the source.
    struct SourceOrder {
        using is_transparent = void;

        bool operator()(const Record& left, const Record& right) const;
        bool operator()(const Record& left, const Source& right) const {
            return sourceOf(left) < right;
        }
        bool operator()(const Attribute& left, const Record& right) const {
            return left < attributeOf(right);
        }
        bool operator()(const Record& left, Transaction right) const {
            return left->second.txHandle < right.txHandle;
        }
        bool operator()(Transaction left, const Record& right) const {
            return left.txHandle < right->second.txHandle;
        }
    };
    using Sources = std::set<Record, SourceOrder>;

    static Source sourceOf(const Record& record);
    static Attribute attributeOf(const Record& record);
    void drop(Sources::iterator first, Sources::iterator last);
    bool isPlaceFor(std::string_view targetDn) const;
    Record firstOf(const std::string& targetDn) const;
    void erase(Record record);
    void count() { mCount.store(mSources.size(), std::memory_order_release); }

    Store& mStore;
    Sources mSources;
    /// After the one that came or went last: additions of neighbours come and go one after the
    /// other.
    Sources::iterator mNear = mSources.end();
    Record mNearTarget = mStore.end();  ///< likewise
    std::atomic<std::size_t> mCount{0}; ///< of the records
};

}

#endif
