// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include <orv/host/client/ClientSession.h>
#include <orv/host/model/building/ModelBuilder.h>
#include <orv/host/runtime/Host.h>

#include <cstdio>
#include <stdexcept>
#include <string>

using namespace OrvHost;

// A mast carries two antennas at most, and an antenna is on one mast.
Model makeModel() {
    return ModelBuilder()
        .add(ClassDraft("ManagedElement").topLevel().key("id"))
        .add(ClassDraft("Mast").key("id").attribute(AttributeDraft::reference("antennas").many()))
        .add(ClassDraft("Antenna").key("id").attribute(AttributeDraft::reference("mast")))
        .contain("ManagedElement", "Mast")
        .contain("ManagedElement", "Antenna")
        .biDir(ReferenceDraft("Mast", "antennas").counts(0, 2), ReferenceDraft("Antenna", "mast"))
        .build();
}

// One transaction. The antenna is written here, and the mast by the component.
void mount(ClientSession& session, const std::string& antenna, const std::string& mast) {
    const OpenTransactions::Entry& transaction = session.begin("mount");
    Client& client = session.client();
    client.set(transaction.handle, antenna, {{"mast", {ValueKind::MoRef, {mast}}}});
    for (const auto& value : client.get(transaction.handle, mast, "antennas", nullptr).slots) {
        std::printf("%s has %s\n", mast.c_str(), std::get<std::string>(value).c_str());
    }
    session.validate(transaction); // throws RefusalError
    session.commit(transaction);
}

void run(const char* library) {
    const Model model = makeModel();
    Host host(model, {.preferredIdentity = "north"}); // in the store the element is always "1"
    for (const char* dn :
         {"ManagedElement=1", "ManagedElement=1,Mast=a", "ManagedElement=1,Antenna=1",
          "ManagedElement=1,Antenna=2", "ManagedElement=1,Antenna=3"}) {
        host.store().load(dn, {});
    }
    host.loadComponent(library);
    for (const ComponentReport& component : host.start()) {
        if (component.state != ComponentState::Started) {
            throw std::runtime_error(component.name + ": " + component.problem);
        }
    }
    Clients clients(host);
    ClientSession session(host, clients);
    for (const char* antenna : {"1", "2", "3"}) {
        mount(session, std::string("ManagedElement=north,Antenna=") + antenna,
              "ManagedElement=north,Mast=a");
    }
}

int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("usage: mast_host LIBEXT_CM\n", stderr);
        return 2;
    }
    try {
        run(arguments[1]);
        return 0;
    } catch (const RefusalError& refusal) {
        if (refusal.violations().empty()) { // of something else than the model
            std::printf("refused: %s\n", refusal.what());
        }
        for (const Violation& violation : refusal.violations()) {
            std::printf("refused: %s\n", violation.message.c_str());
        }
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "mast_host: %s\n", failure.what());
    }
    return 1;
}
