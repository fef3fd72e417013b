// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_STORETRANSACTION_H
#define ORV_HOST_STORE_STORETRANSACTION_H

#include "CommitFeed.h"
#include "StoreTypes.h"
#include "TransactionOverlay.h"
#include "VersionedTree.h"
#include "WriteGuard.h"
#include "base/HostError.h"
#include "model/Model.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

/// A walk over the children of one class under one parent; see StoreTransaction::children.
class ChildCursor {
    friend class StoreTransaction;
    NodeId mParent = kNoNode;   ///< the committed parent, or none
    NodeId mPosition = kNoNode; ///< the committed child returned last
    ClassIndex mMoc = 0;
    bool mCommittedDone = false;
    std::string mPrefix; ///< prefix of the DNs of the children that the transaction created
    std::size_t mCreatedIndex = 0;
};

/// One transaction over an MoStore. All DNs are internal.
///
/// An operation that refuses throws HostError, with a text for people, and has then changed nothing
/// that can be read. After OrvHostWriteConflict the transaction can only be rolled back. Destroying
/// an open transaction rolls it back. After it has ended, operations are refused with OrvNotActive.
///
/// Threads: one at a time; transactions of one store may run in parallel.
class StoreTransaction {
public:
    /// For MoStore::begin only.
    StoreTransaction(const Model& model, VersionedTree& tree, ClaimTable& claims, CommitFeed& feed,
                     TransactionId id, std::string author);
    ~StoreTransaction();
    StoreTransaction(const StoreTransaction&) = delete;
    StoreTransaction& operator=(const StoreTransaction&) = delete;

    TransactionId id() const { return mGuard.owner(); }
    /// Who began it, for people; may be empty.
    const std::string& author() const { return mGuard.author(); }
    bool isOpen() const { return mOpen; }
    /// The first conflict that the transaction has met, for people; empty if none.
    const std::string& conflict() const { return mGuard.conflict(); }

    /// False also for a text that is not a DN.
    bool exists(const std::string& dn) const;
    /// The class of an object.
    const ClassDef& classOf(const std::string& dn) const;
    /// The value of an attribute: what was set, or else the default, or else no values. A default
    /// in a case of a choice applies if the case is taken.
    AttributeValue get(const std::string& dn, const std::string& attribute) const;
    std::vector<AttributeValue> get(const std::string& dn,
                                    const std::vector<std::string>& attributes) const;
    /// The values that were set, in the order of the class's definition, without those that the
    /// name gives and without defaults.
    std::vector<NamedValue> stored(const std::string& dn) const;
    /// The number of children of one class; \p parentDn empty: at the top level. Constant time,
    /// unless these children have changed since the transaction began or it has deleted objects.
    std::uint64_t count(const std::string& parentDn, const std::string& className) const;
    /// Opens a walk over the children of one class; \p parentDn empty: at the top level.
    ChildCursor children(const std::string& parentDn, const std::string& className) const;
    /// Writes the naming value of the next child to \p name; false at the end. The transaction may
    /// write during the walk: children that are deleted before the walk reaches them are left out,
    /// children that are created during the walk come at the end, each once.
    bool next(ChildCursor& cursor, std::string& name) const;

    /// Sets attributes of one object, all or none. An attribute that is set to no values becomes
    /// unset.
    void set(const std::string& dn, const std::vector<NamedValue>& values);
    /// Creates a child of \p parentDn (empty: at the top level) with its attributes. \p
    /// namingAttribute can also be the own name of a single key.
    void create(const std::string& parentDn, const std::string& className,
                const std::string& namingAttribute, const std::string& name,
                const std::vector<NamedValue>& values);
    /// Deletes an object with its subtree.
    void remove(const std::string& dn);

    /// What a commit would change.
    ChangeSet changes() const;
    /// The reasons why a commit is not possible, for people; empty if it is.
    std::vector<std::string> check() const;
    /// Makes all writes visible at once to transactions that begin from now on, and ends this one.
    /// Call check first: commit does not repeat it, but throws a conflict again.
    void commit();
    /// Drops all writes and ends this transaction.
    void rollback() noexcept;

private:
    /// An object as this transaction sees it: a committed one, or one that this transaction
    /// created.
    struct Mo {
        NodeId node = kNoNode;
        const CreatedMo* created = nullptr;
        explicit operator bool() const { return node != kNoNode || created != nullptr; }
    };

    void requireOpen() const;
    Mo find(std::string_view dn) const;
    Mo require(const std::string& dn) const;
    Mo requireParent(const std::string& dn) const;
    ClassIndex requireChildClass(const std::string& parentDn, const Mo& parent,
                                 const std::string& className) const;
    ClassIndex classIndexOf(const Mo& mo) const;
    const ClassDef* classOf(const Mo& mo) const;
    std::string dnOf(const Mo& mo) const;
    std::string nameOf(const Mo& mo) const;
    std::string attributesOf(const Mo& mo) const;
    AttributeValue valueOf(const Mo& mo, const std::string& attributes,
                           const std::string& name) const;
    std::uint64_t countOf(const std::string& parentDn, const Mo& parent, ClassIndex moc) const;
    bool nextCommitted(ChildCursor& cursor, std::string& name) const;
    bool nextCreated(ChildCursor& cursor, std::string& name) const;

    void claimPlace(const std::string& parentDn, const Mo& parent, ClassIndex moc,
                    const std::string& dn);
    void claimMembership(const std::string& parentDn, const Mo& parent, ClassIndex moc);
    bool isDeletedHere(const std::string& dn) const;
    void appendChildren(const Mo& mo, std::vector<Mo>& all) const;
    void appendCommittedChildren(const Mo& mo, ClassIndex moc, std::vector<Mo>& all) const;

    void checkCreated(const CreatedMo& mo, std::vector<std::string>& violations) const;
    void checkConditions(const Mo& mo, const std::string& attributes,
                         std::vector<std::string>& violations) const;
    void checkMembers(const std::string& parentDn, ClassIndex moc,
                      std::vector<std::string>& violations) const;
    TreeChange makeChange() const;
    std::string committedAttributes(NodeId node) const;
    ObjectChange describe(ObjectChange::Kind kind, const Mo& mo, const std::string& before,
                          const std::string& after) const;
    void end() noexcept;

    const Model& mModel;
    VersionedTree& mTree;
    CommitNumber mSnapshot;
    CommitFeed& mFeed;
    WriteGuard mGuard;
    TransactionOverlay mOverlay;
    bool mOpen = true;
};

}

#endif
