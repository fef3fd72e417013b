// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Requests of NETCONF clients, as the server gets them from the library that has taken them out of
// their messages: three sessions, one of which may only read, in front of a host of its own with
// the loaded component. An input is a row of operations in XML, with a line "%" between them; the
// first character of each says which session asks. What the library parses gets an answer that is
// XML, and when the sessions have ended, no transaction is open.

#include "netconf/core/Dispatcher.h"
#include "runtime/DataSet.h"
#include "runtime/Host.h"
#include "runtime/LogSink.h"
#include "support/Require.h"
#include "yang/instances/InstanceDataReader.h"
#include "yang/schema/YangModelReader.h"

#include <libyang/libyang.h>

#include <array>
#include <memory>
#include <sstream>
#include <string>

#include <dlfcn.h>

using namespace Fuzz;
using namespace OrvHost;

namespace {

struct Network {
    YangModelReader reader;
    YangModel model;
    std::unique_ptr<WireModel> wire;

    Network() {
        // Without this the shared object would be unloaded with each host, and the fuzzer cannot
        // count the ways through one that comes and goes.
        require(dlopen(EXT_CM_PATH, RTLD_NOW | RTLD_LOCAL) != nullptr,
                "the component cannot be opened");
        reader.searchIn(EXAMPLES_DIR "/models");
        reader.searchIn(NETCONF_MODELS_DIR);
        for (const char* module : {"ran-element", "ran-equipment", "ran-function", "plant"}) {
            reader.load(module);
        }
        model = reader.read();
        wire = std::make_unique<WireModel>(reader, model.schema);
    }
};

Network& network() {
    static Network theNetwork;
    return theNetwork;
}

HostOptions knownAsHarbour() {
    HostOptions options;
    options.preferredIdentity = "Harbour";
    return options;
}

void load(Host& host) {
    const YangModel& model = network().model;
    DataSet data(model.model);
    InstanceDataReader instances(model.schema);
    instances.nameRoot("1");
    instances.read({EXAMPLES_DIR "/data/harbour.json"},
                   [&](DataObject&& object, const std::string& file) {
                       data.add({std::move(object.dn), std::move(object.attributes), {file, 0}});
                   });
    require(data.moveInto(host.store()).empty(), "the store refuses the network");
    host.loadComponent(EXT_CM_PATH);
    for (const ComponentReport& report : host.start()) {
        require(report.state == ComponentState::Started, report.name + ": " + report.problem);
    }
}

struct TreeEnd {
    void operator()(lyd_node* node) const { lyd_free_all(node); }
};
using Tree = std::unique_ptr<lyd_node, TreeEnd>;

/// A context without modules: anything that is XML can be parsed in it.
const ly_ctx* plainContext() {
    static const auto theContext = [] {
        ly_ctx* made = nullptr;
        ly_ctx_new(nullptr, LY_CTX_NO_YANGLIBRARY, &made);
        return std::unique_ptr<ly_ctx, void (*)(ly_ctx*)>(made, ly_ctx_destroy);
    }();
    return theContext.get();
}

void requireXml(const std::string& text) {
    lyd_node* tree = nullptr;
    const LY_ERR code = lyd_parse_data_mem(plainContext(), text.c_str(), LYD_XML,
                                           LYD_PARSE_ONLY | LYD_PARSE_OPAQ, 0, &tree);
    const Tree owned(tree);
    const ly_err_item* const why = ly_err_first(plainContext());
    require(code == LY_SUCCESS,
            "no XML: " + text + "\n" + (why != nullptr && why->msg != nullptr ? why->msg : ""));
}

void ask(Dispatcher& dispatcher, NetconfSession& session, const std::string& operation) {
    ly_ctx* const context = network().wire->context().get();
    const std::string text =
        R"(<rpc xmlns="urn:ietf:params:xml:ns:netconf:base:1.0" message-id="1">)" + operation +
        "</rpc>";
    ly_in* in = nullptr;
    ly_in_new_memory(text.c_str(), &in);
    lyd_node* envelope = nullptr;
    lyd_node* request = nullptr;
    const LY_ERR code =
        lyd_parse_op(context, nullptr, in, LYD_XML, LYD_TYPE_RPC_NETCONF, &envelope, &request);
    ly_in_free(in, 0);
    const Tree ownedEnvelope(envelope);
    const Tree ownedRequest(request);
    if (code == LY_SUCCESS && request != nullptr) {
        const RpcReply reply = dispatcher.answer(session, request);
        for (const RpcError& error : reply.errors) {
            require(!error.tag.empty(), "an error without a tag");
            requireXml(error.toXml());
        }
        const std::string data = reply.data != nullptr ? reply.data.get() : "";
        requireXml("<data xmlns=\"urn:all\">" + data + "</data>");
        requireXml("<output xmlns=\"urn:all\">" + reply.output + "</output>");
    }
    ly_err_clean(context, nullptr);
}

void play(Host& host, const std::string& input) {
    std::array<std::unique_ptr<NetconfSession>, 3> sessions{
        std::make_unique<NetconfSession>(host, 1, NetconfUser{"alice", false}),
        std::make_unique<NetconfSession>(host, 2, NetconfUser{"bob", false}),
        std::make_unique<NetconfSession>(host, 3, NetconfUser{"reader", true})};
    Dispatcher dispatcher(
        host, *network().wire, [](std::uint32_t id, const NetconfSession&) { return id == 2; },
        [&](NetconfSession& session, std::optional<std::vector<FilterNode>>) {
            return dispatcher.events().listen(
                session.id(),
                [](const std::shared_ptr<const Event>& event) { requireXml(event->xml); });
        });
    for (std::size_t at = 0; at < input.size();) {
        const std::size_t end = std::min(input.find("\n%\n", at), input.size());
        const auto who = static_cast<unsigned char>(input[at]) % sessions.size();
        ask(dispatcher, *sessions.at(who), input.substr(at + 1, end - at - 1));
        at = end + 3;
    }
    for (const auto& session : sessions) {
        dispatcher.events().leave(session->id());
        dispatcher.end(*session);
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static std::ostringstream theLogged;
    static LogSink theLog(theLogged, LogFormat::Text);
    theLogged.str({});
    Orv::LoggingWrapper::instance()->setLevel(4);
    Host host(network().model.model, knownAsHarbour());
    load(host);
    play(host, std::string(reinterpret_cast<const char*>(data), size));
    require(host.transactions().openCount() == 0, "a transaction is left open");
    require(host.shutdown().empty(), "the host does not go down cleanly");
    host.threadContext().clear();
    return 0;
}
