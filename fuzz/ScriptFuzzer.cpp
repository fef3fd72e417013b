// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Scripts of orvhost, run in a host of their own with the loaded component and a small network.
// Each line of any script is carried out or refused with a reason. In JSON mode every answer is a
// document. The host ends cleanly, even if transactions are left open.

#include "RanModel.h"
#include "RanNetwork.h"
#include "cli/commands/CommandTable.h"
#include "cli/session/Session.h"
#include "cli/shell/Interpreter.h"
#include "client/Clients.h"
#include "runtime/DataSet.h"
#include "runtime/Host.h"
#include "runtime/LogSink.h"
#include "support/ByteSource.h"
#include "support/Require.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <sstream>

#include <dlfcn.h>

using namespace Fuzz;
using namespace OrvHost;

namespace {

const Model& model() {
    static const YangModel theModel = RanGenerator::readRanModel();
    return theModel.model;
}

void load(Host& host) {
    // Without this the shared object would be unloaded with each host, and the fuzzer cannot count
    // the ways through one that comes and goes.
    static void* const theComponent = dlopen(EXT_CM_PATH, RTLD_NOW | RTLD_LOCAL);
    require(theComponent != nullptr, "the component cannot be opened");
    DataSet data(model());
    RanGenerator::RanNetwork(RanGenerator::RanPlan::forSize(10), 1)
        .generate([&](const DataObject& object) {
            data.add({object.dn, object.attributes, {}});
        });
    require(data.moveInto(host.store()).empty(), "the store refuses the network");
    host.loadComponent(EXT_CM_PATH);
    for (const ComponentReport& report : host.start()) {
        require(report.state == ComponentState::Started, report.name + ": " + report.problem);
    }
}

/// In JSON mode each command prints one document in one line.
void checkDocuments(const std::string& output) {
    std::istringstream lines(output);
    std::string line;
    while (std::getline(lines, line)) {
        require(nlohmann::json::accept(line), "no JSON: " + line);
    }
}

void run(Host& host, LogSink& log, bool wantsJson, bool keepGoing, const std::string& script) {
    static const CommandTable kCommands;
    std::ostringstream out;
    std::ostringstream errors;
    Clients clients(host);
    Session session(host, clients, log, out, wantsJson);
    Interpreter interpreter(session, kCommands, errors);
    std::istringstream lines(script);
    const ExitStatus status = interpreter.runScript(lines, "script", keepGoing);
    const std::string& answer = wantsJson ? out.str() : errors.str();
    require(status == ExitOk || !answer.empty(), "refused without a reason");
    if (wantsJson) {
        checkDocuments(out.str());
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static std::ostringstream theLogged;
    static LogSink theLog(theLogged, LogFormat::Text);
    theLogged.str({});
    Orv::LoggingWrapper::instance()->setLevel(4);
    ByteSource source(data, size);
    const std::uint8_t flags = source.byte();
    Host host(model());
    load(host);
    run(host, theLog, flags % 2 == 1, flags % 4 < 2, source.rest());
    host.transactions().abortAll();
    require(host.shutdown().empty(), "the host does not go down cleanly");
    host.threadContext().clear();
    return 0;
}
