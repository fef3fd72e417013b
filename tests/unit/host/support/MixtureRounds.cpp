// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MixtureRounds.h"

#include "Mixture.h"
#include "base/HostError.h"

#include <array>
#include <iostream>
#include <mutex>
#include <sstream>
#include <thread>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvHost {

namespace {

constexpr unsigned kWholeRounds = 5;
constexpr unsigned kBrokenRounds = 200;
constexpr unsigned kSeconds = 60; // a store without its rules may also stand still

struct Outcome {
    std::vector<std::string> problems;
    bool hasEnded = true; ///< by itself, and as it should
};

void writeAll(int file, const std::string& text) {
    if (write(file, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        _exit(2);
    }
}

std::string readAll(int file) {
    std::string text;
    std::array<char, 4096> part{};
    for (ssize_t size = 0; (size = read(file, part.data(), part.size())) > 0;) {
        text.append(part.data(), static_cast<std::size_t>(size));
    }
    return text;
}

Outcome runApart(const std::function<std::vector<std::string>()>& round) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        throw HostError(OrvHostWrongState, "no pipe can be made");
    }
    const pid_t process = fork();
    if (process == 0) {
        const rlimit none{};
        setrlimit(RLIMIT_CORE, &none);
        alarm(kSeconds);
        std::string text;
        try {
            for (const std::string& problem : round()) {
                text += problem + '\n';
            }
        } catch (const HostError& error) {
            text += std::string(error.what()) + '\n';
        }
        writeAll(ends[1], text);
        _exit(0);
    }
    close(ends[1]);
    Outcome outcome;
    std::istringstream problems(readAll(ends[0]));
    outcome.problems = linesOf(problems);
    close(ends[0]);
    int status = 0;
    waitpid(process, &status, 0);
    outcome.hasEnded = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return outcome;
}

void print(unsigned number, const Outcome& outcome) {
    for (const std::string& problem : outcome.problems) {
        std::cout << "round " << number << ": " << problem << '\n';
    }
    if (!outcome.hasEnded) {
        std::cout << "round " << number << ": the process was ended\n";
    }
}

}

MixtureRun runMixture(MoStore& one, MoStore& two, unsigned seed, unsigned steps) {
    constexpr unsigned kThreads = 4;
    std::mutex mutex;
    MixtureRun run;
    std::vector<std::thread> threads;
    for (unsigned at = 0; at < kThreads; ++at) {
        threads.emplace_back([&, at] {
            MoStore& store = at % 2 == 0 ? one : two;
            Mixture mixture(store, std::to_string(at), seed * kThreads + at);
            try {
                for (unsigned step = 0; step < steps; ++step) {
                    mixture.step([&](const std::string& mark) {
                        const std::lock_guard<std::mutex> guard(mutex);
                        run.acknowledged.push_back(mark);
                    });
                }
            } catch (const HostError& error) {
                const std::lock_guard<std::mutex> guard(mutex);
                run.problems.emplace_back(error.what());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return run;
}

int provesMixture(int count, char** arguments,
                  const std::function<std::vector<std::string>(unsigned number)>& round) {
    const std::string kind = count == 2 ? arguments[1] : "";
    if (kind != "whole" && kind != "broken") {
        std::cerr << "usage: " << arguments[0] << " whole|broken\n";
        return 2;
    }
    const bool isWhole = kind == "whole";
    for (unsigned number = 1; number <= (isWhole ? kWholeRounds : kBrokenRounds); ++number) {
        const Outcome outcome = runApart([&] { return round(number); });
        print(number, outcome);
        const bool isWrong = !outcome.problems.empty();
        if (isWhole && (isWrong || !outcome.hasEnded)) {
            return 1;
        }
        if (!isWhole && isWrong) {
            return 0;
        }
    }
    std::cout << "nothing is wrong\n";
    return isWhole ? 0 : 1;
}

}
