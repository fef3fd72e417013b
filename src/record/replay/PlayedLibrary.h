// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_REPLAY_PLAYEDLIBRARY_H
#define ORV_RECORD_REPLAY_PLAYEDLIBRARY_H

#include "InterceptorFunctions.h"
#include "OrvMgmtSpiInterfacePortal.h"

#include <optional>
#include <string>

namespace OrvRecord {

/// The shared object that a recording is played against. The destructor closes it.
class PlayedLibrary {
public:
    /// Throws std::runtime_error if it cannot be opened or lacks an entry point.
    explicit PlayedLibrary(const std::string& path);
    PlayedLibrary(const PlayedLibrary&) = delete;
    PlayedLibrary& operator=(const PlayedLibrary&) = delete;
    ~PlayedLibrary();

    OrvReturnT (*init)(OrvMgmtSpiInterfacePortalAccessor*, const char*) = nullptr;
    void (*terminate)() = nullptr;
    /// None if the shared object lacks them: then no interceptor can be played.
    std::optional<InterceptorFunctions> interceptors;

private:
    void* mHandle;
};

}

#endif
