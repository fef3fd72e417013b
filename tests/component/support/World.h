// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_WORLD_H
#define ORV_TESTS_COMPONENT_SUPPORT_WORLD_H

#include "OrvReturn.h"
#include "Value.h"

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Scripted {

/// The MOs behind the scripted router: one flat view that every write changes at once. DNs are
/// internal. There are no transactions and no rules of a model: a test that needs a refusal sets
/// a departure.
///
/// Threads: every operation, any thread.
class World {
public:
    using WrittenAs = std::function<std::optional<Value>(const std::string& className,
                                                         const std::string& attribute)>;

    /// One MO while a test describes it.
    class MoBuilder {
    public:
        MoBuilder(World& world, std::string dn) : mWorld(world), mDn(std::move(dn)) {}
        MoBuilder& with(const std::string& attribute, const Value& value);

    private:
        World& mWorld;
        std::string mDn;
    };

    /// \p unset gives the value of an attribute that was never set; no value: OrvNotExist.
    explicit World(WrittenAs unset) : mUnset(std::move(unset)) {}

    /// Adds the MO if it is not there. Parents need not exist.
    MoBuilder mo(const std::string& dn);

    bool exists(const std::string& dn) const;
    /// Nothing if the MO or the attribute is not there.
    std::optional<Value> attribute(const std::string& dn, const std::string& name) const;
    /// The references that the attribute holds; none if there is no such attribute.
    std::vector<std::string> references(const std::string& dn, const std::string& name) const;
    /// Naming values of the children of one class in the order of their creation. \p parent may be
    /// empty: the top level.
    std::vector<std::string> children(const std::string& parent,
                                      const std::string& className) const;

    OrvReturnT set(const std::string& dn, const std::string& name, const Value& value);
    OrvReturnT create(const std::string& dn, const NamedValues& attributes);
    /// With the subtree.
    OrvReturnT remove(const std::string& dn);

private:
    struct Mo {
        std::size_t order = 0;
        std::map<std::string, Value> attributes;
    };

    mutable std::mutex mMutex;
    WrittenAs mUnset;
    std::size_t mNextOrder = 0;
    std::map<std::string, Mo> mMos;
};

// Parts of a DN's last step: "Parent=1,Unit.label=7" has the parent "Parent=1", the class "Unit"
// and the naming value "7".
std::string parentOf(const std::string& dn);
std::string classOf(const std::string& dn);
std::string namingValueOf(const std::string& dn);

/// "Parent=1" and "Unit=7" joined; an empty parent adds no comma.
std::string childDn(const std::string& parent, const std::string& step);

}

#endif
