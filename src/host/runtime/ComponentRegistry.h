// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_RUNTIME_COMPONENTREGISTRY_H
#define ORV_HOST_RUNTIME_COMPONENTREGISTRY_H

#include "OrvMgmtSpiComponent_1.h"
#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"
#include "StartPlan.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace OrvHost {

enum class ComponentState {
    Registered, ///< registered, and not started yet or stopped again
    Starting,   ///< its start is running
    Started,    ///< start answered OrvOk; its interfaces can be looked up
    Failed,     ///< start was called, and returned an error or threw
    Blocked     ///< start was not called: something that it requires is missing or not started
};

/// The result of starting or stopping one component.
struct ComponentReport {
    std::string name;
    ComponentState state = ComponentState::Registered;
    OrvReturnT code = OrvOk; ///< of start or stop, if that was called
    std::string problem;     ///< for people; empty if all went well
};

/// The host's tables and the components with what they offer and require. Finds interfaces, starts
/// components in the order of their dependencies and stops them in the reverse order.
///
/// Threads: find, any thread at any time. Registering, starting and stopping, one thread at a time.
/// A component may register, unregister and look up from inside its own start, stop, orvLCMinit and
/// orvLCMterminate, so no lock is held while any of these runs.
class ComponentRegistry {
public:
    /// Identifies the shared object that a registration belongs to; null for none.
    using Owner = const void*;

    ComponentRegistry() = default;
    ComponentRegistry(const ComponentRegistry&) = delete;
    ComponentRegistry& operator=(const ComponentRegistry&) = delete;

    /// Offers a table of the host. The table begins with its identity and must outlive this object.
    void offer(const VekMgmtSpiInterface_1* table);

    /// Adds \p component, which is borrowed until it is unregistered or dropped. Adding the same
    /// record again changes nothing. OrvInvalidArgument if there is no record, or if it has no
    /// name, start or stop; OrvAlreadyExist if another component has the name.
    OrvReturnT registerComponent(OrvMgmtSpiComponent_1* component);

    /// OrvNotExist if the record is not registered, OrvFailure while the component is started or
    /// starting.
    OrvReturnT unregisterComponent(OrvMgmtSpiComponent_1* component);

    /// Finds a table of the host or of a started component. A null field of \p id matches anything,
    /// but the interface name must be given. OrvNotExist, with `*table` unchanged, if there is
    /// none.
    OrvReturnT find(const VekMgmtSpiInterface_1& id, void** table) const;

    /// Starts all components that are not started, each after those that it requires. If one cannot
    /// be started, those that require it are not started either; all others are. Reports on every
    /// component, in the planned order of starting.
    std::vector<ComponentReport> startAll(OrvStateChangeReason reason);

    /// Stops all started components, in the reverse order of starting. A stop that fails is
    /// reported, and the component counts as stopped.
    std::vector<ComponentReport> stopAll(OrvStateChangeReason reason);

    /// Removes all components that \p owner has registered; they are stopped first.
    void drop(Owner owner);

    /// All components, in the order of registration.
    std::vector<ComponentReport> components() const;

    /// While it lives, registrations belong to \p owner.
    class OwnerScope {
    public:
        OwnerScope(ComponentRegistry& registry, Owner owner);
        ~OwnerScope();
        OwnerScope(const OwnerScope&) = delete;
        OwnerScope& operator=(const OwnerScope&) = delete;

    private:
        ComponentRegistry& mRegistry;
        Owner mPrevious;
    };

private:
    struct Entry {
        OrvMgmtSpiComponent_1* record = nullptr;
        Owner owner = nullptr;
        ComponentReport report;
    };
    using EntryPtr = std::shared_ptr<Entry>;

    EntryPtr lastStarted() const;
    static std::string whyBlocked(const StartStep& step, const std::vector<EntryPtr>& all);
    std::vector<EntryPtr> entries() const;
    std::vector<StartStep> plan(const std::vector<EntryPtr>& entries) const;
    void start(const EntryPtr& entry, OrvStateChangeReason reason);
    ComponentReport stop(const EntryPtr& entry, OrvStateChangeReason reason);
    void conclude(const EntryPtr& entry, ComponentState state, OrvReturnT code,
                  const std::string& problem);

    mutable std::mutex mMutex; ///< guards all below, and the report of each entry
    std::vector<const VekMgmtSpiInterface_1*> mHostTables;
    std::vector<EntryPtr> mEntries; ///< in the order of registration
    std::vector<EntryPtr> mStarted; ///< in the order of starting
    Owner mCurrentOwner = nullptr;
};

}

#endif
