// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// A host that reads its model and its data from files, and keeps its objects in one. Each run
// commits one transaction and prints the number of the commit.
//
//   host_parts LIBEXT_CM EXAMPLES STORE

#include <orv/host/client/ClientSession.h>
#include <orv/host/runtime/DataSet.h>
#include <orv/host/runtime/Host.h>
#include <orv/host/store_sqlite/SqliteLog.h>
#include <orv/host/yang/instances/InstanceDataReader.h>
#include <orv/host/yang/schema/YangModelReader.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <utility>

using namespace OrvHost;

// [data]
void loadData(Host& host, const YangModel& yang, const std::string& file) {
    DataSet data(host.model());
    InstanceDataReader(yang.schema)
        .nameRoot("1")
        .read({file}, [&](DataObject&& object, const std::string& source) {
            data.add({std::move(object.dn), std::move(object.attributes), {source, object.line}});
        });
    for (const std::string& problem : data.check().problems) {
        throw std::runtime_error(problem);
    }
    for (const std::string& problem : data.moveInto(host.store())) {
        throw std::runtime_error(problem);
    }
}
// [/data]

void commit(Host& host) {
    Clients clients(host);
    ClientSession session(host, clients);
    session.write([&](unsigned long transaction) {
        const std::string label = "after commit " + std::to_string(host.store().lastCommit());
        session.client().set(transaction, "ManagedElement=harbour,GNBDUFunction=1,NRCellDU=1",
                             {{"userLabel", {ValueKind::String, {label}}}});
    });
    std::printf("commit %llu\n", static_cast<unsigned long long>(host.store().lastCommit()));
}

void run(const std::string& library, const std::string& examples, const std::string& file) {
    // [open]
    const YangModel yang = YangModelReader()
                               .searchIn(examples + "/models")
                               .load("ran-function")
                               .load("ran-equipment")
                               .read();
    SqliteLog log(file, yang.model); // it must outlive the host
    Host host(yang.model, {.preferredIdentity = "harbour"});
    if (log.isNew()) {
        loadData(host, yang, examples + "/data/harbour.json");
    }
    host.store().attach(log); // from now on a commit is in the file before it is seen
    // [/open]
    host.loadComponent(library);
    host.start();
    commit(host);
}

int main(int count, char** arguments) {
    if (count != 4) {
        std::fputs("usage: host_parts LIBEXT_CM EXAMPLES STORE\n", stderr);
        return 2;
    }
    try {
        run(arguments[1], arguments[2], arguments[3]);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "host_parts: %s\n", failure.what());
        return 1;
    }
}
