// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_DATAREADER_H
#define ORV_HOST_NETCONF_CORE_DATAREADER_H

#include "netconf/core/Datastores.h"
#include "netconf/core/SubtreeFilter.h"
#include "netconf/wire/WireModel.h"

#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

/// What a client wants to see.
struct DataRequest {
    Datastore store = Datastore::Running;
    bool onlyConfig = true; ///< without state: values of the system, and the list of modules
    std::optional<std::vector<FilterNode>> filter{}; ///< none: everything
    std::string xpath{};                             ///< instead of a filter; empty: none
};

/// Answers reads. The text of a reply is written while the objects are read; no tree of them is
/// made, except for XPath: its expression is evaluated over a tree of all objects.
///
/// Any thread, each session on one.
class DataReader {
public:
    /// Both are borrowed.
    DataReader(const WireModel& model, Datastores& stores) : mModel(model), mStores(stores) {}

    /// The content of the reply's data element. Throws RpcErrors, and what writeObjects throws.
    std::string read(NetconfSession& session, const DataRequest& request);

private:
    std::string readObjects(NetconfSession& session, const DataRequest& request);
    OwnedTree moduleList() const;
    std::string print(const lyd_node* tree) const;
    std::string select(const std::string& objects, const DataRequest& request) const;

    const WireModel& mModel;
    Datastores& mStores;
};

}

#endif
