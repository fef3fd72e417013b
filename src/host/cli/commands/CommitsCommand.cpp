// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Commands.h"

#include "base/HostError.h"
#include "cli/errors/CliErrors.h"
#include "cli/session/Session.h"

#include <charconv>
#include <chrono>
#include <cstdint>

namespace OrvHost {

namespace {

constexpr std::uint64_t kSeconds = 10;
constexpr std::uint64_t kMostSeconds = 1'000'000;

std::uint64_t numberOf(const std::string& word, const std::string& what) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size()) {
        throw UsageError("'" + word + "' is not " + what);
    }
    return number;
}

}

void runCommits(Session& session, Words words) {
    const auto number = words.takeOptional();
    const auto seconds = words.takeOptional();
    words.end();
    MoStore& store = session.host().store();
    if (number) {
        const std::uint64_t wanted = numberOf(*number, "the number of a commit");
        const std::uint64_t patience =
            seconds ? numberOf(*seconds, "a number of seconds") : kSeconds;
        if (patience > kMostSeconds) {
            throw UsageError("SECONDS are at most " + std::to_string(kMostSeconds));
        }
        try {
            store.catchUpTo(wanted, std::chrono::seconds(patience),
                            [&] { session.cancellation().throwIfCancelled(); });
        } catch (const HostError& failure) {
            throw AnswerError(failure.what());
        }
    }
    const std::uint64_t last = store.lastCommit();
    if (session.wantsJson()) {
        session.print({{"command", "commits"}, {"last", last}});
    } else {
        session.out() << last << '\n';
    }
}

}
