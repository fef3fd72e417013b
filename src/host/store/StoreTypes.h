// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_STORETYPES_H
#define ORV_HOST_STORE_STORETYPES_H

#include <climits>
#include <cstddef>
#include <cstdint>
#include <string>

namespace OrvHost {

/// Identifies a transaction; the router uses the transaction handle.
using TransactionId = unsigned long;
/// The value for "no transaction".
constexpr TransactionId kNoTransaction = ULONG_MAX;

/// A transaction as messages name it.
struct TransactionName {
    TransactionId transaction = kNoTransaction;
    std::string author{}; ///< who began it, for people; may be empty
};
/// "transaction 11 of alice", or "another transaction". Without a number the author is the whole
/// text: so is a transaction of another host.
std::string toText(const TransactionName& name);

/// The place of an object in the committed tree. It is used again when no snapshot can show the
/// object any more.
using NodeId = std::uint32_t;
/// The top level: the parent of objects without a parent. It always exists.
constexpr NodeId kRootNode = 0;
constexpr NodeId kNoNode = UINT32_MAX;

/// The children of the class at the position \p moc of the model under one parent, as a key.
constexpr std::uint64_t groupKey(NodeId parent, std::uint32_t moc) {
    return std::uint64_t{parent} << 32U | moc;
}

constexpr NodeId parentOf(std::uint64_t groupKey) {
    return static_cast<NodeId>(groupKey >> 32U);
}
constexpr std::uint32_t classOf(std::uint64_t groupKey) {
    return static_cast<std::uint32_t>(groupKey);
}

/// Commits are numbered; data loaded at start has number 0. A snapshot is the number of the last
/// commit that it shows.
using CommitNumber = std::uint64_t;
/// The commit number of something that has not happened.
constexpr CommitNumber kNever = UINT64_MAX;
/// Used as a snapshot: everything that is committed now.
constexpr CommitNumber kLatest = UINT64_MAX - 1;

/// The memory of the committed tree, in bytes, without the overhead of the allocator.
struct StoreMemory {
    std::uint64_t objects = 0;  ///< number of objects, with deleted ones in old snapshots
    std::size_t nodes = 0;      ///< the fixed part of each object
    std::size_t records = 0;    ///< naming values and attributes
    std::size_t childLists = 0; ///< heads of the lists of children
    std::size_t index = 0;      ///< the table that finds objects by DN
    std::size_t history = 0;    ///< older versions that open transactions may still read

    std::size_t total() const { return nodes + records + childLists + index + history; }
};

}

#endif
