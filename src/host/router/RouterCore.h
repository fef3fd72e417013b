// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_ROUTER_ROUTERCORE_H
#define ORV_HOST_ROUTER_ROUTERCORE_H

#include "ActionHandler.h"
#include "AutoMemory.h"
#include "ContainerConversion.h"
#include "IteratorTable.h"
#include "base/HostError.h"
#include "base/NumberMap.h"
#include "base/ReaderLock.h"
#include "model/DnForm.h"
#include "model/RuleCheck.h"
#include "store/MoStore.h"
#include "transactions/ThreadContext.h"

#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace OrvHost {

/// Who began a transaction, for people; empty if nobody said.
using AuthorLookup = std::function<std::string(unsigned long txHandle)>;

/// What the router keeps for one transaction, from its join to its finish. On cache lines of its
/// own, since another thread may work in another transaction.
struct alignas(64) RouterTransaction {
    std::unique_ptr<StoreTransaction> store;
    Orv::AutoMemory memory;                ///< the values of version 1
    std::vector<IteratorHandle> iterators; ///< all that the transaction has opened
    std::optional<RuleCost> ruleCost;      ///< of the latest validation
    AttributeValue written;                ///< the value of the latest write: memory for the next
    bool isIncomplete = false;             ///< an operation has failed for want of memory
};

/// The router without its tables: the open transactions, the operations that need more than one
/// call of the store, the conversion of a refusal into a code and a message, and the transaction
/// participant.
///
/// Threads: any; one transaction on one thread at a time. No lock is held while the store, an
/// action or the thread context is called.
class RouterCore {
public:
    /// All arguments must outlive the object.
    RouterCore(MoStore& store, ThreadContext& threadContext);

    /// Runs an operation of a table and returns its code. For a HostError it returns the error's
    /// code and adds its text to the thread context as a message.
    template <class Operation>
    OrvReturnT answer(Operation&& operation) {
        try {
            operation();
            return OrvOk;
        } catch (const HostError& error) {
            mThreadContext.addMessage(ThreadContext::Explanation, error.what());
            return error.code();
        }
    }

    /// The same for an operation in a transaction. Its caller may go on without what it could not
    /// get for want of memory; so such a transaction is not valid, and cannot be committed.
    template <class Operation>
    OrvReturnT answer(unsigned long txHandle, Operation&& operation) {
        try {
            return answer(std::forward<Operation>(operation));
        } catch (const std::bad_alloc&) {
            markIncomplete(txHandle);
            throw;
        }
    }

    /// A DN that must not be null (OrvInvalidArgument), in the form that the store knows.
    ShortDn requireDn(const char* dn) const {
        return ShortDn(mStore.model(), requireText(dn, "the DN"));
    }
    /// \p value with its references in that form, and the same for named values.
    template <class Values>
    Values withShortReferences(Values value) const {
        shortenReferences(mStore.model(), value);
        return value;
    }

    /// The router's data of a transaction. OrvNotActive if the transaction is not known.
    std::shared_ptr<RouterTransaction> transaction(unsigned long txHandle) const;

    /// Sets an attribute to the values of a record; \p Records: see ContainerConversion.
    template <class Records>
    void set(unsigned long txHandle, const char* dn, const char* attribute,
             const typename Records::Container& value) {
        const auto current = transaction(txHandle);
        const std::string_view name = requireText(attribute, "the attribute name");
        ContainerConversion<Records>::read(value, current->written);
        shortenReferences(mStore.model(), current->written);
        current->store->set(requireDn(dn), name, current->written);
    }

    IteratorHandle newIterator(unsigned long txHandle, std::string_view parentDn,
                               std::string_view className);
    /// The next name, or null at the end. Valid until the next call with the same iterator.
    char* next(IteratorHandle handle);
    void finalize(IteratorHandle handle);

    /// Parameters by name.
    AttributeValue action(unsigned long txHandle, const std::string& dn, const std::string& name,
                          std::vector<NamedValue> parameters);
    /// Parameters by position, as version 1 gives them.
    AttributeValue action(unsigned long txHandle, const std::string& dn, const std::string& name,
                          const std::vector<AttributeValue>& parameters);
    void setActionHandler(ActionHandler handler) { mActionHandler = std::move(handler); }
    void setAuthorLookup(AuthorLookup lookup) { mAuthorOf = std::move(lookup); }
    void setRules(const RuleCheck* rules) { mRules = rules; }

    // The participant; see OrvOamSpiTransactionalResource_2.
    OrvReturnT join(unsigned long txHandle);
    OrvReturnT prepare(unsigned long txHandle);
    OrvReturnT commit(unsigned long txHandle);
    OrvReturnT abort(unsigned long txHandle);
    OrvReturnT finish(unsigned long txHandle);
    OrvReturnT validate(unsigned long txHandle, bool* result);

private:
    void markIncomplete(unsigned long txHandle) noexcept;
    void checkRules(RouterTransaction& current, std::vector<std::string>& violations) const;
    const ActionDef& requireAction(const ClassDef& moc, const std::string& dn,
                                   const std::string& name) const;

    MoStore& mStore;
    ThreadContext& mThreadContext;
    ActionHandler mActionHandler;
    AuthorLookup mAuthorOf;
    const RuleCheck* mRules = nullptr;
    IteratorTable mIterators;

    mutable ReaderLock mLock; ///< guards mTransactions
    NumberMap<unsigned long, std::shared_ptr<RouterTransaction>> mTransactions;
};

}

#endif
