// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The C++ of the pages that is in no example, compiled and run. The pages show the parts between
// marks; run_page.py compares the two.
//
//   docs_listings PATH/TO/libext_cm.so PATH/TO/examples

#include "client/Client.h"
#include "client/Clients.h"
#include "client/edits/EditPlanner.h"
#include "model/building/ModelBuilder.h"
#include "runtime/DataSet.h"
#include "runtime/Host.h"
#include "yang/instances/InstanceDataReader.h"
#include "yang/schema/YangModelReader.h"

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

using namespace OrvHost;

const std::string unit = "ManagedElement=harbour,Equipment=1,RadioUnit=1";
const std::string antenna = "ManagedElement=harbour,Equipment=1,AntennaUnit=2,Antenna=1";

void require(bool condition, const char* what) {
    if (!condition) {
        throw std::runtime_error(std::string("not so: ") + what);
    }
}

void buildModel() {
    // [model]
    const Model model =
        ModelBuilder()
            .add(ClassDraft("Site").topLevel().key("id").attribute(AttributeDraft::text("label")))
            .add(ClassDraft("Mast").key("id").attribute(
                AttributeDraft::reference("antennas").many()))
            .add(ClassDraft("Antenna").key("id").attribute(AttributeDraft::reference("mast")))
            .contain("Site", "Mast")
            .contain("Site", "Antenna")
            .biDir(ReferenceDraft("Mast", "antennas").counts(0, 3),
                   ReferenceDraft("Antenna", "mast").counts(1, 1))
            .build();
    // [/model]
    require(model.classes.size() == 3, "three classes");
}

YangModel readModel(const std::string& examples) {
    // [yang-model]
    YangModel model = YangModelReader()
                          .searchIn(examples + "/models")
                          .load("ran-function")
                          .load("ran-equipment")
                          .read();
    // [/yang-model]
    return model;
}

void readData(const std::string& examples, const YangModel& model, DataSet& data) {
    // [yang-data]
    InstanceDataReader(model.schema)
        .nameRoot("1")
        .read({examples + "/data/harbour.json"}, [&](DataObject&& object, const std::string& file) {
            // Parents come before their children.
            data.add({std::move(object.dn), std::move(object.attributes), {file, object.line}});
        });
    // [/yang-data]
}

void walk(Host& host) {
    // [walk]
    Client client(host); // throws NotOfferedError if no component has started
    const Host::ReadTransaction transaction(host);
    client.forEachChild(transaction.handle(), "ManagedElement=harbour,Equipment=1", "Sector",
                        [](const std::string& name) { return std::puts(name.c_str()) >= 0; });
    // [/walk]
}

void edit(Host& host) {
    Clients clients(host);
    const unsigned long transaction = host.transactions().begin();
    // [edit]
    const AttributeValue reference{ValueKind::MoRef, {antenna}};
    Wish wish;
    wish.edits.push_back({EditKind::Merge, unit, {{unit, {{"antennaRef", reference}}}}});
    wish.edits.push_back({EditKind::Delete, "ManagedElement=harbour,Equipment=1,Cabinet=1", {}});
    applyWish(wish, host.model(), clients, transaction);
    // [/edit]
    const ReadValue back = clients.chosen().get(transaction, antenna, "radioUnitRef", nullptr);
    require(back.slots.size() == 2, "the reference back is written");
    require(!clients.chosen().exists(transaction, "ManagedElement=harbour,Equipment=1,Cabinet=1"),
            "the cabinet is deleted");
    host.transactions().abort(transaction);
}

void run(const std::string& component, const std::string& examples) {
    buildModel();
    const YangModel model = readModel(examples);
    HostOptions options;
    options.preferredIdentity = "harbour";
    Host host(model.model, options);
    DataSet data(host.model());
    readData(examples, model, data);
    require(data.check().problems.empty() && data.moveInto(host.store()).empty(),
            "the data is good");
    host.loadComponent(component);
    host.start();
    walk(host);
    edit(host);
}

}

int main(int count, char** arguments) {
    if (count != 3) {
        std::fputs("usage: docs_listings LIBEXT_CM EXAMPLES\n", stderr);
        return 2;
    }
    try {
        run(arguments[1], arguments[2]);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    return 0;
}
