// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ClaimTable.h"

#include <algorithm>
#include <utility>

namespace OrvHost {

namespace {

// Claims a key that one transaction can hold. A key is either both held and listed, or neither,
// also if memory runs out. `listedAs` says how a key that the table keeps is listed.
template <class Held, class Key, class Listed, class ListedAs>
std::optional<ClaimTable::Rival> claimKey(Held& held, const Key& key, TransactionId transaction,
                                          std::vector<Listed>& list, const ListedAs& listedAs) {
    const auto [entry, isNew] = held.try_emplace(key, transaction);
    if (!isNew) {
        return entry->second == transaction
                   ? std::nullopt
                   : std::optional<ClaimTable::Rival>({{entry->second}, ClaimTable::Kind::Write});
    }
    try {
        list.push_back(listedAs(entry->first));
    } catch (...) {
        held.erase(entry);
        throw;
    }
    return std::nullopt;
}

}

std::optional<ClaimTable::Rival> ClaimTable::NodeClaim::rivalOf(TransactionId transaction,
                                                                Kind kind) const {
    const bool writerDisturbs = kind != Kind::CreateUnder || deleting;
    if (writer != kNoTransaction && writer != transaction && writerDisturbs) {
        return Rival{{writer}, deleting ? Kind::Delete : Kind::Write};
    }
    if (kind == Kind::Delete) {
        for (const TransactionId creator : creators) {
            if (creator != transaction) {
                return Rival{{creator}, Kind::CreateUnder};
            }
        }
    }
    return std::nullopt;
}

bool ClaimTable::NodeClaim::isHeldBy(TransactionId transaction) const {
    return writer == transaction ||
           std::find(creators.begin(), creators.end(), transaction) != creators.end();
}

void ClaimTable::grant(NodeClaim& claim, TransactionId transaction, Kind kind) {
    if (kind == Kind::CreateUnder) {
        auto& creators = claim.creators;
        if (std::find(creators.begin(), creators.end(), transaction) == creators.end()) {
            creators.push_back(transaction);
        }
        return;
    }
    claim.writer = transaction;
    claim.deleting = claim.deleting || kind == Kind::Delete;
}

void ClaimTable::introduce(const ClaimSet& claims) {
    if (!claims.author.empty()) {
        const std::lock_guard<std::mutex> guard(mMutex);
        mAuthors.emplace(claims.owner, claims.author);
    }
}

std::optional<ClaimTable::Rival> ClaimTable::named(std::optional<Rival> rival) const {
    if (rival) {
        const auto found = mAuthors.find(rival->transaction);
        if (found != mAuthors.end()) {
            rival->author = found->second;
        }
    }
    return rival;
}

std::optional<ClaimTable::Rival> ClaimTable::claimNode(ClaimSet& claims, NodeId node, Kind kind) {
    const std::lock_guard<std::mutex> guard(mMutex);
    NodeClaim& claim = mNodes[node];
    if (auto rival = claim.rivalOf(claims.owner, kind)) {
        return named(std::move(rival));
    }
    if (!claim.isHeldBy(claims.owner)) {
        claims.nodes.push_back(node);
        mNodeHolders += claims.nodes.size() == 1 ? 1 : 0;
    }
    grant(claim, claims.owner, kind);
    return std::nullopt;
}

std::optional<ClaimTable::Rival> ClaimTable::claimName(ClaimSet& claims, const std::string& dn) {
    const std::lock_guard<std::mutex> guard(mMutex);
    return named(claimKey(mNames, dn, claims.owner, claims.names,
                          [](const std::string& kept) { return &kept; }));
}

std::optional<ClaimTable::Rival> ClaimTable::claimMembership(ClaimSet& claims, NodeId parent,
                                                             ClassIndex moc) {
    const std::lock_guard<std::mutex> guard(mMutex);
    return named(claimKey(mMemberships, groupKey(parent, moc), claims.owner, claims.memberships,
                          [](std::uint64_t kept) { return kept; }));
}

std::vector<std::pair<NodeId, ClaimTable::Kind>> ClaimTable::held(const ClaimSet& claims) {
    std::vector<std::pair<NodeId, Kind>> result;
    result.reserve(claims.nodes.size());
    const std::lock_guard<std::mutex> guard(mMutex);
    for (const NodeId node : claims.nodes) {
        const NodeClaim& claim = mNodes[node]; // it is there
        const Kind written = claim.deleting ? Kind::Delete : Kind::Write;
        result.emplace_back(node, claim.writer == claims.owner ? written : Kind::CreateUnder);
    }
    return result;
}

void ClaimTable::releaseNode(NodeId node, TransactionId transaction) noexcept {
    NodeClaim* const claim = mNodes.find(node);
    if (claim == nullptr) {
        return;
    }
    if (claim->writer == transaction) {
        claim->writer = kNoTransaction;
        claim->deleting = false;
    }
    auto& creators = claim->creators;
    creators.erase(std::remove(creators.begin(), creators.end(), transaction), creators.end());
    if (claim->isFree()) {
        mNodes.erase(node);
    }
}

// Mostly one transaction writes at a time: then all claims are its own.
void ClaimTable::releaseNodes(ClaimSet& claims) noexcept {
    if (claims.nodes.empty()) {
        return;
    }
    if (--mNodeHolders == 0) {
        mNodes.clear();
    } else {
        for (const NodeId node : claims.nodes) {
            releaseNode(node, claims.owner);
        }
    }
    claims.nodes.clear();
}

void ClaimTable::releaseNames(ClaimSet& claims) noexcept {
    if (claims.names.size() == mNames.size()) {
        mNames.clear(); // all are its own
    } else {
        for (const std::string* const name : claims.names) {
            mNames.erase(mNames.find(*name));
        }
    }
    claims.names.clear();
}

void ClaimTable::release(ClaimSet& claims) noexcept {
    const std::lock_guard<std::mutex> guard(mMutex);
    releaseNodes(claims);
    releaseNames(claims);
    for (const std::uint64_t membership : claims.memberships) {
        mMemberships.erase(membership);
    }
    mAuthors.erase(claims.owner);
    claims.memberships.clear();
}

}
