// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_STORETYPES_H
#define ORV_HOST_STORE_STORETYPES_H

#include <climits>
#include <cstddef>
#include <cstdint>

namespace OrvHost {

/// Names a transaction to the others; the router uses the transaction handle.
using TransactionId = unsigned long;
/// Stands for no transaction.
constexpr TransactionId kNoTransaction = ULONG_MAX;

/// Place of an object in the committed tree; used again once nobody can see the object any more.
using NodeId = std::uint32_t;
/// The top level: the parent of objects without a parent. It always exists.
constexpr NodeId kRootNode = 0;
constexpr NodeId kNoNode = UINT32_MAX;

/// Commits are counted; what was loaded at start has number 0. A snapshot is the number of the last
/// commit that it shows.
using CommitNumber = std::uint64_t;
/// What has not happened.
constexpr CommitNumber kNever = UINT64_MAX;
/// As a snapshot: all that is committed by now.
constexpr CommitNumber kLatest = UINT64_MAX - 1;

/// What the committed tree occupies, in bytes, without what the allocator adds.
struct StoreMemory {
    std::uint64_t objects = 0;  ///< number of objects, dead ones that are still seen included
    std::size_t nodes = 0;      ///< the fixed part of each object
    std::size_t records = 0;    ///< naming values and attributes
    std::size_t childLists = 0; ///< heads of the lists of children
    std::size_t index = 0;      ///< the table that finds objects by DN
    std::size_t history = 0;    ///< older versions that open transactions may still read

    std::size_t total() const { return nodes + records + childLists + index + history; }
};

}

#endif
