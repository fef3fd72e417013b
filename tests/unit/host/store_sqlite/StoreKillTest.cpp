// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Writers of a store that are killed, again and again: at random, at named points of a commit, and
// while the engine copies its journal to the file. Each is two hosts on one log, with several
// threads each. After each kill the store is opened, and must hold what was acknowledged, whole
// transactions only, and the same as the replay of its log from the beginning.
//
// usage: store_kill_test [KILLS [SEED]]

#include "Mixture.h"
#include "SampleStore.h"
#include "StoreStart.h"
#include "store_sqlite/SqliteLog.h"
#include "store_sqlite/StoreTools.h"

#include <sqlite3.h>

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <random>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvHost {
namespace {

namespace fs = std::filesystem;
using Stage = SqliteLog::Stage;

constexpr std::uint64_t kKeepAll = UINT64_MAX / 2;
constexpr unsigned kThreads = 4;

/// Where a writer is to die.
struct Death {
    enum class At {
        Random,    ///< when its parent kills it
        Commit,    ///< at a point of a commit
        Checkpoint ///< while pages are copied from the journal to the file
    };
    At at = At::Random;
    Stage stage = Stage::Begun;
    unsigned times = 0; ///< the stage is reached, or a page is copied, so many times
};

constexpr Death kPlaces[] = {{Death::At::Commit, Stage::Begun},
                             {Death::At::Commit, Stage::Decided},
                             {Death::At::Commit, Stage::Written},
                             {Death::At::Commit, Stage::Committed},
                             {Death::At::Checkpoint}};

/// Ends this process while the engine writes a page to the file itself, which it does only when it
/// copies them from the journal: half of the page is there then.
class DeathInCheckpoint {
public:
    DeathInCheckpoint(const fs::path& store, unsigned times) {
        sLeft = times;
        if (stat(store.c_str(), &sStore) != 0) {
            _exit(2);
        }
        sqlite3_vfs* const system = sqlite3_vfs_find(nullptr);
        // Which of them the engine uses depends on how it was built.
        for (const char* const name : {"pwrite", "pwrite64"}) {
            if (const sqlite3_syscall_ptr before = system->xGetSystemCall(system, name)) {
                sWrite = reinterpret_cast<Write*>(before);
                system->xSetSystemCall(system, name, reinterpret_cast<sqlite3_syscall_ptr>(&write));
            }
        }
    }

private:
    using Write = ssize_t(int, const void*, std::size_t, off_t);

    static ssize_t write(int file, const void* bytes, std::size_t size, off_t offset) {
        struct stat status {};
        const bool isStore = fstat(file, &status) == 0 && status.st_dev == sStore.st_dev &&
                             status.st_ino == sStore.st_ino;
        if (isStore && --sLeft == 0) {
            sWrite(file, bytes, size / 2, offset);
            raise(SIGKILL);
        }
        return sWrite(file, bytes, size, offset);
    }

    static inline Write* sWrite = nullptr;
    static inline struct stat sStore {};
    static inline std::atomic<unsigned> sLeft{0};
};

// A line in a file that is written when the commit has returned: one write, so it is whole.
void acknowledge(int file, const std::string& mark) {
    const std::string line = mark + "\n";
    if (write(file, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
        _exit(2);
    }
}

/// Works until it is killed.
[[noreturn]] void write(const fs::path& store, const fs::path& acknowledged, unsigned seed,
                        Death death) {
    SqliteLog log(store, sampleStoreModel());
    log.keepEntries(kKeepAll);
    std::optional<DeathInCheckpoint> checkpoint;
    if (death.at == Death::At::Checkpoint) {
        checkpoint.emplace(store, death.times);
    } else if (death.at == Death::At::Commit) {
        auto left = std::make_shared<unsigned>(death.times);
        log.setStageHook([left, death](Stage stage) {
            if (stage == death.stage && --*left == 0) {
                raise(SIGKILL);
            }
        });
    }
    MoStore objects(sampleStoreModel());
    if (log.isNew()) {
        Mixture::load(objects);
    }
    objects.attach(log, "one");
    MoStore others(sampleStoreModel());
    others.attach(log, "two");
    const int file = open(acknowledged.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    std::vector<std::thread> threads;
    for (unsigned at = 0; at < kThreads; ++at) {
        threads.emplace_back([&, at] {
            Mixture mixture(at % 2 == 0 ? objects : others,
                            std::to_string(seed) + "." + std::to_string(at), seed * kThreads + at);
            for (;;) {
                mixture.step([&](const std::string& mark) { acknowledge(file, mark); });
            }
        });
    }
    for (;;) {
        pause();
    }
}

std::vector<std::string> linesIn(const fs::path& path) {
    std::ifstream file(path);
    return linesOf(file);
}

/// What is wrong after a kill, one text each.
std::vector<std::string> check(const fs::path& file, const std::vector<std::string>& acknowledged,
                               std::size_t& commits) {
    // The first writer may not have come so far.
    if (SqliteLog(file, sampleStoreModel()).isNew()) {
        return acknowledged.empty()
                   ? std::vector<std::string>()
                   : std::vector<std::string>{"commits were acknowledged, and the store is new"};
    }
    std::vector<std::string> problems = checkStore(file);
    commits = readStoreInfo(file).position;
    const LogMark start = startOf(file);
    SqliteLog log(file, sampleStoreModel());
    for (std::string& problem : Mixture::problems(log, start, acknowledged)) {
        problems.push_back(std::move(problem));
    }
    return problems;
}

/// True if the writer has died as it should.
bool letDie(pid_t writer, Death death, unsigned milliseconds) {
    if (death.at == Death::At::Random) {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        kill(writer, SIGKILL);
    }
    int status = 0;
    waitpid(writer, &status, 0);
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

int run(unsigned kills, unsigned seed) {
    std::string name = fs::temp_directory_path() / "store_kill_XXXXXX";
    const fs::path directory = mkdtemp(name.data());
    const fs::path store = directory / "store";
    const fs::path acknowledged = directory / "acknowledged";
    std::mt19937 random(seed);
    const auto between = [&random](unsigned low, unsigned high) {
        return std::uniform_int_distribution<unsigned>(low, high)(random);
    };
    std::size_t commits = 0;
    std::array<unsigned, 3> deaths{};
    for (unsigned at = 0; at < kills; ++at) {
        // Every second one at a certain place, each in turn.
        Death death;
        if (at % 2 != 0 && at >= 4) {
            death = kPlaces[at / 2 % std::size(kPlaces)];
            // Some behind the first checkpoint, too.
            death.times = between(1, 200);
        }
        ++deaths[static_cast<unsigned>(death.at)];
        // The first ones while the store is created.
        const unsigned milliseconds = at < 4 ? between(0, 20) : between(20, 220);
        const pid_t writer = fork();
        if (writer == 0) {
            write(store, acknowledged, seed * 100000 + at, death);
        }
        if (!letDie(writer, death, milliseconds)) {
            std::cerr << "kill " << at << ": the writer ended by itself\n";
            return 1;
        }
        std::vector<std::string> problems;
        try {
            problems = check(store, linesIn(acknowledged), commits);
        } catch (const HostError& error) {
            problems.emplace_back(error.what());
        }
        for (const std::string& problem : problems) {
            std::cerr << "kill " << at << ": " << problem << '\n';
        }
        if (!problems.empty()) {
            std::cerr << "seed " << seed << ", left in " << directory << '\n';
            return 1;
        }
    }
    const std::size_t acknowledgedCommits = linesIn(acknowledged).size();
    std::cout << kills << " kills: " << deaths[0] << " at random, " << deaths[1]
              << " at points of a commit, " << deaths[2]
              << " while the journal was copied to the file; " << acknowledgedCommits
              << " commits acknowledged, none missing, " << commits - acknowledgedCommits
              << " more committed without word\n";
    fs::remove_all(directory);
    // A test in which nothing was committed would see nothing.
    return acknowledgedCommits > kills ? 0 : 1;
}

}
}

int main(int count, char** arguments) {
    const unsigned kills = count > 1 ? static_cast<unsigned>(std::atoi(arguments[1])) : 16;
    const unsigned seed = count > 2 ? static_cast<unsigned>(std::atoi(arguments[2])) : 1;
    return OrvHost::run(kills, seed);
}
