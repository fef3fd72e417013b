// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_DATAREADER_H
#define ORV_HOST_NETCONF_CORE_DATAREADER_H

#include "netconf/core/Datastores.h"
#include "netconf/core/Monitor.h"
#include "netconf/core/SubtreeFilter.h"
#include "netconf/wire/CText.h"
#include "netconf/wire/WireModel.h"

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

/// What a reply shows of values that are the default: the modes of RFC 6243, without `explicit`.
/// That cannot be told apart from trim here, as a value that was set to the default reads the same
/// as one that is not set.
enum class Defaults : std::uint8_t {
    Trim,           ///< nothing
    ReportAll,      ///< the default stands wherever there is no other value
    ReportAllTagged ///< the same, with an attribute that says so
};

/// What a client wants to see.
struct DataRequest {
    Datastore store = Datastore::Running;
    bool onlyConfig = true; ///< without state: values of the system, the list of modules, and the
                            ///< state of the server
    std::optional<std::vector<FilterNode>> filter{}; ///< none: everything
    std::string xpath{};                             ///< instead of a filter; empty: none
    Defaults defaults = Defaults::Trim;
};

/// Answers reads. The text of a reply is written while the objects are read; no tree of them is
/// made, with two exceptions: XPath and defaults. An expression is evaluated over a tree of all
/// objects, and defaults are added to one, because what is in use depends on conditions and
/// choices.
///
/// Any thread, each session on one.
class DataReader {
public:
    /// All is borrowed.
    DataReader(const WireModel& model, Datastores& stores, const Monitor& monitor)
        : mModel(model), mStores(stores), mMonitor(monitor) {}

    /// The content of the reply's data element. Throws RpcErrors, and what writeObjects throws.
    CText read(NetconfSession& session, const DataRequest& request);

private:
    CText readText(NetconfSession& session, const DataRequest& request);
    OwnedTree readTree(NetconfSession& session, const DataRequest& request);
    void readObjects(NetconfSession& session, const DataRequest& request,
                     const std::optional<std::vector<FilterNode>>& filter, std::ostream& text);
    void addDefaults(lyd_node* first, const DataRequest& request) const;
    void removeForeign(lyd_node* top) const;
    void tagDefaults(lyd_node* top) const;
    OwnedTree serverState(const std::optional<std::vector<FilterNode>>& filter) const;
    OwnedTree listOfModules() const;
    OwnedTree monitored() const;
    CText print(const lyd_node* tree, Defaults defaults) const;
    OwnedTree select(const OwnedTree& tree, const std::string& xpath) const;

    const WireModel& mModel;
    Datastores& mStores;
    const Monitor& mMonitor;
};

}

#endif
