// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_DISPATCHER_H
#define ORV_HOST_NETCONF_CORE_DISPATCHER_H

#include "netconf/core/DataReader.h"
#include "netconf/core/Datastores.h"
#include "netconf/core/EventStream.h"
#include "netconf/wire/CText.h"
#include "netconf/wire/RpcError.h"
#include "netconf/wire/WireModel.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

struct lyd_node;

namespace OrvHost {

/// The answer to a request.
struct RpcReply {
    std::vector<RpcError> errors{}; ///< if there are some, nothing was done
    CText data{};                   ///< the content of the data element, in XML, or null
    std::string output{};           ///< what an action returns, in XML; without data: ok
};

/// Answers the requests of RFC 6241 that are not the transport's own (close-session): get,
/// get-config, edit-config, copy-config, lock, unlock, commit, cancel-commit, discard-changes,
/// validate, kill-session, get-schema of RFC 6022, create-subscription of RFC 5277, and the actions
/// of the model.
///
/// It knows no transport: a request is a tree of the wire's context, as a parser makes it from XML.
///
/// Any thread, each session on one.
class Dispatcher {
public:
    /// Cancels another session and says whether there was one. \p by is the session that wants it.
    using Kill = std::function<bool(std::uint32_t session, const NetconfSession& by)>;

    /// Begins to send the events of events() to a session, filtered. False: it gets them already.
    using Subscribe =
        std::function<bool(NetconfSession& session, std::optional<std::vector<FilterNode>> filter)>;

    /// All is borrowed.
    Dispatcher(Host& host, const WireModel& model, Kill kill, Subscribe subscribe);

    /// \p request is the operation's node, or any above it. Defaults are added to it. Throws
    /// nothing but std::bad_alloc: all other failures are errors of the reply.
    RpcReply answer(NetconfSession& session, lyd_node* request);

    /// See Datastores::limitCandidate.
    void limitCandidate(std::chrono::seconds limit) { mStores.limitCandidate(limit); }

    /// See Datastores::pauseUndoing.
    void pauseUndoing(std::chrono::seconds pause) { mStores.pauseUndoing(pause); }

    /// See Datastores::noteUnconfirmedIn.
    void noteUnconfirmedIn(const std::filesystem::path& file) { mStores.noteUnconfirmedIn(file); }

    /// See Datastores::tellLeftUnconfirmed.
    void tellLeftUnconfirmed() { mStores.tellLeftUnconfirmed(); }

    /// See Datastores::abandon.
    void abandon() { mStores.abandon(); }

    /// See Datastores::commitBeside.
    void commitBeside(const std::string& user, const std::function<void()>& commit) {
        mStores.commitBeside(user, commit);
    }

    /// Call it when a session ends, however it does.
    void end(NetconfSession& session) { mStores.end(session.id()); }

    const WireModel& model() const { return mModel; }
    EventStream& events() { return mEvents; }
    Monitor& monitor() { return mMonitor; }

private:
    RpcReply dispatch(NetconfSession& session, lyd_node* request);
    void check(lyd_node* request) const;
    RpcReply get(NetconfSession& session, const lyd_node* request);
    RpcReply editConfig(NetconfSession& session, const lyd_node* request);
    RpcReply copyConfig(NetconfSession& session, const lyd_node* request);
    RpcReply validate(NetconfSession& session, const lyd_node* request);
    void subscribe(NetconfSession& session, const lyd_node* request);
    RpcReply act(NetconfSession& session, const lyd_node* action);
    RpcReply getSchema(const lyd_node* request) const;
    RpcReply kill(NetconfSession& session, const lyd_node* request);
    void replaceAll(NetconfSession& session, Datastore target, EditMode mode,
                    const lyd_node* config);

    Host& mHost;
    const WireModel& mModel;
    Datastores mStores;
    Monitor mMonitor;
    DataReader mReader;
    Kill mKill;
    Subscribe mSubscribe;
    EventStream mEvents;
};

}

#endif
