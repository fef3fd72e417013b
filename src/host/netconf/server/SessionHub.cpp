// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SessionHub.h"

#include "ServerError.h"
#include "Subscriber.h"
#include "netconf/core/ServerLog.h"

#include <libyang/libyang.h>
#include <nc_server.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <poll.h>
#include <sys/socket.h>

namespace OrvHost {

/// A session with what belongs to it here.
struct ServedSession {
    ServedSession(Host& host, nc_session* ofLibrary, const NetconfUser& user)
        : session(host, nc_session_get_id(ofLibrary), user), library(ofLibrary) {}

    NetconfSession session;
    nc_session* library;
    std::unique_ptr<Subscriber> subscriber; ///< null: it has no subscription
};

namespace {

/// How long a client may take for its hello, in seconds.
constexpr std::uint16_t kHelloSeconds = 10;

// The library's callbacks get no object of ours.
SessionHub* theHub = nullptr;

struct SessionDeleter {
    void operator()(nc_session* session) const { nc_session_free(session, nullptr); }
};

nc_server_reply* errorReply(const std::vector<RpcError>& errors, ly_ctx* context) {
    nc_server_reply* reply = nullptr;
    for (const RpcError& error : errors) {
        const std::string text = error.toXml();
        lyd_node* node = nullptr;
        lyd_parse_data_mem(context, text.c_str(), LYD_XML, LYD_PARSE_ONLY | LYD_PARSE_OPAQ, 0,
                           &node);
        if (node == nullptr) {
            continue;
        }
        if (reply == nullptr) {
            reply = nc_server_reply_err(node);
        } else {
            nc_server_reply_add_err(reply, node);
        }
    }
    return reply;
}

nc_server_reply* dataReply(CText text, const lyd_node* request, const LargeReplies& largeReplies) {
    constexpr std::size_t kLarge = 1 << 20; // some milliseconds for the library
    OwnedTree tree = std::strlen(text.get()) < kLarge ? nullptr : largeReplies.take(text);
    lyd_node* output = nullptr;
    if (lyd_new_inner(nullptr, request->schema->module, request->schema->name, 0, &output) !=
        LY_SUCCESS) {
        return nullptr;
    }
    OwnedTree owner(output);
    const LY_ERR code =
        tree != nullptr
            ? lyd_new_any(output, nullptr, "data", tree.get(), 1, LYD_ANYDATA_DATATREE, 1, nullptr)
            : lyd_new_any(output, nullptr, "data", text.get(), 1, LYD_ANYDATA_XML, 1, nullptr);
    if (code != LY_SUCCESS) {
        return nullptr;
    }
    static_cast<void>(tree.release()); // the node has it
    static_cast<void>(text.release());
    return nc_server_reply_data(owner.release(), NC_WD_EXPLICIT, NC_PARAMTYPE_FREE);
}

/// The library has no text for each of its errors.
std::string textOrUnknown(const char* text) {
    return text != nullptr ? text : "the reason is not known";
}

/// \p output: the nodes that the action returns.
nc_server_reply* outputReply(const std::string& output, const lyd_node* action, ly_ctx* context) {
    lyd_node* reply = nullptr;
    const std::string text =
        std::string("<rpc-reply xmlns=\"") + kNetconfNamespace + "\">" + output + "</rpc-reply>";
    ly_in* in = nullptr;
    if (lyd_dup_single(action, nullptr, 0, &reply) != LY_SUCCESS ||
        ly_in_new_memory(text.c_str(), &in) != LY_SUCCESS) {
        lyd_free_tree(reply);
        return nullptr;
    }
    lyd_node* envelope = nullptr;
    const LY_ERR code =
        lyd_parse_op(context, reply, in, LYD_XML, LYD_TYPE_REPLY_NETCONF, &envelope, nullptr);
    ly_in_free(in, 0);
    lyd_free_all(envelope);
    if (code == LY_SUCCESS) {
        return nc_server_reply_data(reply, NC_WD_EXPLICIT, NC_PARAMTYPE_FREE);
    }
    lyd_free_tree(reply);
    RpcError error;
    error.tag = "operation-failed";
    error.message =
        std::string("action ") + action->schema->name +
        " is done, but its result cannot be shown: " + textOrUnknown(ly_errmsg(context));
    return errorReply({error}, context);
}

std::string operationText(const lyd_node* request) {
    const lyd_node* action = actionIn(request);
    return action != nullptr ? std::string("action ") + LYD_NAME(action) : LYD_NAME(request);
}

nc_server_reply* replyTo(lyd_node* request, nc_session* session) {
    NetconfSession& own = static_cast<ServedSession*>(nc_session_get_data(session))->session;
    ly_ctx* const context = theHub->dispatcher().model().context().get();
    RpcReply reply;
    try {
        reply = theHub->dispatcher().answer(own, request);
    } catch (const std::exception& failure) {
        RpcError error;
        error.tag = "resource-denied";
        error.message = failure.what();
        reply.errors = {error};
    }
    logServer(6, own.author() + ": " + operationText(request) + ": " +
                     (reply.errors.empty() ? "done" : reply.errors.front().tag));
    // Messages of the library about the request have been read, or are of no use.
    ly_err_clean(context, nullptr);
    if (!reply.errors.empty()) {
        return errorReply(reply.errors, context);
    }
    if (!reply.output.empty()) {
        return outputReply(reply.output, actionIn(request), context);
    }
    return reply.data != nullptr ? dataReply(std::move(reply.data), request,
                                             theHub->dispatcher().model().largeReplies())
                                 : nc_server_reply_ok();
}

// Exceptions must not pass through the library. Without a reply it sends an error of its own.
nc_server_reply* onRequest(lyd_node* request, nc_session* session) {
    nc_server_reply* reply = nullptr;
    contain("a request is not answered", [&] { reply = replyTo(request, session); });
    return reply;
}

void onLibraryMessage(const nc_session*, NC_VERB_LEVEL level, const char* text) {
    if (level == NC_VERB_ERROR || level == NC_VERB_WARNING) {
        contain("a message of the protocol's library",
                [text] { logServer(6, std::string("protocol: ") + text); });
    }
}

/// The capabilities of the hello. The texts are the library's dictionary's.
std::vector<std::string> announced(ly_ctx* context) {
    const char** const all = nc_server_get_cpblts_version(context, LYS_VERSION_1_0);
    std::vector<std::string> capabilities;
    for (const char** one = all; one != nullptr && *one != nullptr; ++one) {
        capabilities.emplace_back(*one);
        lydict_remove(context, *one);
    }
    std::free(static_cast<void*>(all));
    return capabilities;
}

/// False if that is not possible, for example without memory: the session must end.
bool sendEvents(ServedSession& served) {
    try {
        MessageCounts counts;
        counts.notifications = served.subscriber->sendWaiting();
        theHub->dispatcher().monitor().count(served.session.id(), counts);
        return true;
    } catch (const std::exception& failure) {
        logServer(3, std::string("events cannot be sent: ") + failure.what());
        return false;
    }
}

/// What the library has done, in counts of messages.
MessageCounts countsOf(int pollResult) {
    const auto has = [&](int flag) { return (pollResult & flag) != 0 ? 1U : 0U; };
    return {has(NC_PSPOLL_RPC), has(NC_PSPOLL_BAD_RPC), has(NC_PSPOLL_REPLY_ERROR), 0};
}

/// Answers requests, and sends events, until the session ends.
void answerAll(ServedSession& served, int fd) {
    nc_session* const session = served.library;
    nc_pollsession* const one = nc_ps_new();
    constexpr int kEnd = NC_PSPOLL_NOSESSIONS | NC_PSPOLL_SESSION_TERM | NC_PSPOLL_ERROR;
    const bool isAdded = one != nullptr && nc_ps_add_session(one, session) == 0;
    bool isOpen = isAdded;
    while (isOpen) {
        std::array<pollfd, 2> wanted{
            {{fd, POLLIN, 0},
             {served.subscriber ? served.subscriber->waitingFd() : -1, POLLIN, 0}}};
        if (poll(wanted.data(), wanted.size(), -1) < 0) {
            isOpen = errno == EINTR;
            continue;
        }
        if (wanted[1].revents != 0 && !sendEvents(served)) {
            break;
        }
        if (wanted[0].revents != 0) {
            isOpen = (wanted[0].revents & POLLIN) != 0;
            if (isOpen) {
                const int result = nc_ps_poll(one, 0, nullptr);
                theHub->dispatcher().monitor().count(served.session.id(), countsOf(result));
                isOpen = (result & kEnd) == 0;
            }
        }
    }
    if (isAdded) {
        nc_ps_del_session(one, session);
    }
    nc_ps_free(one);
}

}

SessionHub::SessionHub(Host& host, const WireModel& model)
    : mHost(host),
      mDispatcher(
          host, model, [this](std::uint32_t id, const NetconfSession& by) { return kill(id, by); },
          [this](NetconfSession& session, std::optional<std::vector<FilterNode>> filter) {
              return subscribe(session, std::move(filter));
          }) {
    theHub = this;
    nc_set_print_clb_session(onLibraryMessage);
    ly_ctx* const context = model.context().get();
    nc_set_global_rpc_clb(onRequest);
    // The library's own get-schema frees a text twice with this version of libyang.
    auto* const getSchema = const_cast<lysc_node*>(
        lys_find_path(context, nullptr, "/ietf-netconf-monitoring:get-schema", 0));
    nc_set_rpc_callback(getSchema, reinterpret_cast<void*>(onRequest));
    if (nc_server_init(context) != 0) {
        theHub = nullptr;
        throw ServerError("the NETCONF library cannot be set up");
    }
    // The library's own function for with-defaults names the basic mode among the others, too.
    for (const char* capability : {"notification:1.0", "interleave:1.0",
                                   "with-defaults:1.0?basic-mode=trim&also-supported=report-all,"
                                   "report-all-tagged"}) {
        nc_server_set_capability(
            (std::string("urn:ietf:params:netconf:capability:") + capability).c_str());
    }
    nc_server_set_hello_timeout(kHelloSeconds);
    mDispatcher.monitor().setCapabilities(announced(context));
}

SessionHub::~SessionHub() {
    nc_server_destroy();
    theHub = nullptr;
}

void SessionHub::serve(Descriptor channel, const NetconfUser& user, Transport transport,
                       const std::string& from) {
    nc_session* accepted = nullptr;
    const NC_MSG_TYPE greeting =
        nc_accept_inout(channel.get(), channel.get(), user.name.c_str(), &accepted);
    std::unique_ptr<nc_session, SessionDeleter> session(accepted);
    if (greeting != NC_MSG_HELLO) {
        logServer(4, user.name + " from " + from + ": no hello that can be used");
        if (greeting == NC_MSG_BAD_HELLO) {
            mDispatcher.monitor().badHello();
        }
        session.reset();
        nc_thread_destroy();
        return;
    }
    const std::uint32_t id = nc_session_get_id(accepted);
    {
        ServedSession served(mHost, accepted, user);
        NetconfSession& own = served.session;
        nc_session_set_data(accepted, &served);
        if (enter(id, {channel.get(), &served})) {
            // Whatever fails, nothing of it may stay behind.
            contain("a session ends", [&] {
                logServer(6, own.author() + ": begins, from " + from);
                mDispatcher.monitor().sessionBegins(own, transport);
                mDispatcher.events().sessionBegins(own);
                answerAll(served, channel.get());
            });
            SessionEnd end = leave(id);
            end.isClosed = nc_session_get_term_reason(accepted) == NC_SESSION_TERM_CLOSED;
            contain("the end of a session is not counted",
                    [&] { mDispatcher.monitor().sessionEnds(id, !end.isClosed && !end.killedBy); });
            contain("the end of a session is not told", [&] { mDispatcher.events().leave(id); });
            shutdown(channel.get(), SHUT_RDWR);
            served.subscriber.reset();
            contain("what a session had is not given back", [&] { mDispatcher.end(own); });
            remove(id);
            contain("the end of a session is not told", [&] {
                mDispatcher.events().sessionEnds(own, end);
                logServer(6, own.author() + ": ends");
            });
        }
        nc_session_set_data(accepted, nullptr);
    }
    session.reset();
    nc_thread_destroy();
}

bool SessionHub::enter(std::uint32_t id, const Entry& entry) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (!mIsEnding) {
        mSessions.emplace(id, entry);
    }
    return !mIsEnding;
}

SessionEnd SessionHub::leave(std::uint32_t id) {
    const std::lock_guard<std::mutex> lock(mMutex);
    SessionEnd end;
    Entry& entry = mSessions.at(id);
    entry.isLeaving = true;
    end.killedBy = entry.killedBy;
    return end;
}

void SessionHub::remove(std::uint32_t id) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mSessions.erase(id);
}

/// On the session's thread.
bool SessionHub::subscribe(const NetconfSession& session,
                           std::optional<std::vector<FilterNode>> filter) {
    ServedSession* served = nullptr;
    int fd = -1;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        const Entry& entry = mSessions.at(session.id());
        served = entry.served;
        fd = entry.fd;
    }
    if (served->subscriber) {
        return false;
    }
    served->subscriber = std::make_unique<Subscriber>(
        served->library, mDispatcher.model(), std::move(filter), [fd, who = session.author()] {
            logServer(4, who + ": does not read its events, and is ended");
            shutdown(fd, SHUT_RDWR);
        });
    return mDispatcher.events().listen(
        session.id(), [subscriber = served->subscriber.get()](
                          const std::shared_ptr<const Event>& event) { subscriber->push(event); });
}

bool SessionHub::kill(std::uint32_t id, const NetconfSession& by) {
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto found = mSessions.find(id);
    if (found == mSessions.end() || found->second.isLeaving) {
        return false;
    }
    NetconfSession& killed = found->second.served->session;
    logServer(6, by.author() + ": kills " + killed.author());
    found->second.killedBy = by.id();
    killed.client().cancellation().cancel();
    shutdown(found->second.fd, SHUT_RDWR);
    return true;
}

void SessionHub::endAll() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mIsEnding = true;
    for (const auto& [id, entry] : mSessions) {
        entry.served->session.client().cancellation().cancel();
        shutdown(entry.fd, SHUT_RDWR);
    }
}

void SessionHub::logWhoIsAtWork() {
    const std::lock_guard<std::mutex> lock(mMutex);
    for (const auto& [id, entry] : mSessions) {
        logServer(4, entry.served->session.author() + ": is still at work");
    }
}

}
