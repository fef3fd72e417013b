// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_ROUTER_ITERATORTABLE_H
#define ORV_HOST_ROUTER_ITERATORTABLE_H

#include "store/StoreTransaction.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace OrvHost {

struct RouterTransaction;

/// Identifies an iterator of any version. It is a number, not an address, so an invalid handle from
/// a caller is looked up and not found. Counted from 1; no number is used twice.
using IteratorHandle = std::uint64_t;

/// A client's walk over children.
struct RouterIterator {
    std::shared_ptr<RouterTransaction> transaction;
    ChildCursor cursor;
    std::string name; ///< the name that next returned last; the client reads it in this place
};

/// The open iterators of all transactions. Threads: any.
class IteratorTable {
public:
    IteratorHandle add(std::shared_ptr<RouterIterator> iterator);
    /// The iterator with that handle, or null.
    std::shared_ptr<RouterIterator> find(IteratorHandle handle) const;
    /// False if there is none.
    bool erase(IteratorHandle handle);
    void erase(const std::vector<IteratorHandle>& handles);

private:
    mutable std::mutex mMutex; ///< guards all below
    IteratorHandle mLast = 0;
    std::unordered_map<IteratorHandle, std::shared_ptr<RouterIterator>> mIterators;
};

}

#endif
