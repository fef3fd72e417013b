// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SERVE_SHELLSERVER_H
#define ORV_HOST_CLI_SERVE_SHELLSERVER_H

#include "cli/serve/ServedShell.h"
#include "netconf/server/Listener.h"

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace OrvHost {

/// Shells for other programs of the same user, at a UNIX socket.
class ShellServer {
public:
    /// Listens from now on, where requireOwnFolders() lets it. \p services: what is borrowed there
    /// must outlive this object. Throws ServerError.
    ShellServer(std::string path, ShellServices services);
    /// As end(), and waits as long as it takes.
    ~ShellServer();
    ShellServer(const ShellServer&) = delete;
    ShellServer& operator=(const ShellServer&) = delete;

    /// How to connect, for people: a line.
    std::string address() const;

    /// Tells all shells that the server ends, refuses new ones, and waits until they have ended;
    /// what they have not committed is aborted. False if a command is still at work at the
    /// deadline: this object must not be destroyed as long as it is.
    bool end(Deadline deadline);

private:
    void serve(Descriptor socket, const Connections::Enter& enter);
    void tellEnd();
    bool add(ServedShell& shell);
    void remove(ServedShell& shell);

    SocketFile mFile;
    ShellServices mServices;

    std::mutex mMutex; ///< guards all below
    std::condition_variable mChanged;
    std::set<ServedShell*> mShells;
    std::uint64_t mLastNumber = 0;
    bool mIsEnding = false;

    std::unique_ptr<Listener> mListener; ///< ends before the others
};

}

#endif
