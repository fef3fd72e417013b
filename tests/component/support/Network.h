// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_NETWORK_H
#define ORV_TESTS_COMPONENT_SUPPORT_NETWORK_H

#include "Host.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Scripted {

// DNs of the network, as clients know them and as everything behind the component does.
const std::string kRoot = "ManagedElement=paris";
const std::string kRootInside = "ManagedElement=1";
const std::string kForeignDn = "ManagedElement=rome,Unit=7"; ///< cannot be translated

inline std::string unit(const std::string& name) {
    return kRoot + ",Unit=" + name;
}
inline std::string unitInside(const std::string& name) {
    return kRootInside + ",Unit=" + name;
}
inline std::string cell(const std::string& name) {
    return kRoot + ",Cell=" + name;
}
inline std::string cellInside(const std::string& name) {
    return kRootInside + ",Cell=" + name;
}
inline std::string site(const std::string& name) {
    return kRoot + ",Site=" + name;
}
inline std::string siteInside(const std::string& name) {
    return kRootInside + ",Site=" + name;
}

/// Describes a small network: a root with units, cells and sites. A unit serves up to two cells
/// (`cells`), a cell is served by at most one unit (`unit`), and the two follow each other. A unit
/// stands at one site at most (`site`), which does not know it. There are the units 7 and 8, the
/// cells 1, 2 and 3, and the site 1; nobody refers to anybody.
inline void describeNetwork(Host& host) {
    host.model()
        .moc("ManagedElement")
        .attribute("managedElementId")
        .contains("Unit")
        .contains("Cell")
        .contains("Site");
    host.model().moc("Unit").attribute("label");
    host.model().biDir({"Unit", "cells", 0, 2, "cells"}, {"Cell", "unit", 0, 1, "units"});
    host.model().uniDir("Unit", "site", "Site", 0, 1);
    host.mo(kRootInside).with("managedElementId", strings({"1"}));
    for (const std::string name : {"7", "8"}) {
        host.mo(unitInside(name)).with("label", strings({"x"}));
    }
    for (const std::string name : {"1", "2", "3"}) {
        host.mo(cellInside(name));
    }
    host.mo(siteInside("1"));
}

/// The network with the component started on it.
class Network : public testing::Test {
protected:
    Network() {
        describeNetwork(host);
        host.start();
    }

    Client3 client() const { return host.client(); }

    /// The journal without the calls to the model, except the two that show the order of the
    /// bookkeeping: which associations a class has, bidirectional and then unidirectional.
    std::vector<std::string> milestones() const {
        std::vector<std::string> chosen;
        for (const Call& call : host.callRecords()) {
            if (call.name.rfind("Model.", 0) != 0 ||
                call.name == "Model.getFirstBiDirAssociation" ||
                call.name == "Model.getFirstUniDirAssociation") {
                chosen.push_back(call.text());
            }
        }
        return chosen;
    }

    /// The DNs whose class the model was asked for.
    std::vector<std::string> dnsLookedUp() const {
        std::vector<std::string> dns;
        for (const Call& call : host.callRecords("Model.getMocFromDn")) {
            dns.push_back(call.arguments.at(0).text);
        }
        return dns;
    }

    bool validate(unsigned long txHandle) const {
        bool result = false;
        EXPECT_EQ(host.resource().validate(txHandle, &result), OrvOk);
        return result;
    }

    Host host;
};

}

#endif
