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
/// A shared object goes through: opened, its two exported functions found, orvLCMinit called. On
/// the way back: its components stopped, orvLCMterminate called once, whatever it left registered
/// dropped, closed. A load that fails goes back from where it came to, so that nothing stays open;
/// orvLCMterminate is called then too if orvLCMinit was, however that ended.
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

    /// Opens the shared object at \p path, a file path even without a slash, and hands
    /// \p argument to its orvLCMinit. Throws ComponentLoadError.
    void load(const std::string& path, const std::string& argument = {});

    /// Closes all shared objects, the last one loaded first. Does not throw: problems on the way
    /// out are returned, each with the path.
    std::vector<std::string> unloadAll();

    /// The paths of the open shared objects, in the order of loading.
    std::vector<std::string> loaded() const;

private:
    class Library;

    bool isLoaded(const std::string& path) const;

    ComponentRegistry& mRegistry;
    OrvMgmtSpiInterfacePortalAccessor* mAccessor;
    std::vector<std::unique_ptr<Library>> mLibraries;
};

}

#endif
