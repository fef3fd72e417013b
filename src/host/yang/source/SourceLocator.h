// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SOURCE_SOURCELOCATOR_H
#define ORV_HOST_YANG_SOURCE_SOURCELOCATOR_H

#include "model/Model.h"
#include "yang/source/ModuleFinder.h"

#include <libyang/libyang.h>

#include <string>

namespace OrvHost {

/// Finds file and line of definitions. The YANG library keeps neither, so they are looked up again
/// in the text, by the statements around the definition.
class SourceLocator {
public:
    explicit SourceLocator(const ModuleFinder& finder) : mFinder(finder) {}

    /// Where a node was defined, which can be in a grouping of another module.
    SourcePosition of(const lysc_node* node) const;

    /// The place of an extension's statement in the definition of a node.
    SourcePosition of(const lysc_node* node, const std::string& statement,
                      const std::string& argument) const;

    /// The place of an extension's statement at module level.
    SourcePosition of(const lys_module* module, const std::string& statement,
                      const std::string& argument) const;

private:
    SourcePosition find(const std::string& module, const std::string& path) const;

    const ModuleFinder& mFinder;
};

/// The path of a node in the tree of data, for messages: "/module:List/leaf".
std::string pathOf(const lysc_node* node);

}

#endif
