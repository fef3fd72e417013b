// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Writers on several threads use all versions of the loaded component for a long time. Then
// everything must be correct: both sides of every association, every shared number, memory, results
// and iterators. See docs/testing.md.

#include "MemoryGauge.h"
#include "RouterTap.h"
#include "Scene.h"
#include "SoakOptions.h"
#include "StoreAudit.h"
#include "Tally.h"
#include "Values.h"
#include "Writer.h"
#include "base/ResidentMemory.h"

#include <chrono>
#include <cstdio>
#include <deque>
#include <exception>
#include <iostream>
#include <thread>

namespace {

using namespace Soak;

/// The memory of the process while nobody works.
struct Level {
    explicit Level(const Scene& scene) : workList(scene.workList()) {}

    std::int64_t allocated = MemoryGauge::allocated();
    OrvHost::WorkListGauge::Size workList;
    std::int64_t resident = OrvHost::residentBytes();

    std::int64_t rest() const { return allocated - workList.bytes; }
};

double inMegabytes(std::int64_t bytes) {
    return static_cast<double>(bytes) / (1024 * 1024);
}

void runAll(std::deque<Writer>& writers, std::uint64_t operations, std::uint64_t transactions) {
    const std::uint64_t count = writers.size();
    std::vector<std::thread> threads;
    for (Writer& writer : writers) {
        threads.emplace_back([&writer, operations, transactions, count] {
            writer.runTo((operations + count - 1) / count, (transactions + count - 1) / count);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

/// The limits allow for two effects: the number of objects varies with the draws, and refused
/// back-pointers are counted although the component does not keep them.
void checkLevel(const Level& warm, const Level& end, Tally& tally) {
    constexpr std::int64_t kPlay = 1024 * 1024;
    const std::int64_t kept = end.workList.bytes - warm.workList.bytes;
    const std::int64_t risen = end.rest() - warm.rest();
    std::printf("memory: %.1f MB allocated when warm, %.1f MB at the end, of which the work list "
                "took %.1f MB (%llu entries): the rest rose by %.2f MB\n"
                "resident: %.1f MB when warm, %.1f MB at the end\n",
                inMegabytes(warm.allocated), inMegabytes(end.allocated), inMegabytes(kept),
                static_cast<unsigned long long>(end.workList.entries), inMegabytes(risen),
                inMegabytes(warm.resident), inMegabytes(end.resident));
    if (risen > kPlay || risen < -kPlay - kept / 20) {
        tally.fail("memory is not level");
    }
}

void checkReleased(Scene& scene, const std::deque<Writer>& writers, Tally& tally) {
    if (RouterTap::unreleased() != 0) {
        tally.fail(std::to_string(RouterTap::unreleased()) + " results were not released");
    }
    std::size_t dead = 0;
    for (const Writer& writer : writers) {
        for (const OrvHost::ChildIterator& iterator : writer.deadIterators()) {
            ++dead;
            if (codeOf([&] { scene.client3().nextChild(iterator); }) != OrvNotActive) {
                tally.fail("an iterator outlives its transaction");
            }
        }
    }
    if (scene.host().transactions().openCount() != 0) {
        tally.fail("a transaction is still open");
    }
    std::printf("%llu iterators, none left; all results released; %zu old handles are dead\n",
                static_cast<unsigned long long>(RouterTap::iterators()), dead);
}

/// No value if the read is refused.
OrvHost::ReadValue read(Scene& scene, unsigned long txHandle, const std::string& dn,
                        const std::string& attribute) {
    OrvHost::ReadValue value;
    codeOf([&] { value = scene.client3().get(txHandle, dn, attribute, nullptr); });
    return value;
}

std::int64_t readCounter(Scene& scene, unsigned long tx, std::size_t counter) {
    return integerOf(read(scene, tx, Scene::counterDn(counter), "configuredMaxTxPower"))
        .value_or(-1);
}

void checkUpdates(Scene& scene, const std::deque<Writer>& writers, Tally& tally) {
    const OrvHost::Host::ReadTransaction transaction(scene.host());
    std::int64_t counted = 0;
    for (std::size_t counter = 0; counter < kCounters; ++counter) {
        std::int64_t expected = 0;
        for (const Writer& writer : writers) {
            expected += static_cast<std::int64_t>(writer.ledger().counts()[counter]);
        }
        const std::int64_t found = readCounter(scene, transaction.handle(), counter);
        if (found != expected) {
            tally.fail("counter " + std::to_string(counter) + " shows " + std::to_string(found) +
                       ", counted were " + std::to_string(expected));
        }
        counted += expected;
    }
    std::size_t texts = 0;
    for (const Writer& writer : writers) {
        for (const auto& [dn, label] : writer.ledger().texts()) {
            ++texts;
            const OrvHost::ReadValue found = read(scene, transaction.handle(), dn, "userLabel");
            if (toAttributeValue(found, OrvHost::ValueKind::String) != text(label)) {
                tally.fail(dn + " does not hold '" + label + "'");
            }
        }
    }
    std::printf("%lld counted and %zu texts, all there\n", static_cast<long long>(counted), texts);
}

void checkObjects(Scene& scene, Tally& tally) {
    const StoreAudit audit(scene.host().store());
    for (const std::string& problem : audit.problems()) {
        tally.fail(problem);
    }
    std::printf("%zu objects, recounted\n", audit.objects());
}

void run(const SoakOptions& options, Tally& tally) {
    Scene scene(options.threads, tally);
    std::deque<Writer> writers;
    for (unsigned number = 0; number < options.threads; ++number) {
        writers.emplace_back(scene, tally, options, number);
    }
    runAll(writers, options.operations / 5, options.transactions / 5);
    const Level warm(scene);
    runAll(writers, options.operations, options.transactions);
    const Level end(scene);
    checkReleased(scene, writers, tally);
    checkLevel(warm, end, tally);
    checkUpdates(scene, writers, tally);
    checkObjects(scene, tally);
    for (const std::string& problem : scene.host().shutdown()) {
        tally.fail("shutdown: " + problem);
    }
}

}

int main(int count, char** arguments) {
    try {
        const SoakOptions options = readOptions(count, arguments);
        const auto begin = std::chrono::steady_clock::now();
        Tally tally;
        std::printf("seed %llu, %u threads\n", static_cast<unsigned long long>(options.seed),
                    options.threads);
        std::fflush(stdout);
        run(options, tally);
        std::fflush(stdout);
        tally.print(std::cout);
        std::cout.flush();
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
        std::printf("%s after %.1f s\n", tally.hasFailures() ? "FAILED" : "passed",
                    seconds.count());
        return tally.hasFailures() ? 1 : 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "orv_soak: %s\n", failure.what());
        return 2;
    }
}
