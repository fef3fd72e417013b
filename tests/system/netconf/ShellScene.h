// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SYSTEM_NETCONF_SHELLSCENE_H
#define ORV_TESTS_SYSTEM_NETCONF_SHELLSCENE_H

#include "DispatcherScene.h"

#include "base/Descriptor.h"
#include "cli/remote/ShellProtocol.h"
#include "cli/serve/ShellServer.h"
#include "runtime/LogSink.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace OrvHost {

/// A client of a shell. One thread.
class ShellClient {
public:
    /// Connects and says hello. If that is not possible, the client has ended.
    explicit ShellClient(const std::string& path, const ShellLook& look = {});

    /// Sends a line, and returns what it prints, errors too. If the shell ends instead, the client
    /// has ended; what the shell said last is returned.
    std::string ask(const std::string& line);
    /// Sends a line and does not wait; answer() does.
    void send(const std::string& line);
    /// Cancels the request with that number; the first one is 1.
    void cancel(int number);
    std::string answer();
    bool hasEnded() const { return mHasEnded; }

private:
    Descriptor mSocket;
    bool mHasEnded = false;
};

/// The network of the other scenes with a server of shells beside the dispatcher.
class ShellScene : public DispatcherScene {
protected:
    ShellScene();
    ~ShellScene() override;

    void startShells();

    std::function<void(Session& session)> prepare = [](Session&) {};
    std::string path;
    std::unique_ptr<ShellServer> shells;

private:
    std::filesystem::path mFolder;
    LogSink mLog;
};

}

#endif
