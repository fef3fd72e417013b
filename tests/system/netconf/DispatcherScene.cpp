// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DispatcherScene.h"

#include "runtime/DataSet.h"
#include "yang/instances/InstanceDataReader.h"

#include <libyang/libyang.h>

#include <memory>
#include <regex>

namespace OrvHost {

namespace {

YangModelReader exampleReader() {
    YangModelReader reader;
    reader.searchIn(EXAMPLES_DIR "/models");
    reader.searchIn(NETCONF_MODELS_DIR);
    for (const char* module : {"ran-element", "ran-equipment", "ran-function", "plant"}) {
        reader.load(module);
    }
    return reader;
}

HostOptions knownAsHarbour() {
    HostOptions options;
    options.preferredIdentity = "Harbour";
    return options;
}

std::string onOneLine(const std::string& text) {
    // Made once: the library makes expressions in several threads with a race.
    static const std::regex between(">\\s+<");
    return std::regex_replace(text, between, "><");
}

struct TreeEnd {
    void operator()(lyd_node* node) const { lyd_free_all(node); }
};

}

DispatcherScene::DispatcherScene()
    : mReader(exampleReader()),
      mModel(mReader.read()),
      host(mModel.model, knownAsHarbour()),
      mWire((load(), mReader), mModel.schema),
      dispatcher(
          host, mWire,
          [this](std::uint32_t id, const NetconfSession&) {
              killed = id;
              return id == 2;
          },
          [this](NetconfSession& session, std::optional<std::vector<FilterNode>>) {
              return dispatcher.events().listen(session.id(),
                                                [this](const std::shared_ptr<const Event>& event) {
                                                    events.push_back(event->xml);
                                                });
          }),
      alice(host, 1, {"alice"}),
      bob(host, 2, {"bob"}),
      reader(host, 3, {"reader", true}) {}

DispatcherScene::~DispatcherScene() = default;

void DispatcherScene::load() {
    DataSet data(mModel.model);
    InstanceDataReader instances(mModel.schema);
    instances.nameRoot("1");
    instances.read({EXAMPLES_DIR "/data/harbour.json"},
                   [&](DataObject&& object, const std::string& file) {
                       data.add({std::move(object.dn), std::move(object.attributes), {file, 0}});
                   });
    data.moveInto(host.store());
    host.loadComponent(EXT_CM_PATH);
    host.start();
}

std::string DispatcherScene::ask(NetconfSession& session, const std::string& operation) {
    return textOf(replyTo(session, operation));
}

RpcReply DispatcherScene::replyTo(NetconfSession& session, const std::string& operation) {
    const std::string text =
        R"(<rpc xmlns="urn:ietf:params:xml:ns:netconf:base:1.0" message-id="1">)" + operation +
        "</rpc>";
    ly_in* in = nullptr;
    ly_in_new_memory(text.c_str(), &in);
    lyd_node* envelope = nullptr;
    lyd_node* request = nullptr;
    const LY_ERR code = lyd_parse_op(mWire.context().get(), nullptr, in, LYD_XML,
                                     LYD_TYPE_RPC_NETCONF, &envelope, &request);
    ly_in_free(in, 0);
    const std::unique_ptr<lyd_node, TreeEnd> ownedEnvelope(envelope);
    const std::unique_ptr<lyd_node, TreeEnd> ownedRequest(request);
    if (code != LY_SUCCESS) {
        ADD_FAILURE() << "not parsed: " << operation << ly_errmsg(mWire.context().get());
        return {};
    }
    return dispatcher.answer(session, request);
}

std::string DispatcherScene::textOf(const RpcReply& reply) {
    std::string answer;
    for (const RpcError& error : reply.errors) {
        answer += error.toXml();
    }
    return answer.empty() ? onOneLine(reply.data != nullptr  ? reply.data.get()
                                      : reply.output.empty() ? "ok"
                                                             : reply.output)
                          : answer;
}

std::string DispatcherScene::edit(const std::string& config, const std::string& target,
                                  const std::string& options) {
    return ask("<edit-config><target><" + target + "/></target>" + options +
               tagged("config", config) + "</edit-config>");
}

std::string DispatcherScene::getConfig(const std::string& filter, const std::string& store) {
    return ask("<get-config><source><" + store + "/></source><filter>" + filter +
               "</filter></get-config>");
}

std::string DispatcherScene::get(const std::string& filter) {
    return ask("<get><filter>" + filter + "</filter></get>");
}

std::string DispatcherScene::element(const std::string& content) {
    return R"(<ManagedElement xmlns="urn:orv:example:ran-element">)"
           "<managedElementId>Harbour</managedElementId>" +
           content + "</ManagedElement>";
}

std::string DispatcherScene::equipment(const std::string& content) {
    return element(R"(<Equipment xmlns="urn:orv:example:ran-equipment">)"
                   "<equipmentId>1</equipmentId>" +
                   content + "</Equipment>");
}

std::string DispatcherScene::antenna(int unit, int number) {
    return "ManagedElement=Harbour,Equipment=1,AntennaUnit=" + std::to_string(unit) +
           ",Antenna=" + std::to_string(number);
}

std::string DispatcherScene::radioUnit(const std::string& id, const std::string& content,
                                       const std::string& attributes) {
    return equipment("<RadioUnit " + attributes + "><radioUnitId>" + id + "</radioUnitId>" +
                     content + "</RadioUnit>");
}

}
