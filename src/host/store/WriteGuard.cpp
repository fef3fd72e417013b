// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "WriteGuard.h"

#include "base/HostError.h"

#include <string>

namespace OrvHost {

namespace {

/// The commits that created, changed and deleted an object.
struct Stamps {
    CommitNumber createdAt = 0;
    CommitNumber changedAt = 0;
    CommitNumber deletedAt = kNever;
};

const char* actionOf(ClaimTable::Kind kind) {
    switch (kind) {
    case ClaimTable::Kind::Delete:
        return " is being deleted";
    case ClaimTable::Kind::CreateUnder:
        return " is being given children";
    case ClaimTable::Kind::Write:
        break;
    }
    return " is being changed";
}

}

WriteGuard::WriteGuard(VersionedTree& tree, ClaimTable& claims, TransactionId owner,
                       std::string author, CommitNumber snapshot)
    : mTree(tree), mClaims(claims), mSnapshot(snapshot) {
    mClaimed.owner = owner;
    mClaimed.author = std::move(author);
    mClaims.introduce(mClaimed);
}

WriteGuard::~WriteGuard() {
    release();
}

void WriteGuard::release() noexcept {
    mCreatesUnder = kNoNode;
    mClaims.release(mClaimed);
}

std::string WriteGuard::textOf(const std::string& what, CommitNumber number) const {
    return what + " since this transaction began, by " + toText(mTree.committer(number));
}

void WriteGuard::fail(const std::string& what, const std::string& other) {
    const std::string text = what + " by " + other;
    if (mConflict.empty()) {
        mConflict = text;
    }
    throw HostError(OrvHostWriteConflict, text);
}

void WriteGuard::failForCommit(const std::string& what, CommitNumber number) {
    if (mConflict.empty()) {
        mConflict = textOf(what, number);
    }
    throw HostError(OrvHostWriteConflict, textOf(what, number));
}

void WriteGuard::refuse(const std::string& text) {
    if (mConflict.empty()) {
        mConflict = text;
    }
    throw HostError(OrvHostWriteConflict, mConflict);
}

void WriteGuard::requireNoConflict() const {
    if (!mConflict.empty()) {
        throw HostError(OrvHostWriteConflict, mConflict);
    }
}

// What requireUnchanged, requireSameChildren, claimName and claimMembership compare, for all
// claims. An object that was created since the snapshot cannot be among them: its claim was
// refused.
std::string WriteGuard::whatChanged() const {
    const auto held = mClaims.held(mClaimed);
    return mTree.read([&](const MoTree& tree) {
        for (const auto& [node, kind] : held) {
            std::string text = whatChanged(tree, node, kind);
            if (!text.empty()) {
                return text;
            }
        }
        for (const std::string* const dn : mClaimed.names) {
            const NodeId latest = tree.find(*dn, kLatest);
            if (latest != kNoNode && tree.node(latest).createdAt > mSnapshot) {
                return textOf(*dn + " was created", tree.node(latest).createdAt);
            }
        }
        for (const std::uint64_t key : mClaimed.memberships) {
            const NodeId parent = parentOf(key);
            const ClassIndex moc = classOf(key);
            const ChildGroup* const group = tree.findGroup(parent, moc);
            if (group != nullptr && group->changedAt > mSnapshot) {
                return textOf("the number of " + tree.groupText(parent, moc) + " was changed",
                              group->changedAt);
            }
        }
        return std::string();
    });
}

std::string WriteGuard::whatChanged(const MoTree& tree, NodeId node, ClaimTable::Kind kind) const {
    const MoNode& one = tree.node(node);
    if (one.deletedAt != kNever) {
        return textOf(tree.dnOf(node) + " was deleted", one.deletedAt);
    }
    if (kind != ClaimTable::Kind::CreateUnder && one.changedAt > mSnapshot) {
        return textOf(tree.dnOf(node) + " was changed", one.changedAt);
    }
    const CommitNumber children = tree.childrenChangedAt(node);
    if (kind == ClaimTable::Kind::Delete && children > mSnapshot) {
        return textOf("the children of " + tree.dnOf(node) + " were changed", children);
    }
    return {};
}

void WriteGuard::recheck() {
    requireNoConflict();
    mConflict = whatChanged();
    requireNoConflict();
}

std::string WriteGuard::dnOf(NodeId node) const {
    return mTree.read([&](const MoTree& tree) { return tree.dnOf(node); });
}

std::string WriteGuard::groupText(NodeId parent, ClassIndex moc) const {
    return mTree.read([&](const MoTree& tree) { return tree.groupText(parent, moc); });
}

void WriteGuard::claimWrite(NodeId node) {
    claimNode(node, ClaimTable::Kind::Write);
}

void WriteGuard::claimDelete(NodeId node) {
    claimNode(node, ClaimTable::Kind::Delete);
}

void WriteGuard::claimCreateUnder(NodeId node) {
    if (node == mCreatesUnder) {
        return; // what comes through a commit log meanwhile, recheck finds
    }
    claimNode(node, ClaimTable::Kind::CreateUnder);
    mCreatesUnder = node;
}

void WriteGuard::claimNode(NodeId node, ClaimTable::Kind kind) {
    if (const auto rival = mClaims.claimNode(mClaimed, node, kind)) {
        fail(dnOf(node) + actionOf(rival->kind), toText(*rival));
    }
    requireUnchanged(node, kind);
}

void WriteGuard::requireUnchanged(NodeId node, ClaimTable::Kind kind) {
    Stamps stamps;
    mTree.read([&](const MoTree& tree) {
        const MoNode& one = tree.node(node);
        stamps = {one.createdAt, one.changedAt, one.deletedAt};
    });
    if (stamps.deletedAt != kNever) {
        failForCommit(dnOf(node) + " was deleted", stamps.deletedAt);
    }
    if (stamps.createdAt > mSnapshot) {
        failForCommit(dnOf(node) + " was created", stamps.createdAt);
    }
    // A change of the parent's attributes does not conflict with new children.
    if (kind != ClaimTable::Kind::CreateUnder && stamps.changedAt > mSnapshot) {
        failForCommit(dnOf(node) + " was changed", stamps.changedAt);
    }
}

void WriteGuard::requireSameChildren(NodeId node) {
    const CommitNumber changedAt =
        mTree.read([&](const MoTree& tree) { return tree.childrenChangedAt(node); });
    if (changedAt > mSnapshot) {
        failForCommit("the children of " + dnOf(node) + " were changed", changedAt);
    }
}

void WriteGuard::claimName(const std::string& dn, bool deletedByOwner) {
    if (const auto rival = mClaims.claimName(mClaimed, dn)) {
        fail(dn + " is being created", toText(*rival));
    }
    if (deletedByOwner) {
        return; // the latest object with that DN is the one that this transaction deletes
    }
    const CommitNumber createdAt = mTree.read([&](const MoTree& tree) {
        const NodeId latest = tree.find(dn, kLatest);
        return latest == kNoNode ? 0 : tree.node(latest).createdAt;
    });
    if (createdAt > mSnapshot) {
        failForCommit(dn + " was created", createdAt);
    }
}

void WriteGuard::claimMembership(NodeId parent, ClassIndex moc) {
    if (const auto rival = mClaims.claimMembership(mClaimed, parent, moc)) {
        fail("the number of " + groupText(parent, moc) + " is being changed", toText(*rival));
    }
    const CommitNumber changedAt = mTree.read([&](const MoTree& tree) {
        const ChildGroup* group = tree.findGroup(parent, moc);
        return group == nullptr ? 0 : group->changedAt;
    });
    if (changedAt > mSnapshot) {
        failForCommit("the number of " + groupText(parent, moc) + " was changed", changedAt);
    }
}

}
