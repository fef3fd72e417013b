// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// A host with its own model and data, built from the parts of the reference host.
//
//   assembled_host PATH/TO/libext_cm.so

#include "client/Client.h"
#include "model/building/ModelBuilder.h"
#include "runtime/DataSet.h"
#include "runtime/Host.h"

#include <cstdio>
#include <exception>

namespace {

using namespace OrvHost;

// [model]
Model makeModel() {
    return ModelBuilder()
        .add(ClassDraft("ManagedElement").topLevel().key("managedElementId"))
        .add(ClassDraft("Mast").key("mastId").attribute(
            AttributeDraft::reference("antennas").many()))
        .add(ClassDraft("Antenna").key("antennaId").attribute(AttributeDraft::reference("mast")))
        .contain("ManagedElement", "Mast")
        .contain("ManagedElement", "Antenna")
        .biDir(ReferenceDraft("Mast", "antennas"), ReferenceDraft("Antenna", "mast"))
        .build();
}
// [/model]

// [data]
// Data at start goes into the store directly and is not written by a client. So both sides of an
// association must be given, or completed by repair.
bool loadData(Host& host) {
    DataSet data(host.model());
    data.add({"ManagedElement=1", {}, {}});
    data.add({"ManagedElement=1,Mast=a", {}, {}});
    data.add({"ManagedElement=1,Antenna=1",
              {{"mast", {ValueKind::MoRef, {std::string("ManagedElement=1,Mast=a")}}}},
              {}});
    data.repair();
    return data.check().problems.empty() && data.moveInto(host.store()).empty();
}
// [/data]

// [start]
bool start(Host& host, const char* component) {
    host.loadComponent(component);
    bool isStarted = true;
    for (const ComponentReport& report : host.start()) {
        if (report.state != ComponentState::Started) {
            std::fprintf(stderr, "%s: %s\n", report.name.c_str(), report.problem.c_str());
            isStarted = false;
        }
    }
    return isStarted;
}
// [/start]

// [client]
void printAntennas(Host& host) {
    Client client(host);
    const Host::ReadTransaction transaction(host);
    try {
        const ReadValue antennas =
            client.get(transaction.handle(), "ManagedElement=north,Mast=a", "antennas", nullptr);
        for (const ReadSlot& antenna : antennas.slots) {
            std::puts(std::get<std::string>(antenna).c_str());
        }
    } catch (const OperationError& refusal) {
        std::fprintf(stderr, "code %d\n", refusal.code());
    }
}
// [/client]

// [run]
int run(const char* component) {
    const Model model = makeModel();
    HostOptions options;
    options.preferredIdentity = "north";
    Host host(model, options);
    if (!loadData(host) || !start(host, component)) {
        return 1;
    }
    printAntennas(host);
    return 0;
}
// [/run]

}

int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("usage: assembled_host LIBEXT_CM\n", stderr);
        return 2;
    }
    try {
        return run(arguments[1]);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
