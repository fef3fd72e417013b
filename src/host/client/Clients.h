// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_CLIENTS_H
#define ORV_HOST_CLIENT_CLIENTS_H

#include "Client1.h"
#include "Client3_1.h"

#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// One client for each version of the MO interface, of which one is chosen. The first choice is
/// 3_1, which can do the most.
///
/// Threads: the choice is for one thread. The clients of single versions are for several: see
/// Client.
class Clients {
public:
    /// Throws NotOfferedError if a table is not offered. See Client.
    explicit Clients(Host& host) : m3(host), m3_1(host), m1(host) {}

    Client& chosen() { return *mChosen->second; }
    /// Version 3, independent of the chosen one. Its reads of attributes do not make the component
    /// join the transaction.
    Client& version3() { return m3; }
    /// Version 3_1, independent of the chosen one. Its set takes all attributes or none.
    Client& version3_1() { return m3_1; }
    /// Version 1, independent of the chosen one. Its writes move no references back.
    Client& version1() { return m1; }
    const std::string& version() const { return mChosen->first; }

    /// Throws RequestError if there is no such version.
    void choose(const std::string& version);

    /// From now on the walks of all versions ask \p token: see Client::cancelBy.
    void cancelBy(const CancellationToken* token);

    /// "1", "3", "3_1".
    static std::vector<std::string> versions();

private:
    using Known = std::pair<std::string, Client*>;

    Client m3;
    Client3_1 m3_1;
    Client1 m1;
    Known mKnown[3]{{"1", &m1}, {"3", &m3}, {"3_1", &m3_1}};
    Known* mChosen = &mKnown[2];
};

}

#endif
