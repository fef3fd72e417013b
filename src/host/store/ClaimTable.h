// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_CLAIMTABLE_H
#define ORV_HOST_STORE_CLAIMTABLE_H

#include "StoreTypes.h"
#include "base/NumberMap.h"
#include "base/TextHash.h"
#include "model/Model.h"

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace OrvHost {

/// What one transaction has claimed. Belongs to its transaction; only ClaimTable changes it.
struct ClaimSet {
    TransactionId owner = kNoTransaction;
    std::string author; ///< who began the owner, for people; may be empty
    std::vector<NodeId> nodes;
    std::vector<const std::string*> names;  ///< those that the table keeps
    std::vector<std::uint64_t> memberships; ///< see groupKey
};

/// Which transaction may write what while transactions are open. A claim is refused at once if
/// another transaction holds a claim that conflicts with it; no thread ever waits. A claim is kept
/// until all claims of the transaction are released.
///
/// Threads: any; one ClaimSet on one thread at a time.
class ClaimTable {
public:
    enum class Kind {
        Write,      ///< to change attributes; others may hold CreateUnder
        Delete,     ///< to delete; others may hold nothing
        CreateUnder ///< to create children; others may hold Write and CreateUnder
    };
    /// The transaction that holds a conflicting claim, and the kind of that claim.
    struct Rival : TransactionName {
        Kind kind = Kind::Write;
    };

    /// Makes the author of \p claims known, for the transactions that it refuses.
    void introduce(const ClaimSet& claims);

    /// Claims a committed object. Returns nothing if the claim is granted, now or before.
    std::optional<Rival> claimNode(ClaimSet& claims, NodeId node, Kind kind);
    /// Claims the DN of an object that is to be created.
    std::optional<Rival> claimName(ClaimSet& claims, const std::string& dn);
    /// Claims to change how many objects of one class stand under one parent.
    std::optional<Rival> claimMembership(ClaimSet& claims, NodeId parent, ClassIndex moc);

    /// The committed objects that are claimed, each with the strongest kind of its claims.
    std::vector<std::pair<NodeId, Kind>> held(const ClaimSet& claims);

    /// Gives back all of \p claims and empties it.
    void release(ClaimSet& claims) noexcept;

private:
    struct NodeClaim {
        TransactionId writer = kNoTransaction; ///< has claimed to write or to delete
        bool deleting = false;
        std::vector<TransactionId> creators;

        std::optional<Rival> rivalOf(TransactionId transaction, Kind kind) const;
        bool isHeldBy(TransactionId transaction) const;
        bool isFree() const { return writer == kNoTransaction && creators.empty(); }
    };
    static void grant(NodeClaim& claim, TransactionId transaction, Kind kind);
    std::optional<Rival> named(std::optional<Rival> rival) const;
    void releaseNodes(ClaimSet& claims) noexcept;
    void releaseNode(NodeId node, TransactionId transaction) noexcept;
    void releaseNames(ClaimSet& claims) noexcept;

    std::mutex mMutex; ///< guards all below
    NumberMap<NodeId, NodeClaim> mNodes;
    std::size_t mNodeHolders = 0; ///< how many sets have claimed some of these
    std::unordered_map<std::string, TransactionId, TextHash> mNames;
    std::unordered_map<std::uint64_t, TransactionId> mMemberships;
    std::unordered_map<TransactionId, std::string> mAuthors; ///< of those that have one
};

}

#endif
