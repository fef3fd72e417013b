// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Two hosts on one store: see MixtureRounds.h.

#include "Mixture.h"
#include "MixtureRounds.h"
#include "PostgresqlServer.h"
#include "PostgresqlStart.h"
#include "SampleStore.h"
#include "store_postgresql/PostgresqlLog.h"

#include <string>
#include <vector>

namespace OrvHost {
namespace {

constexpr unsigned kSteps = 150;

MixtureRun writeStore(const std::string& target, unsigned number) {
    Member one(target, "one", {});
    Member two(target, "two", {});
    return runMixture(one.store, two.store, number, kSteps);
}

std::vector<std::string> round(const std::string& target, unsigned number) {
    createMixtureStore(target);
    MixtureRun run = writeStore(target, number);
    if (!run.problems.empty()) {
        return run.problems;
    }
    PostgresqlLog log(target, sampleStoreModel());
    return Mixture::problems(log, startOf(target), run.acknowledged);
}

}
}

int main(int count, char** arguments) {
    OrvHost::PostgresqlServer server;
    return OrvHost::provesMixture(count, arguments, [&](unsigned number) {
        // The server's own count of schemas is that of the parent.
        const std::string schema = "round" + std::to_string(number);
        OrvHost::PostgresqlConnection(server.target("public"), {})
            .runAll("CREATE SCHEMA " + schema);
        return OrvHost::round(server.target(schema), number);
    });
}
