// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_ROOTRENAMING_H
#define ORV_HOST_YANG_INSTANCES_ROOTRENAMING_H

#include "yang/instances/DataObject.h"
#include "yang/schema/YangSchema.h"

#include <set>
#include <string>
#include <vector>

struct lyd_node;

namespace OrvHost {

/// The names that the element at the root has in a tree of instance data, whose first node may be
/// null, or among objects.
std::set<std::string> rootNamesIn(const lyd_node* first, const YangSchema& schema);
std::set<std::string> rootNamesIn(const std::vector<DataObject>& objects);

/// The one name; empty if there is none. `label` is used as the name of the data's file in
/// messages. \throws InstanceDataError if there are several
std::string onlyRootOf(const std::set<std::string>& names, const std::string& label);

/// Gives the element at the root another name, in the DNs of objects and in references. Other DNs
/// stay as they are.
class RootRenaming {
public:
    /// `from` empty: there is no element at the root, and nothing changes.
    RootRenaming(std::string from, std::string to);

    /// Returns what cannot be renamed, a text each: references to an element that has, in the data,
    /// the new name, but is not the root of the data.
    std::vector<std::string> rename(DataObject& object) const;

private:
    void rename(std::string& dn) const;
    static bool isNamed(const std::string& dn, const std::string& name);

    std::string mFrom;
    std::string mTo;
};

}

#endif
