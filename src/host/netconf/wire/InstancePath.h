// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_WIRE_INSTANCEPATH_H
#define ORV_HOST_NETCONF_WIRE_INSTANCEPATH_H

#include <map>
#include <string>

struct lysc_node;
struct lyd_node;

namespace OrvHost {

class YangSchema;

/// The path of a node in XPath: "/m:Site[m:siteId='a']/m:height", with the modules' names as
/// prefixes.
struct InstancePath {
    std::string text;                            ///< empty: no node in particular
    std::map<std::string, std::string> prefixes; ///< namespaces by prefix

    /// Adds a step.
    void append(const lysc_node* node);
    /// Adds a predicate to the last step. \p value holds not both kinds of quotation marks, as
    /// naming values never do.
    void where(const lysc_node* key, const std::string& value);
    /// Names the entry of a leaf-list with that value. False, and nothing is added, if the value
    /// holds both kinds of quotation marks.
    bool whereSelf(const std::string& value);

private:
    std::string qualified(const lysc_node* node);
};

/// The path of \p node, a node of parsed data, or of the last of its ancestors that the modules
/// know.
InstancePath instancePathOf(const lyd_node* node);

/// The path of an object by its external DN, or of one of its attributes or actions. Of what the
/// schema does not know, nothing or the path as far as it is known.
InstancePath instancePathOf(const YangSchema& schema, const std::string& dn,
                            const std::string& member = {});

}

#endif
