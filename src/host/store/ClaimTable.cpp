// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ClaimTable.h"

#include <algorithm>
#include <utility>

namespace OrvHost {

namespace {

std::uint64_t membershipKey(NodeId parent, ClassIndex moc) {
    return (std::uint64_t{parent} << 32U) | moc;
}

// Claims a key that one transaction can hold. A key is either both held and listed, or neither,
// also if memory runs out.
template <class Key, class Listed>
std::optional<ClaimTable::Rival> claimKey(std::unordered_map<Key, TransactionId>& held,
                                          const Key& key, TransactionId transaction,
                                          std::vector<Listed>& list, const Listed& listed) {
    const auto found = held.find(key);
    if (found != held.end()) {
        return found->second == transaction
                   ? std::nullopt
                   : std::optional<ClaimTable::Rival>({{found->second}, ClaimTable::Kind::Write});
    }
    list.push_back(listed);
    try {
        held.emplace(key, transaction);
    } catch (...) {
        list.pop_back();
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
    }
    grant(claim, claims.owner, kind);
    return std::nullopt;
}

std::optional<ClaimTable::Rival> ClaimTable::claimName(ClaimSet& claims, const std::string& dn) {
    const std::lock_guard<std::mutex> guard(mMutex);
    return named(claimKey(mNames, dn, claims.owner, claims.names, dn));
}

std::optional<ClaimTable::Rival> ClaimTable::claimMembership(ClaimSet& claims, NodeId parent,
                                                             ClassIndex moc) {
    const std::lock_guard<std::mutex> guard(mMutex);
    return named(claimKey(mMemberships, membershipKey(parent, moc), claims.owner,
                          claims.memberships, std::make_pair(parent, moc)));
}

void ClaimTable::releaseNode(NodeId node, TransactionId transaction) noexcept {
    const auto found = mNodes.find(node);
    if (found == mNodes.end()) {
        return;
    }
    NodeClaim& claim = found->second;
    if (claim.writer == transaction) {
        claim.writer = kNoTransaction;
        claim.deleting = false;
    }
    auto& creators = claim.creators;
    creators.erase(std::remove(creators.begin(), creators.end(), transaction), creators.end());
    if (claim.isFree()) {
        mNodes.erase(found);
    }
}

void ClaimTable::release(ClaimSet& claims) noexcept {
    const std::lock_guard<std::mutex> guard(mMutex);
    for (const NodeId node : claims.nodes) {
        releaseNode(node, claims.owner);
    }
    for (const std::string& name : claims.names) {
        mNames.erase(name);
    }
    for (const auto& membership : claims.memberships) {
        mMemberships.erase(membershipKey(membership.first, membership.second));
    }
    mAuthors.erase(claims.owner);
    claims.nodes.clear();
    claims.names.clear();
    claims.memberships.clear();
}

}
