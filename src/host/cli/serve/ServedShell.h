// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SERVE_SERVEDSHELL_H
#define ORV_HOST_CLI_SERVE_SERVEDSHELL_H

#include "cli/remote/ShellProtocol.h"
#include "cli/serve/ShellChannel.h"
#include "client/CancellationToken.h"
#include "runtime/Host.h"
#include "runtime/LogSink.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

class CommandTable;
class Session;

/// What the shells of a server work with. All is borrowed.
struct ShellServices {
    Host& host;
    LogSink& log;
    /// Gives a session what it needs besides.
    std::function<void(Session& session)> prepare;
    /// Calls \p commit, which commits something for \p user, or throws.
    std::function<void(const std::string& user, const std::function<void()>& commit)> commit;
    std::vector<std::string> models; ///< their names
    /// How long a session without a command may keep a transaction open, and a client may read
    /// nothing of an answer; 0: as long as it likes.
    std::chrono::seconds idleLimit{0};
};

/// The shell of one client: reads its messages on one thread, and runs its commands on another, so
/// that a command can be cancelled.
class ServedShell {
public:
    /// \p number: of the shell, for people. All but the texts is borrowed.
    ServedShell(ShellServices& services, ShellChannel& channel, ShellHello hello, std::string user,
                std::uint64_t number);
    ServedShell(const ServedShell&) = delete;
    ServedShell& operator=(const ServedShell&) = delete;

    /// Runs until the connection ends. What is not committed then is aborted.
    void serve();
    /// Ends it soon; the client gets to know why. Any thread.
    void stop(const char* why) noexcept { over(why); }
    /// The user and the number: "alice, shell 3".
    const std::string& author() const { return mAuthor; }

private:
    /// A message that is answered.
    struct Request {
        Frame frame;
        std::uint64_t number;
    };

    void receiveAll() noexcept;
    void take(Frame&& frame);
    void cancel(const std::string& number);
    void workToTheEnd() noexcept;
    void work();
    void answerAll(Session& session);
    std::optional<Request> next(bool isWaitLimited);
    void finish();
    void logCommand(const CommandTable& commands, const Frame& frame, const char* result) const;
    void over(const char* why) noexcept;
    void sendWhole(char kind, std::string_view body);
    void endUnsent(Sent sent);
    std::string whyOver();

    ShellServices& mServices;
    ShellChannel& mChannel;
    const ShellHello mHello;
    const std::string mUser;
    const std::string mAuthor;

    bool mIsUnsent = false; ///< nothing is sent any more; of the thread that works

    std::mutex mMutex; ///< guards all below
    std::condition_variable mChanged;
    std::optional<Request> mWaiting;
    std::uint64_t mTaken = 0;            ///< requests so far
    std::uint64_t mAtWork = 0;           ///< the number of the request that runs; 0: none
    CancellationToken* mToken = nullptr; ///< the session's, while there is one
    bool mIsOver = false;
    std::string mWhyOver; ///< for the client; empty: it has gone by itself
};

}

#endif
