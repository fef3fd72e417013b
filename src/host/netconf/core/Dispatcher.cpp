// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Dispatcher.h"

#include "netconf/core/EditReader.h"
#include "netconf/core/ErrorReader.h"
#include "netconf/wire/XmlText.h"

#include <libyang/libyang.h>

#include <set>

namespace OrvHost {

namespace {

[[noreturn]] void refuse(const std::string& type, const std::string& tag,
                         const std::string& message, const std::string& info = {}) {
    RpcError error;
    error.type = type;
    error.tag = tag;
    error.message = message;
    error.info = info;
    throw RpcErrors(error);
}

const lyd_node* childOf(const lyd_node* node, const std::string& name) {
    for (const lyd_node* child = lyd_child(node); child != nullptr; child = child->next) {
        if (child->schema != nullptr && name == child->schema->name) {
            return child;
        }
    }
    return nullptr;
}

std::string textOf(const lyd_node* node, const std::string& name) {
    const lyd_node* child = childOf(node, name);
    const char* const value = child != nullptr ? lyd_get_value(child) : nullptr;
    return value != nullptr ? value : "";
}

std::optional<std::string> optionalTextOf(const lyd_node* node, const std::string& name) {
    return childOf(node, name) != nullptr ? std::optional(textOf(node, name)) : std::nullopt;
}

/// Nobody can end a confirmed commit whose token is lost, so it must not wait for ever.
constexpr std::chrono::hours kLongestConfirmation{24};

CommitRequest commitRequestOf(const lyd_node* request) {
    CommitRequest commit;
    commit.isConfirmed = childOf(request, "confirmed") != nullptr;
    commit.timeout = std::chrono::seconds(std::stoul(textOf(request, "confirm-timeout")));
    commit.persist = optionalTextOf(request, "persist");
    commit.persistId = optionalTextOf(request, "persist-id");
    if (commit.timeout > kLongestConfirmation) {
        refuse("protocol", "invalid-value",
               "a confirmed commit waits for a day (86400 seconds) at most");
    }
    if (commit.persist && !commit.isConfirmed) {
        refuse("protocol", "missing-element", "<persist> belongs to a commit with <confirmed>",
               errorInfo("bad-element", "confirmed"));
    }
    if (commit.persist && commit.persist->empty()) {
        refuse("protocol", "invalid-value", "<persist> is empty; a token was expected",
               errorInfo("bad-element", "persist"));
    }
    return commit;
}

/// The datastore that is named in the source or target; nothing if that names something else.
std::optional<Datastore> storeIn(const lyd_node* request, const std::string& place) {
    const lyd_node* parent = childOf(request, place);
    if (parent != nullptr && childOf(parent, "running") != nullptr) {
        return Datastore::Running;
    }
    if (parent != nullptr && childOf(parent, "candidate") != nullptr) {
        return Datastore::Candidate;
    }
    return std::nullopt;
}

Datastore requireStore(const lyd_node* request, const std::string& place) {
    const auto store = storeIn(request, place);
    if (!store) {
        refuse("protocol", "invalid-value",
               "the " + place + " is neither running nor candidate, the datastores that there are");
    }
    return *store;
}

Defaults defaultsIn(const lyd_node* request) {
    const std::string mode = textOf(request, "with-defaults");
    if (mode == "report-all") {
        return Defaults::ReportAll;
    }
    if (mode == "report-all-tagged") {
        return Defaults::ReportAllTagged;
    }
    if (!mode.empty() && mode != "trim") {
        refuse("protocol", "invalid-value",
               "with-defaults is " + mode +
                   "; trim, report-all or report-all-tagged was expected: a value that was set to "
                   "the default cannot be told from one that was not set");
    }
    return Defaults::Trim;
}

/// The first node in an element that can hold anything; null if it is empty. What is no tree is
/// refused.
const lyd_node* contentOf(const lyd_node* node) {
    const auto* any = reinterpret_cast<const lyd_node_any*>(node);
    if (any->value_type == LYD_ANYDATA_DATATREE) {
        return any->value.tree;
    }
    if (any->value.str != nullptr &&
        std::string(any->value.str).find_first_not_of(" \t\r\n") != std::string::npos) {
        refuse("protocol", "bad-element", "elements were expected, not a text",
               errorInfo("bad-element", node->schema->name));
    }
    return nullptr;
}

std::string metaOf(const lyd_node* node, const char* name) {
    const lyd_meta* meta = lyd_find_meta(node->meta, nullptr, name);
    return meta != nullptr ? lyd_get_meta_value(meta) : "";
}

bool writes(const std::string& operation) {
    static const std::set<std::string> known{
        "edit-config",   "copy-config", "delete-config", "discard-changes", "commit",
        "cancel-commit", "lock",        "unlock",        "kill-session"};
    return known.count(operation) != 0;
}

}

Dispatcher::Dispatcher(Host& host, const WireModel& model, Kill kill, Subscribe subscribe)
    : mHost(host),
      mModel(model),
      mStores(host, model.schema()),
      mMonitor(model, mStores),
      mReader(model, mStores, mMonitor),
      mKill(std::move(kill)),
      mSubscribe(std::move(subscribe)),
      mEvents(host, model.schema()) {}

RpcReply Dispatcher::answer(NetconfSession& session, lyd_node* request) {
    // What the library said of requests that did not come here is not about this one.
    static_cast<void>(mModel.context().takeMessages());
    try {
        return dispatch(session, request);
    } catch (const std::exception&) {
        return {errorsOf(std::current_exception(), mModel.schema(), session.client()), nullptr, {}};
    }
}

RpcReply Dispatcher::dispatch(NetconfSession& session, lyd_node* request) {
    const std::string operation = request->schema != nullptr ? request->schema->name : "";
    const std::string module = request->schema != nullptr ? request->schema->module->name : "";
    if (module == "ietf-netconf-monitoring" && operation == "get-schema") {
        check(request);
        return getSchema(request);
    }
    if (module == "notifications" && operation == "create-subscription") {
        check(request);
        subscribe(session, request);
        return {};
    }
    if (const lyd_node* action = actionIn(request)) {
        return act(session, action);
    }
    if (request->schema == nullptr || module != kNetconfModule ||
        request->schema->nodetype != LYS_RPC) {
        refuse("protocol", "operation-not-supported",
               "<" + operation + "> of " + module + " is not an operation of this server");
    }
    if (session.user().isReadOnly && writes(operation)) {
        refuse("protocol", "access-denied",
               "user " + session.user().name + " may only read; <" + operation + "> is not a read");
    }
    check(request);
    if (operation == "get" || operation == "get-config") {
        return get(session, request);
    }
    if (operation == "edit-config") {
        return editConfig(session, request);
    }
    if (operation == "copy-config") {
        return copyConfig(session, request);
    }
    if (operation == "validate") {
        return validate(session, request);
    }
    if (operation == "commit") {
        mStores.commit(session, commitRequestOf(request));
    } else if (operation == "cancel-commit") {
        mStores.cancelCommit(session, optionalTextOf(request, "persist-id"));
    } else if (operation == "discard-changes") {
        mStores.discard(session);
    } else if (operation == "lock") {
        mStores.lock(session, requireStore(request, "target"));
    } else if (operation == "unlock") {
        mStores.unlock(session, requireStore(request, "target"));
    } else if (operation == "kill-session") {
        return kill(session, request);
    } else {
        refuse("protocol", "operation-not-supported",
               "<" + operation + "> is not supported by this server");
    }
    return {};
}

// The parser lets requests through in which something is missing.
void Dispatcher::check(lyd_node* request) const {
    if (lyd_validate_op(request, nullptr, LYD_TYPE_RPC_YANG, nullptr) == LY_SUCCESS) {
        return;
    }
    const std::vector<YangMessage> messages = mModel.context().takeMessages();
    const std::string text = messages.empty() ? "the request is not valid" : messages.front().text;
    const bool isMissing = text.find("Mandatory") != std::string::npos;
    refuse("protocol", isMissing ? "missing-element" : "bad-element", text,
           errorInfo("bad-element", request->schema->name));
}

RpcReply Dispatcher::get(NetconfSession& session, const lyd_node* request) {
    DataRequest wanted;
    wanted.onlyConfig = request->schema->name == std::string("get-config");
    if (wanted.onlyConfig) {
        wanted.store = requireStore(request, "source");
    }
    wanted.defaults = defaultsIn(request);
    if (const lyd_node* filter = childOf(request, "filter")) {
        if (metaOf(filter, "ietf-netconf:type") == "xpath") {
            wanted.xpath = metaOf(filter, "ietf-netconf:select");
            if (wanted.xpath.empty()) {
                refuse("protocol", "missing-attribute", "the filter lacks its expression",
                       errorInfo("bad-attribute", "select") + errorInfo("bad-element", "filter"));
            }
        } else {
            wanted.filter = readFilter(contentOf(filter));
        }
    }
    return {{}, mReader.read(session, wanted), {}};
}

RpcReply Dispatcher::editConfig(NetconfSession& session, const lyd_node* request) {
    const lyd_node* config = childOf(request, "config");
    const std::string byDefault = textOf(request, "default-operation");
    const EditOperation operation =
        byDefault.empty() ? EditOperation::Merge : editOperationOf(byDefault);
    const EditMode mode =
        textOf(request, "test-option") == "test-only" ? EditMode::OnlyTest : EditMode::Write;
    mStores.edit(session, requireStore(request, "target"), mode, [&](StateBefore& before) {
        return EditReader(mModel, mHost.model(), before).read(contentOf(config), operation);
    });
    return {};
}

void Dispatcher::replaceAll(NetconfSession& session, Datastore target, EditMode mode,
                            const lyd_node* config) {
    mStores.edit(session, target, mode, [&](StateBefore& before) {
        return EditReader(mModel, mHost.model(), before)
            .read(contentOf(config), EditOperation::Replace);
    });
}

RpcReply Dispatcher::copyConfig(NetconfSession& session, const lyd_node* request) {
    const Datastore target = requireStore(request, "target");
    // What is copied is the same in each mode that there is.
    static_cast<void>(defaultsIn(request));
    if (const lyd_node* config = childOf(childOf(request, "source"), "config")) {
        replaceAll(session, target, EditMode::Write, config);
        return {};
    }
    const Datastore source = requireStore(request, "source");
    if (source == target) {
        refuse("protocol", "invalid-value", "source and target are the same datastore");
    }
    if (target == Datastore::Candidate) {
        mStores.discard(session);
    } else {
        mStores.copyToRunning(session);
    }
    return {};
}

RpcReply Dispatcher::validate(NetconfSession& session, const lyd_node* request) {
    if (const lyd_node* config = childOf(childOf(request, "source"), "config")) {
        replaceAll(session, Datastore::Running, EditMode::OnlyTest, config);
    } else {
        mStores.validate(session, requireStore(request, "source"));
    }
    return {};
}

RpcReply Dispatcher::act(NetconfSession& session, const lyd_node* action) {
    const std::string name = action->schema->name;
    if (session.user().isReadOnly) {
        refuse("protocol", "access-denied",
               "user " + session.user().name + " may only read; the action <" + name +
                   "> is not a read");
    }
    const ActionRequest request = readAction(mModel, mHost.model(), action);
    return {{}, nullptr, outputText(mModel, request, mStores.act(session, request))};
}

RpcReply Dispatcher::getSchema(const lyd_node* request) const {
    const std::string format = textOf(request, "format");
    if (!format.empty() && format != "ietf-netconf-monitoring:yang") {
        refuse("application", "invalid-value",
               "modules are given in the format yang, not in " + format);
    }
    const std::string name = textOf(request, "identifier");
    const std::string revision = textOf(request, "version");
    const auto text = mModel.moduleText(name, revision);
    if (!text) {
        refuse("application", "invalid-value",
               "there is no module " + name + (revision.empty() ? "" : " of " + revision));
    }
    return {{}, toCText(xmlEscaped(*text)), {}};
}

void Dispatcher::subscribe(NetconfSession& session, const lyd_node* request) {
    const std::string stream = textOf(request, "stream");
    if (stream != "NETCONF") {
        refuse("protocol", "invalid-value",
               "there is no stream " + stream + "; NETCONF was expected");
    }
    if (childOf(request, "startTime") != nullptr) {
        refuse("protocol", "operation-failed",
               "past events are not kept, so they cannot be sent again");
    }
    if (childOf(request, "stopTime") != nullptr) {
        refuse("protocol", "missing-element", "a stopTime needs a startTime",
               errorInfo("bad-element", "startTime"));
    }
    std::optional<std::vector<FilterNode>> filter;
    if (const lyd_node* given = childOf(request, "filter")) {
        if (metaOf(given, "ietf-netconf:type") == "xpath") {
            refuse("protocol", "operation-not-supported",
                   "events are filtered by subtree filters only");
        }
        filter = readFilter(contentOf(given));
    }
    if (!mSubscribe(session, std::move(filter))) {
        refuse("protocol", "operation-failed", "this session has a subscription already");
    }
}

RpcReply Dispatcher::kill(NetconfSession& session, const lyd_node* request) {
    const auto id = static_cast<std::uint32_t>(std::stoul(textOf(request, "session-id")));
    if (id == session.id() || !mKill(id, session)) {
        refuse("protocol", "invalid-value",
               id == session.id() ? "a session ends itself with close-session"
                                  : "there is no session " + std::to_string(id));
    }
    // Its own thread can still be at work for long.
    mStores.end(id);
    return {};
}

}
