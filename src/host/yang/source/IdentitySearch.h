// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SOURCE_IDENTITYSEARCH_H
#define ORV_HOST_YANG_SOURCE_IDENTITYSEARCH_H

#include "yang/source/ModuleFinder.h"

#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// Finds modules on the search path that derive identities. Looks at texts only, because loading a
/// module would make it a part of the model, so what it finds is a suggestion for people.
class IdentitySearch {
public:
    /// `finder` must outlive this object.
    explicit IdentitySearch(ModuleFinder& finder) : mFinder(finder) {}

    /// The names of the modules and submodules with an identity whose base is called `identity`, in
    /// alphabetical order. The name is without module: what its prefix means is not looked up. The
    /// first call reads the files, up to a limit, and keeps their texts.
    std::vector<std::string> modulesWithBase(const std::string& identity);

private:
    void readTexts();

    ModuleFinder& mFinder;
    std::vector<std::pair<std::string, std::string>> mTexts; ///< name and text
    bool mIsRead = false;
};

}

#endif
