// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_SERVER_SESSIONHUB_H
#define ORV_HOST_NETCONF_SERVER_SESSIONHUB_H

#include "base/Descriptor.h"
#include "netconf/core/Dispatcher.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

namespace OrvHost {

struct ServedSession;

/// The sessions of the server: runs the protocol over descriptors that carry nothing else. Framing,
/// hello and the envelopes of messages are the library's, the answers the dispatcher's.
///
/// Each session has a thread, which waits for its descriptor alone: a client that says nothing, or
/// half a message, or does not read its reply, keeps nobody else waiting and costs no time.
///
/// Only one at a time in a process, because the library's state is the process's. Any thread.
class SessionHub {
public:
    /// \p host and \p model are borrowed; nothing else may use the private pointers of the model's
    /// context. Throws ServerError if the library cannot be set up.
    SessionHub(Host& host, const WireModel& model);
    /// All sessions must have ended.
    ~SessionHub();
    SessionHub(const SessionHub&) = delete;
    SessionHub& operator=(const SessionHub&) = delete;

    /// Runs a session with \p user over \p channel, a socket, until it ends. \p from says for the
    /// log where the user comes from.
    void serve(Descriptor channel, const NetconfUser& user, Transport transport,
               const std::string& from);

    /// Ends all sessions, also those that begin later. Returns at once; a request that is at work
    /// ends at the next place where it can.
    void endAll();

    /// Logs which sessions are still at work.
    void logWhoIsAtWork();

    /// The answer to one request, for the library's callbacks.
    Dispatcher& dispatcher() { return mDispatcher; }

private:
    struct Entry {
        int fd;
        ServedSession* served;
        std::optional<std::uint32_t> killedBy{};
        bool isLeaving = false; ///< it answers nothing any more, and what it had is given back
    };

    bool enter(std::uint32_t id, const Entry& entry);
    /// How it has ended, but for what the library knows.
    SessionEnd leave(std::uint32_t id);
    void remove(std::uint32_t id);
    bool subscribe(const NetconfSession& session, std::optional<std::vector<FilterNode>> filter);
    bool kill(std::uint32_t id, const NetconfSession& by);

    Host& mHost;
    Dispatcher mDispatcher;
    std::mutex mMutex; ///< guards all below
    std::map<std::uint32_t, Entry> mSessions;
    bool mIsEnding = false;
};

}

#endif
