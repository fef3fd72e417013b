// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_UNIT_EXT_CM_BIDIRCLIENT_H
#define ORV_TESTS_UNIT_EXT_CM_BIDIRCLIENT_H

#include "BiDirUtils.h"
#include "Stage.h"

#include <string>
#include <utility>
#include <vector>

namespace BiDirTests {

using Dns = std::vector<std::string>;
using NamedDns = std::vector<std::pair<std::string, Dns>>;

/// Writes as the MO operations do: the bookkeeping and the router's own part, in their order.
///
/// Threads: any, a transaction on one thread at a time.
class Client {
public:
    Client(Scripted::Stage& stage, OrvExtCmRouterService::BiDirUtils& utils)
        : mStage(stage), mUtils(utils) {}

    void create(unsigned long tx, const std::string& dn, const NamedDns& attributes = {});
    OrvReturnT set(unsigned long tx, const std::string& dn, const std::string& attribute,
                   const Dns& references);
    void remove(unsigned long tx, const std::string& dn);
    void finish(unsigned long tx);

    /// The bookkeeping of a write, without the write.
    OrvReturnT announce(unsigned long tx, const std::string& dn, const std::string& attribute,
                        const Dns& references, bool isNewMo = false);

private:
    Scripted::Stage& mStage;
    OrvExtCmRouterService::BiDirUtils& mUtils;
};

}

#endif
