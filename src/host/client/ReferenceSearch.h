// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_REFERENCESEARCH_H
#define ORV_HOST_CLIENT_REFERENCESEARCH_H

#include "ObjectState.h"
#include "store/ChangeSet.h"

#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace OrvHost {

class ClientSession;

/// A value of a reference attribute. DNs are external.
struct FoundReference {
    std::string dn;        ///< the object that refers
    std::string attribute; ///< inside a struct: "position.nearest"
    std::string target;    ///< empty: an object that clients cannot name
};

/// Finds references by reading objects as a client. Asks the session's cancellation token. Throws
/// what SubtreeReader throws. One thread.
class ReferenceSearch {
public:
    /// \p session is borrowed; the transaction \p txHandle stays open while the search is used.
    ReferenceSearch(ClientSession& session, unsigned long txHandle)
        : mSession(session), mTxHandle(txHandle) {}

    /// The references to \p target, in the whole network.
    std::vector<FoundReference> to(const std::string& target);

    /// The references to objects that do not exist, at \p dn (empty: at all objects) and below it.
    std::vector<FoundReference> missing(const std::string& dn);

    /// Those that \p changes brought: in the attributes that they changed, and, if they deleted
    /// something, from anywhere to what was deleted. Reads the whole network in that case.
    std::vector<FoundReference> missingBy(const ChangeSet& changes);

private:
    using Wanted = std::function<bool(const FoundReference& reference)>;

    std::vector<FoundReference> inSubtree(const std::string& dn, const Wanted& wanted);
    bool isMissing(const std::string& target);

    ClientSession& mSession;
    unsigned long mTxHandle;
    std::unordered_map<std::string, bool> mMissing; ///< by target; what was asked already
};

}

#endif
