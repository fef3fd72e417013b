// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_COMPONENT_WORLD_H
#define ORV_FUZZ_COMPONENT_WORLD_H

#include "OrvMoAttributeValue.h"
#include "OrvReturn.h"
#include "support/ByteSource.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace Fuzz {

/// The MOs that the honest router knows, with the references that have been written to them. All
/// DNs are internal. There is one view for all transactions.
class World {
public:
    explicit World(ByteSource& source);

    bool exists(const std::string& dn) const { return mMos.count(dn) != 0; }
    std::vector<std::string> children(const std::string& dn, const std::string& className) const;
    OrvReturnT create(const std::string& dn);
    OrvReturnT remove(const std::string& dn);

    OrvReturnT set(const char* dn, const char* attribute,
                   const OrvMoAttributeValueContainer_3* value);
    /// What was written; empty if nothing was.
    const std::vector<std::string>& references(const std::string& dn,
                                               const std::string& attribute) const;

private:
    std::set<std::string> mMos;
    std::map<std::pair<std::string, std::string>, std::vector<std::string>> mReferences;
};

}

#endif
