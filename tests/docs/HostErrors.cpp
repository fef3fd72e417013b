// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What goes wrong in a host of libraries, and what it is told: docs/host-in-fifty-lines.md shows
// it.
//
//   host_errors LIBEXT_CM   without files
//   host_errors --files     with files, in the folder where it runs

#include "base/HostError.h"
#include "client/ClientErrors.h"
#include "client/ClientSession.h"
#include "client/RefusalError.h"
#include "model/ModelError.h"
#include "model/building/ModelBuilder.h"
#include "runtime/ComponentLoadError.h"
#include "runtime/DataSet.h"
#include "runtime/Host.h"
#include "store/CommitLog.h"
#include "store_sqlite/SqliteLog.h"
#include "yang/instances/InstanceDataError.h"
#include "yang/instances/InstanceDataReader.h"
#include "yang/schema/YangModelReader.h"

#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

using namespace OrvHost;

const HostOptions north{.preferredIdentity = "north"};

/// Prints the error of \p work, which must be an \p Error.
template <class Error, class Work>
void expect(const char* name, const Work& work) {
    try {
        work();
    } catch (const Error& error) {
        std::printf("%s\n  %s\n", name, error.what());
        return;
    }
    throw std::logic_error(std::string("no ") + name);
}

/// That of the page, or with another name of the attribute in the association.
Model makeModel(const char* attribute = "antennas") {
    return ModelBuilder()
        .add(ClassDraft("ManagedElement").topLevel().key("id"))
        .add(ClassDraft("Mast").key("id").attribute(AttributeDraft::reference("antennas").many()))
        .add(ClassDraft("Antenna").key("id").attribute(AttributeDraft::reference("mast")))
        .contain("ManagedElement", "Mast")
        .contain("ManagedElement", "Antenna")
        .biDir(ReferenceDraft("Mast", attribute).counts(0, 1), ReferenceDraft("Antenna", "mast"))
        .build();
}

void mount(Client& client, unsigned long transaction, const std::string& antenna) {
    client.set(transaction, "ManagedElement=north,Antenna=" + antenna,
               {{"mast", {ValueKind::MoRef, {"ManagedElement=north,Mast=a"}}}});
}

void withoutFiles(const char* library) {
    expect<ModelError>("ModelError", [] { makeModel("antenas"); });
    const Model model = makeModel();
    Host host(model, north);
    host.store().load("ManagedElement=1", {});
    expect<HostError>("HostError", [&] { host.store().load("ManagedElement=1,Lamp=3", {}); });
    expect<HostError>("HostError", [&] { host.store().load("", {}); });
    expect<std::logic_error>("std::logic_error", [&] { Host(model, north); });
    for (const char* path : {"elsewhere.so", "README.md", ""}) {
        expect<ComponentLoadError>("ComponentLoadError", [&] { host.loadComponent(path); });
    }
    for (const char* dn :
         {"ManagedElement=1,Mast=a", "ManagedElement=1,Antenna=1", "ManagedElement=1,Antenna=2"}) {
        host.store().load(dn, {});
    }
    host.loadComponent(library);
    expect<NotOfferedError>("NotOfferedError", [&] { const Client client(host); });
    host.start();
    Clients clients(host);
    ClientSession session(host, clients);
    const OpenTransactions::Entry& transaction = session.begin("mount");
    expect<OperationError>("OperationError",
                           [&] { mount(session.client(), transaction.handle, "4"); });
    mount(session.client(), transaction.handle, "1");
    mount(session.client(), transaction.handle, "2");
    expect<RefusalError>("RefusalError", [&] { session.validate(transaction); });
}

void withFiles() {
    expect<ModelError>("ModelError",
                       [&] { YangModelReader().searchIn("no/models").load("mast").read(); });
    const YangModel yang = YangModelReader().searchIn("examples/models").load("ran-element").read();
    const auto readData = [&](const std::string& file) {
        InstanceDataReader(yang.schema).read({file}, [](DataObject&&, const std::string&) {});
    };
    expect<InstanceDataError>("InstanceDataError", [&] { readData("no/data.json"); });
    std::ofstream("data.json") << "{\n\"ran-element:ManagedElement\": [";
    expect<InstanceDataError>("InstanceDataError", [&] { readData("data.json"); });
    const Model model = makeModel();
    expect<LogUnavailable>("LogUnavailable", [&] { const SqliteLog log("no/network.db", model); });
    expect<LogUnavailable>("LogUnavailable", [&] { const SqliteLog log("", model); });
    expect<LogUnavailable>("LogUnavailable", [&] { const SqliteLog log("data.json", model); });
    {
        SqliteLog log("network.db", model);
        log.fill([](const CommitLog::ObjectVisitor&) {});
    }
    expect<LogUnavailable>("LogUnavailable",
                           [&] { const SqliteLog log("network.db", yang.model); });
}

}

int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("usage: host_errors LIBEXT_CM|--files\n", stderr);
        return 2;
    }
    try {
        if (std::string(arguments[1]) == "--files") {
            withFiles();
        } else {
            withoutFiles(arguments[1]);
        }
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "host_errors: %s\n", failure.what());
        return 1;
    }
}
