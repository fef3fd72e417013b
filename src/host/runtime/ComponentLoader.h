// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_RUNTIME_COMPONENTLOADER_H
#define ORV_HOST_RUNTIME_COMPONENTLOADER_H

#include "ComponentLoadError.h"
#include "OrvMgmtSpiInterfacePortal.h"

#include <memory>
#include <string>
#include <vector>

namespace OrvHost {

class ComponentRegistry;

/// Opens shared objects that hold components, and closes them again.
///
/// Loading opens the shared object, finds its two exported functions and calls orvLCMinit.
/// Unloading stops its components, calls orvLCMterminate once, drops all registrations that are
/// left, and closes it. A load that fails undoes the steps that were done, so that nothing stays
/// open; if orvLCMinit was called, orvLCMterminate is called too, for every return value of
/// orvLCMinit.
///
/// Threads: one at a time.
class ComponentLoader {
public:
    /// Both must outlive this object.
    ComponentLoader(ComponentRegistry& registry, OrvMgmtSpiInterfacePortalAccessor* accessor);

    /// Unloads all.
    ~ComponentLoader();
    ComponentLoader(const ComponentLoader&) = delete;
    ComponentLoader& operator=(const ComponentLoader&) = delete;

    /// Opens the shared object at \p path, which is always a file path, even without a slash, and
    /// passes \p argument to its orvLCMinit. Throws ComponentLoadError.
    void load(const std::string& path, const std::string& argument = {});

    /// Closes all shared objects, the last one loaded first. Does not throw: returns the problems,
    /// each with the path.
    std::vector<std::string> unloadAll();

    /// From now on unloading leaves the shared objects open, with all that they keep, however much
    /// that is. For a process that ends next, and not by exit(), which would free it.
    void leaveOpen() { mLeavesOpen = true; }

    /// The paths of the open shared objects, in the order of loading.
    std::vector<std::string> loaded() const;

private:
    class Library;

    bool isLoaded(const std::string& path) const;

    ComponentRegistry& mRegistry;
    OrvMgmtSpiInterfacePortalAccessor* mAccessor;
    std::vector<std::unique_ptr<Library>> mLibraries;
    bool mLeavesOpen = false;
};

}

#endif
