// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StoreCommand.h"

#include "StoreTarget.h"
#include "base/UtcTime.h"
#include "cli/output/ValueJson.h"
#include "store/CommitLog.h"
#include "store_postgresql/PostgresqlTools.h"
#include "store_sqlite/StoreTools.h"

#include <charconv>
#include <chrono>
#include <optional>

namespace OrvHost {

namespace {

// What trim keeps if it is not told otherwise: entries that are younger, or among the latest.
constexpr std::uint64_t kEntriesKept = 100000;
constexpr std::uint64_t kHoursKept = 24;
constexpr std::uint64_t kMostEntries = 1'000'000'000'000;
constexpr std::uint64_t kMostHours = 1'000'000;

/// What both kinds of stores say of themselves. \p file: of a store in a file; none for a shared
/// one, which may have let go of its first entries.
template <class Info>
ExitStatus print(const Info& info, const std::optional<std::string>& file, bool wantsJson,
                 std::ostream& out) {
    const std::string lastAt = info.lastAuthor.empty() ? "" : utcText(info.lastAt);
    if (wantsJson) {
        JsonValue document{{"command", "store info"}};
        if (file) {
            document["file"] = *file;
        }
        document.update({{"objects", info.objects},
                         {"commits", info.position},
                         {"firstEntry", info.firstEntry},
                         {"lastAuthor", info.lastAuthor},
                         {"lastAt", lastAt},
                         {"model", info.model},
                         {"bytes", info.bytes}});
        out << toLine(document) << '\n';
        return ExitOk;
    }
    out << "objects      " << info.objects << "\ncommits      " << info.position << '\n';
    if (!file) {
        out << "kept from    " << info.firstEntry << '\n';
    }
    if (!info.lastAuthor.empty()) {
        out << "last commit  " << lastAt << " by " << info.lastAuthor << '\n';
    }
    out << "model        " << info.model << "\nbytes        " << info.bytes << '\n';
    return ExitOk;
}

ExitStatus showInfo(const std::string& file, bool wantsJson, std::ostream& out) {
    return print(readStoreInfo(file), file, wantsJson, out);
}

ExitStatus showSharedInfo(const std::string& store, bool wantsJson, std::ostream& out) {
    return print(readPostgresqlInfo(postgresqlTarget(store)), std::nullopt, wantsJson, out);
}

std::uint64_t numberIn(const std::vector<std::string>& words, std::size_t at,
                       std::uint64_t otherwise, std::uint64_t most) {
    if (words.size() <= at) {
        return otherwise;
    }
    const std::string& word = words[at];
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size() || number > most) {
        throw UsageError("'" + word + "' is no number of entries or hours from 0 to " +
                         std::to_string(most));
    }
    return number;
}

ExitStatus trim(const std::vector<std::string>& words, bool wantsJson, std::ostream& out) {
    const std::uint64_t entries = numberIn(words, 2, kEntriesKept, kMostEntries);
    const std::chrono::hours age(numberIn(words, 3, kHoursKept, kMostHours));
    const std::uint64_t deleted =
        trimPostgresqlStore(postgresqlTarget(words[1]), entries, std::chrono::seconds(age));
    if (wantsJson) {
        out << toLine({{"command", "store trim"}, {"deleted", deleted}}) << '\n';
    } else {
        out << deleted << (deleted == 1 ? " entry deleted\n" : " entries deleted\n");
    }
    return ExitOk;
}

ExitStatus check(const std::string& file, bool wantsJson, std::ostream& out) {
    const std::vector<std::string> problems = checkStore(file);
    if (wantsJson) {
        out << toLine({{"command", "store check"}, {"file", file}, {"problems", problems}}) << '\n';
    } else if (problems.empty()) {
        out << file << ": nothing is wrong\n";
    } else {
        for (const std::string& problem : problems) {
            out << file << ": " << problem << '\n';
        }
    }
    return problems.empty() ? ExitOk : ExitCommandError;
}

ExitStatus compact(const std::string& file, bool wantsJson, std::ostream& out) {
    const auto [before, after] = compactStore(file);
    if (wantsJson) {
        out << toLine({{"command", "store compact"},
                       {"file", file},
                       {"bytesBefore", before},
                       {"bytesAfter", after}})
            << '\n';
    } else {
        out << file << ": " << before << " bytes before, " << after << " bytes now\n";
    }
    return ExitOk;
}

}

ExitStatus runStoreCommand(const std::vector<std::string>& words, bool wantsJson,
                           std::ostream& out) {
    try {
        if (words[0] == "trim") {
            return trim(words, wantsJson, out);
        }
        if (words[0] == "info" && isPostgresql(words[1])) {
            return showSharedInfo(words[1], wantsJson, out);
        }
        if (words[0] == "info") {
            return showInfo(words[1], wantsJson, out);
        }
        return words[0] == "check" ? check(words[1], wantsJson, out)
                                   : compact(words[1], wantsJson, out);
    } catch (const LogUnavailable& failure) {
        throw LoadError(failure.what());
    }
}

}
