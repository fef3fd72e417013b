// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SshFront.h"

#include "ServerError.h"
#include "netconf/core/ServerLog.h"
#include "netconf/wire/ChunkSplitter.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <libssh/callbacks.h>
#include <poll.h>
#include <sys/socket.h>

namespace OrvHost {

namespace {

constexpr std::size_t kBuffer = 65536;
/// How long the rest of the replies waits for a client that does not read, after its session ended.
constexpr std::chrono::seconds kDrainTime{10};
/// How long a client has to hang up after its session, before the server does.
constexpr std::chrono::seconds kHangUpTime{5};

/// Clients search the bytes that they have got for the end of a chunk, again and again.
constexpr std::size_t kLargestChunk = 4096;

using Clock = std::chrono::steady_clock;

bool setOption(ssh_bind bind, ssh_bind_options_e option, const void* value) {
    return ssh_bind_options_set(bind, option, value) == SSH_OK;
}

/// One connection: what libssh's callbacks learn, and the passing of bytes.
class Connection {
public:
    Connection(ssh_session session, const UserTable& users, const SshLimits& limits,
               std::string from)
        : mSession(session),
          mEvent(ssh_event_new()),
          mUsers(users),
          mLimits(limits),
          mFrom(std::move(from)),
          mDeadline(Clock::now() + std::chrono::seconds(limits.loginSeconds)) {
        ssh_set_blocking(mSession, 0);
        mServer.userdata = this;
        mServer.auth_password_function = onPassword;
        mServer.auth_pubkey_function = onKey;
        mServer.channel_open_request_session_function = onOpen;
        ssh_callbacks_init(&mServer);
        mChannelCallbacks.userdata = this;
        mChannelCallbacks.channel_subsystem_request_function = onSubsystem;
        ssh_callbacks_init(&mChannelCallbacks);
        ssh_set_server_callbacks(mSession, &mServer);
    }

    ~Connection() {
        if (mChannel != nullptr) {
            ssh_channel_free(mChannel);
        }
        ssh_event_free(mEvent);
        ssh_disconnect(mSession);
        ssh_free(mSession);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Until the client has started the subsystem. False if it does not in time.
    bool login() {
        if (!exchangeKeys()) {
            return false;
        }
        ssh_set_auth_methods(mSession, SSH_AUTH_METHOD_PUBLICKEY | SSH_AUTH_METHOD_PASSWORD);
        ssh_event_add_session(mEvent, mSession);
        while (!mIsStarted) {
            if (mFailed >= mLimits.failedLogins || Clock::now() >= mDeadline || hasHungUp() ||
                !step(-1, 0, nullptr)) {
                return false;
            }
        }
        return true;
    }

    const std::string& user() const { return mUser; }

    /// Passes bytes between the channel and \p inner, a socket that does not block, until one of
    /// them ends. Then \p inner is shut down.
    void pass(int inner) {
        mDeadline = Clock::time_point::max();
        while (true) {
            if (!readChannel() || !writeInner(inner) || !writeChannel(inner) ||
                unanswered() > mLimits.unanswered) {
                break;
            }
            const bool hasRoom = ssh_channel_window_size(mChannel) > 0;
            const short wanted =
                static_cast<short>((hasRoom ? POLLIN : 0) | (mToInner.empty() ? 0 : POLLOUT));
            // After the end of its session, a client that does not read the rest has only a while.
            const bool isStuck = mIsInnerOver && !hasRoom;
            if (!isStuck) {
                mDeadline = Clock::time_point::max();
            } else if (mDeadline == Clock::time_point::max()) {
                mDeadline = Clock::now() + kDrainTime;
            }
            mIsReady = hasUnread();
            if (Clock::now() >= mDeadline || !step(isStuck ? -1 : inner, wanted, &mInnerEvents)) {
                break;
            }
            mIsInnerOver = mIsInnerOver || (mInnerEvents & POLLHUP) != 0;
        }
        // The session ends now, and its locks with it, whatever the client does from now on.
        shutdown(inner, SHUT_RDWR);
        const bool isFlood = unanswered() > mLimits.unanswered;
        if (isFlood) {
            logServer(4, mUser + " from " + mFrom + ": " + std::to_string(unanswered()) +
                             " bytes of requests without an answer, which is too many");
        }
        ssh_channel_request_send_exit_status(mChannel, 0);
        ssh_channel_send_eof(mChannel);
        ssh_channel_close(mChannel);
        if (!isFlood) {
            awaitHangUp();
        }
    }

private:
    bool hasHungUp() const {
        return (ssh_get_status(mSession) & (SSH_CLOSED | SSH_CLOSED_ERROR)) != 0;
    }

    /// A client that gets the end of its session together with the end of the connection takes the
    /// session for a lost one.
    void awaitHangUp() {
        mIsReady = false;
        mDeadline = Clock::now() + kHangUpTime;
        while (!hasHungUp() && Clock::now() < mDeadline && step(-1, 0, nullptr)) {
        }
    }

    bool exchangeKeys() {
        while (true) {
            const int result = ssh_handle_key_exchange(mSession);
            if (result != SSH_AGAIN) {
                return result == SSH_OK;
            }
            if (Clock::now() >= mDeadline || !waitFor(-1, 0, nullptr)) {
                return false;
            }
        }
    }

    /// Waits for the client or \p inner, and handles what the client has sent.
    bool step(int inner, short wanted, short* innerEvents) {
        return waitFor(inner, wanted, innerEvents) && ssh_event_dopoll(mEvent, 0) != SSH_ERROR;
    }

    /// Until something happens or the deadline is over. False if the connection is broken.
    bool waitFor(int inner, short wanted, short* innerEvents) {
        const bool isWriting = (ssh_get_poll_flags(mSession) & SSH_WRITE_PENDING) != 0;
        std::array<pollfd, 2> both{
            {{ssh_get_fd(mSession), static_cast<short>(POLLIN | (isWriting ? POLLOUT : 0)), 0},
             {inner, wanted, 0}}};
        int milliseconds = -1;
        if (mIsReady) {
            milliseconds = 0;
        } else if (mDeadline != Clock::time_point::max()) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(mDeadline - Clock::now());
            milliseconds = static_cast<int>(std::max<long long>(left.count(), 0));
        }
        if (poll(both.data(), inner >= 0 ? 2 : 1, milliseconds) < 0 && errno != EINTR) {
            return false;
        }
        if (innerEvents != nullptr) {
            *innerEvents = both[1].revents;
        }
        return (both[0].revents & (POLLERR | POLLNVAL)) == 0;
    }

    /// False if the channel is closed. A client that sends nothing more may still want its replies.
    bool readChannel() {
        while (!mIsInputOver && mToInner.size() < kBuffer) {
            const int got = ssh_channel_read_nonblocking(mChannel, mBuffer.data(),
                                                         static_cast<uint32_t>(mBuffer.size()), 0);
            if (got <= 0) {
                mIsInputOver = ssh_channel_is_eof(mChannel) != 0;
                return ssh_channel_is_open(mChannel) != 0 &&
                       (got == 0 || got == SSH_AGAIN || mIsInputOver);
            }
            mToInner.insert(mToInner.end(), mBuffer.begin(), mBuffer.begin() + got);
            mUnanswered += static_cast<std::size_t>(got);
        }
        return ssh_channel_is_open(mChannel) != 0;
    }

    /// The bytes of requests since the last reply. libssh also takes what a client sends without
    /// room in the window.
    std::size_t unanswered() const {
        const int waiting = ssh_channel_poll(mChannel, 0);
        return mUnanswered + (waiting > 0 ? static_cast<std::size_t>(waiting) : 0);
    }

    /// True if the channel holds what came before, or its end, and there is room for it. No event
    /// announces that.
    bool hasUnread() {
        return mToInner.empty() && !mIsInputOver && ssh_channel_poll(mChannel, 0) != 0;
    }

    bool writeInner(int inner) {
        while (!mToInner.empty()) {
            const ssize_t sent = send(inner, mToInner.data(), mToInner.size(), MSG_NOSIGNAL);
            if (sent < 0) {
                return errno == EAGAIN || errno == EINTR;
            }
            mToInner.erase(mToInner.begin(), mToInner.begin() + sent);
        }
        if (mIsInputOver) {
            shutdown(inner, SHUT_WR);
        }
        return true;
    }

    bool writeChannel(int inner) {
        while (true) {
            const std::size_t room = ssh_channel_window_size(mChannel);
            if (room == 0) {
                return true;
            }
            if (mToChannel.empty()) {
                const ssize_t got = recv(inner, mBuffer.data(), mBuffer.size(), MSG_DONTWAIT);
                if (got < 0) {
                    return errno == EAGAIN || errno == EINTR;
                }
                if (got == 0) {
                    return false;
                }
                mUnanswered = 0;
                mSplitter.pass({mBuffer.data(), static_cast<std::size_t>(got)}, mToChannel);
            }
            // The window has room for all of it.
            const auto size = static_cast<uint32_t>(std::min(room, mToChannel.size()));
            if (ssh_channel_write(mChannel, mToChannel.data(), size) != static_cast<int>(size)) {
                return false;
            }
            mToChannel.erase(0, size);
        }
    }

    int judge(const char* user, const char* how, bool isRight) {
        if (isRight) {
            mUser = user;
            return SSH_AUTH_SUCCESS;
        }
        ++mFailed;
        logServer(4,
                  std::string("log-in refused: user ") + user + " by " + how + ", from " + mFrom);
        return SSH_AUTH_DENIED;
    }

    static int onPassword(ssh_session, const char* user, const char* password, void* self) {
        auto& own = *static_cast<Connection*>(self);
        return own.judge(user, "password", own.mUsers.hasPassword(user, password));
    }

    // Clients first ask whether a key would do. Several that would not are no attack.
    static int onKey(ssh_session, const char* user, ssh_key_struct* key, char state, void* self) {
        auto& own = *static_cast<Connection*>(self);
        const bool isKnown = own.mUsers.hasKey(user, key);
        if (state == SSH_PUBLICKEY_STATE_NONE) {
            return isKnown ? SSH_AUTH_SUCCESS : SSH_AUTH_DENIED;
        }
        return own.judge(user, "key", isKnown && state == SSH_PUBLICKEY_STATE_VALID);
    }

    static ssh_channel onOpen(ssh_session session, void* self) {
        auto& own = *static_cast<Connection*>(self);
        if (own.mUser.empty() || own.mChannel != nullptr) {
            return nullptr;
        }
        own.mChannel = ssh_channel_new(session);
        ssh_set_channel_callbacks(own.mChannel, &own.mChannelCallbacks);
        return own.mChannel;
    }

    static int onSubsystem(ssh_session, ssh_channel, const char* name, void* self) {
        auto& own = *static_cast<Connection*>(self);
        own.mIsStarted = std::string(name) == "netconf";
        return own.mIsStarted ? 0 : 1;
    }

    ssh_session mSession;
    ssh_event mEvent;
    const UserTable& mUsers;
    const SshLimits& mLimits;
    const std::string mFrom;
    Clock::time_point mDeadline;
    ssh_server_callbacks_struct mServer{};
    ssh_channel_callbacks_struct mChannelCallbacks{};
    ssh_channel mChannel = nullptr;
    std::string mUser; ///< empty: not authenticated
    int mFailed = 0;
    bool mIsStarted = false;
    bool mIsInputOver = false;
    bool mIsInnerOver = false;
    bool mIsReady = false; ///< nothing need happen before the next step
    short mInnerEvents = 0;
    std::vector<char> mToInner;
    std::string mToChannel;
    ChunkSplitter mSplitter{kLargestChunk};
    std::size_t mUnanswered = 0;
    std::array<char, kBuffer> mBuffer{};
};

}

SshFront::SshFront(const std::string& hostKey, const UserTable& users, SshLimits limits,
                   Protocol protocol)
    : mUsers(users), mLimits(limits), mProtocol(std::move(protocol)), mBind(ssh_bind_new()) {
    const bool off = false;
    const bool isSet = mBind != nullptr &&
                       setOption(mBind, SSH_BIND_OPTIONS_PROCESS_CONFIG, &off) &&
                       setOption(mBind, SSH_BIND_OPTIONS_HOSTKEY, hostKey.c_str());
    if (!isSet) {
        ssh_bind_free(mBind);
        throw ServerError(hostKey + ": the server's key cannot be read");
    }
}

SshFront::~SshFront() {
    ssh_bind_free(mBind);
}

ssh_session SshFront::accept(Descriptor socket) {
    const std::lock_guard<std::mutex> lock(mMutex);
    ssh_session session = ssh_new();
    const int fd = socket.release();
    if (session == nullptr || ssh_bind_accept_fd(mBind, session, fd) != SSH_OK) {
        logServer(3, std::string("SSH cannot be set up: ") + ssh_get_error(mBind));
        close(fd);
        ssh_free(session);
        return nullptr;
    }
    return session;
}

void SshFront::serve(Descriptor socket, const std::string& from, const Connections::Enter& enter) {
    ssh_session session = accept(std::move(socket));
    if (session == nullptr) {
        return;
    }
    const auto connection = std::make_unique<Connection>(session, mUsers, mLimits, from);
    if (!connection->login()) {
        logServer(6, "a connection from " + from + " ends without a session");
        return;
    }
    if (!enter()) {
        logServer(4, "a session of " + connection->user() + " from " + from +
                         " is refused: too many are open");
        return;
    }
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        logServer(3, "no more sockets: a session from " + from + " is refused");
        return;
    }
    Descriptor inner(ends[0]);
    fcntl(inner.get(), F_SETFL, O_NONBLOCK);
    std::thread protocol([this, from, user = mUsers.named(connection->user()), outer = ends[1]] {
        mProtocol(Descriptor(outer), user, from);
    });
    connection->pass(inner.get());
    protocol.join();
}

}
