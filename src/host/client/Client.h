// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_CLIENT_H
#define ORV_HOST_CLIENT_CLIENT_H

#include "CancellationToken.h"
#include "ClientErrors.h"
#include "NewObject.h"
#include "OrvOamSpiManagedObject_3.h"
#include "ReadValue.h"
#include "model/Model.h"

#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace OrvHost {

class Host;

/// A walk over the children of one class that the client steps through by itself. It ends with its
/// transaction at the latest.
struct ChildIterator {
    std::string dn; ///< external; empty: the top level
    std::string className;
    /// The component's name for the walk: a number, in version 1 a pointer that nobody follows.
    std::variant<unsigned long long, void*> handle;
};

/// An MO client of interface version 3: calls the table that the component offers, looked up
/// through the portal like any client. All DNs are external, in values too, and can have steps with
/// the key: the component, which compares DNs as texts, gets them in the short form (see shortDn),
/// and a new object gets its naming attribute by that name. A code that is not
/// OrvOk becomes an OperationError with the messages that the call left in the thread context;
/// results are released before the operation returns.
///
/// Clients of the other versions derive from it and override what is different in their version.
///
/// Threads: one at a time for each transaction.
class Client {
public:
    /// Throws NotOfferedError if no started component offers the table. \p host must outlive the
    /// client, and its components stay started while the client is in use.
    explicit Client(Host& host);
    virtual ~Client() = default;
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    bool exists(unsigned long txHandle, const std::string& dn);

    /// \p dn empty: the top level.
    unsigned long long count(unsigned long txHandle, const std::string& dn,
                             const std::string& className);

    /// The value of one attribute. \p moc, which may be null, defines the attributes' multiplicity.
    virtual ReadValue get(unsigned long txHandle, const std::string& dn,
                          const std::string& attribute, const ClassDef* moc);

    /// The values of several attributes in their order, in one call if the version has one. Fewer
    /// than were asked for if the component answered with fewer.
    virtual std::vector<NamedReadValue> get(unsigned long txHandle, const std::string& dn,
                                            const std::vector<std::string>& attributes,
                                            const ClassDef* moc);

    /// Called for each child; false ends the walk.
    using Visit = std::function<bool(const std::string& name)>;

    /// Walks the children of one class; \p dn empty: the top level, where all objects are named by
    /// the identity of the ManagedElement, whatever their class. The iterator is also closed if the
    /// walk ends early or \p visit throws. Throws CancelledError: see cancelBy.
    void forEachChild(unsigned long txHandle, const std::string& dn, const std::string& className,
                      const Visit& visit);

    /// The same in single steps, for walks that are longer than one call. A walk that is not closed
    /// stays open until its transaction ends; after that, a step is refused with OrvNotActive.
    virtual ChildIterator openChildren(unsigned long txHandle, const std::string& dn,
                                       const std::string& className);
    /// The name of the next child; nothing after the last one.
    virtual std::optional<std::string> nextChild(const ChildIterator& iterator);
    /// Also for a walk that has ended.
    virtual void closeChildren(const ChildIterator& iterator);

    /// Creates an object with its first attributes.
    virtual void create(unsigned long txHandle, const NewObject& object,
                        const std::vector<NamedValue>& attributes);

    /// Sets attributes in their order, one call for each: those before a refused one stay set.
    virtual void set(unsigned long txHandle, const std::string& dn,
                     const std::vector<NamedValue>& attributes);

    virtual void remove(unsigned long txHandle, const std::string& dn);

    /// Calls an action and returns its result, without values if it has none. \p def is null if the
    /// model does not know the action.
    virtual ReadValue action(unsigned long txHandle, const std::string& dn, const std::string& name,
                             const std::vector<NamedValue>& parameters, const ActionDef* def);

    /// From now on walks over children ask \p token after each child. \p token is borrowed; null:
    /// they ask nobody.
    void cancelBy(const CancellationToken* token) { mToken = token; }

protected:
    const Model& model() const;
    std::string shortForm(std::string dn) const;
    std::vector<NamedValue> shortForm(std::vector<NamedValue> values) const;
    NewObject shortForm(NewObject object) const;

    /// Throws OperationError unless \p code is OrvOk.
    void check(OrvReturnT code, OperationSubject subject);

private:
    Host& mHost;
    OrvOamSpiManagedObject_3* mTable;
    const CancellationToken* mToken = nullptr;
};

/// The names of a class's attributes, in the order of their definition.
std::vector<std::string> attributeNames(const ClassDef& moc);

/// The definition of an attribute, or null; also null if the class is null.
const AttributeDef* definitionOf(const ClassDef* moc, const std::string& attribute);
/// The name by which the component is asked for an attribute of \p moc, which may be null: it gives
/// the external identity for the naming attribute only by its own name, not by that of the key.
std::string tableName(const ClassDef* moc, const std::string& attribute);

/// The definition of an action's result, or null.
const AttributeDef* resultOf(const ActionDef* action);

}

#endif
