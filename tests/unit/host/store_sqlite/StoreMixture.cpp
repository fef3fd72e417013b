// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Two hosts on one log in a file: see MixtureRounds.h.

#include "Mixture.h"
#include "MixtureRounds.h"
#include "SampleStore.h"
#include "StoreStart.h"
#include "store_sqlite/SqliteLog.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace OrvHost {
namespace {

namespace fs = std::filesystem;

constexpr unsigned kSteps = 150;

MixtureRun writeStore(const fs::path& file, unsigned number) {
    // What is to be seen does not depend on the disk.
    SqliteLog log(file, sampleStoreModel(), SqliteLog::Sync::Normal);
    MoStore one(sampleStoreModel());
    Mixture::load(one);
    one.attach(log, "one");
    MoStore two(sampleStoreModel());
    two.attach(log, "two");
    return runMixture(one, two, number, kSteps);
}

std::vector<std::string> round(const fs::path& file, unsigned number) {
    MixtureRun run = writeStore(file, number);
    if (!run.problems.empty()) {
        return run.problems;
    }
    const LogMark start = startOf(file);
    SqliteLog log(file, sampleStoreModel());
    return Mixture::problems(log, start, run.acknowledged);
}

}
}

int main(int count, char** arguments) {
    namespace fs = std::filesystem;
    std::string name = fs::temp_directory_path() / "store_mixture_XXXXXX";
    const fs::path directory = mkdtemp(name.data());
    const int status = OrvHost::provesMixture(count, arguments, [&](unsigned number) {
        return OrvHost::round(directory / std::to_string(number), number);
    });
    fs::remove_all(directory);
    return status;
}
