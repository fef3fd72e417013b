// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_STORETRANSACTION_H
#define ORV_HOST_STORE_STORETRANSACTION_H

#include "CommitFeed.h"
#include "CommittedState.h"
#include "LogChange.h"
#include "LogCommitter.h"
#include "StoreTypes.h"
#include "TransactionOverlay.h"
#include "WriteGuard.h"
#include "base/HostError.h"
#include "base/ShortText.h"
#include "model/Model.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
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

/// What a transaction sees in one attribute of an object, without a copy. Valid until the
/// transaction writes or ends.
struct AttributeView {
    const ClassDef* moc = nullptr;
    const AttributeDef* def = nullptr;
    /// The values that were set, to be read with AttributeBytes or BytesReader; nothing if none.
    std::optional<std::string_view> stored{};
    std::string_view name{}; ///< the name of the object
    /// The values that apply if none were set; null if there are none.
    const AttributeValue* fallback = nullptr;

    /// The values of the attribute: what the object's name gives, or what was set, or else the
    /// default, or else no values. A default in a case of a choice applies if the case is taken.
    AttributeValue value() const;
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
    StoreTransaction(const Model& model, std::shared_ptr<CommittedState> state, CommitFeed& feed,
                     LogCommitter* log, TransactionId id, std::string author);
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
    bool exists(std::string_view dn) const;
    /// The class of an object.
    const ClassDef& classOf(std::string_view dn) const;
    AttributeView look(std::string_view dn, std::string_view attribute) const;
    std::vector<AttributeView> look(std::string_view dn,
                                    const std::vector<std::string_view>& attributes) const;
    /// The value of an attribute, see AttributeView::value.
    AttributeValue get(std::string_view dn, std::string_view attribute) const {
        return look(dn, attribute).value();
    }
    std::vector<AttributeValue> get(std::string_view dn,
                                    const std::vector<std::string>& attributes) const;
    /// The values that were set, in the order of the class's definition, without those that the
    /// name gives and without defaults.
    std::vector<NamedValue> stored(std::string_view dn) const;
    /// The number of children of one class; \p parentDn empty: at the top level. Constant time,
    /// unless these children have changed since the transaction began.
    std::uint64_t count(std::string_view parentDn, std::string_view className) const;
    /// Opens a walk over the children of one class; \p parentDn empty: at the top level.
    ChildCursor children(std::string_view parentDn, std::string_view className) const;
    /// Writes the naming value of the next child to \p name; false at the end. The transaction may
    /// write during the walk: children that are deleted before the walk reaches them are left out,
    /// children that are created during the walk come at the end, each once.
    bool next(ChildCursor& cursor, std::string& name) const;

    /// Sets an attribute of an object. An attribute that is set to no values becomes unset.
    void set(std::string_view dn, std::string_view attribute, const AttributeValue& value);
    /// Sets attributes of one object, all or none.
    void set(std::string_view dn, const std::vector<NamedValue>& values);
    /// Creates a child of \p parentDn (empty: at the top level) with its attributes. \p
    /// namingAttribute can also be the own name of a single key.
    void create(std::string_view parentDn, std::string_view className,
                std::string_view namingAttribute, std::string_view name,
                const std::vector<NamedValue>& values);
    /// Deletes an object with its subtree.
    void remove(std::string_view dn);

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
    /// created. The texts are valid until the transaction writes or ends.
    struct Mo {
        NodeId node = kNoNode;
        const CreatedMo* created = nullptr;
        ClassIndex moc = 0;
        std::string_view name{};
        /// As AttributeBytes; of a committed object without the changes of this transaction.
        std::string_view attributes{};

        explicit operator bool() const { return node != kNoNode || created != nullptr; }
    };

    /// The objects that were found last: a client asks for the same ones again and again.
    class FoundLast {
    public:
        struct Entry {
            ShortText<168> dn; ///< empty: none
            Mo mo;
        };

        /// Where an object with that DN, which is not empty, is kept. It may be another one that is
        /// there.
        Entry& at(std::string_view dn) {
            // DNs of neighbours differ in their last characters and in their length.
            const std::size_t place =
                dn.size() + dn.size() / kPlaces + static_cast<unsigned char>(dn.back());
            return mEntries[place % kPlaces];
        }
        void clear() {
            for (Entry& entry : mEntries) {
                entry.dn.clear();
            }
        }

    private:
        static constexpr std::size_t kPlaces = 8;

        std::array<Entry, kPlaces> mEntries;
    };

    void requireOpen() const;
    static Mo moOf(const CreatedMo& created);
    Mo moOf(const MoTree& tree, NodeId node) const;
    /// A committed object.
    Mo moOf(NodeId node) const;
    /// Nothing if it is not there. Valid until the next call.
    const Mo& find(std::string_view dn) const;
    bool search(const HashedText& dn, Mo& mo) const;
    /// Calls \p visit with each committed object that this transaction has changed, and its
    /// changes; only with those of classes that \p isWanted accepts.
    template <class IsWanted, class Visit>
    void eachModified(const IsWanted& isWanted, const Visit& visit) const;
    /// As find; throws if it is not there.
    const Mo& require(std::string_view dn) const;
    Mo requireParent(std::string_view dn) const;
    ClassIndex requireChildClass(std::string_view parentDn, const Mo& parent,
                                 std::string_view className) const;
    const ClassDef* classOf(const Mo& mo) const;
    std::string dnOf(const Mo& mo) const;
    std::string_view changesOf(const Mo& mo) const;
    AttributeView look(const Mo& mo, std::string_view attribute) const;
    bool isDefaultInUse(const Mo& mo, const AttributeDef& def) const;
    void claimWrite(const Mo& mo);
    void write(const Mo& mo, AttributeIndex index, const AttributeValue& value);
    std::uint64_t countOf(std::string_view parentDn, const Mo& parent, ClassIndex moc) const;
    const TransactionOverlay::Group* createdChildren(std::string_view parentDn,
                                                     ClassIndex moc) const;
    bool nextCommitted(ChildCursor& cursor, std::string& name) const;
    bool nextCreated(ChildCursor& cursor, std::string& name) const;

    /// An object that is to be deleted.
    struct Doomed {
        NodeId node = kNoNode;
        const CreatedMo* created = nullptr;
        NodeId parent = kNoNode; ///< of a committed object
        ClassIndex moc = 0;
    };
    void claimPlace(std::string_view parentDn, const Mo& parent, ClassIndex moc,
                    const std::string& dn);
    void claimMembership(std::string_view parentDn, const Mo& parent, ClassIndex moc);
    bool isDeletedHere(const std::string& dn) const;
    void appendChildren(const Doomed& mo, std::vector<Doomed>& all) const;
    void appendCommittedChildren(NodeId parent, ClassIndex moc, std::vector<Doomed>& all) const;

    void checkCreated(const CreatedMo& mo, std::vector<std::string>& violations) const;
    void checkConditions(const Mo& mo, std::vector<std::string>& violations) const;
    void checkMembers(std::string_view parentDn, ClassIndex moc,
                      std::vector<std::string>& violations) const;
    TreeChange makeChange() const;
    LogChange makeLogChange() const;
    void commitThroughLog();
    ObjectChange describe(ObjectChange::Kind kind, const Mo& mo, std::string_view before,
                          std::string_view after) const;
    void end() noexcept;

    const Model& mModel;
    const std::shared_ptr<CommittedState> mState; // before all that refers to it
    VersionedTree& mTree;
    CommitNumber mSnapshot;
    CommitFeed& mFeed;
    LogCommitter* mLog; ///< null: commits are in memory only
    WriteGuard mGuard;
    TransactionOverlay mOverlay;
    mutable FoundLast mFoundLast;
    mutable ParentsFoundLast mParentsFoundLast;
    bool mOpen = true;
};

}

#endif
