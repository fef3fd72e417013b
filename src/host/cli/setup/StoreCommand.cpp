// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StoreCommand.h"

#include "base/UtcTime.h"
#include "cli/output/ValueJson.h"
#include "store/CommitLog.h"
#include "store_sqlite/StoreTools.h"

namespace OrvHost {

namespace {

ExitStatus showInfo(const std::string& file, bool wantsJson, std::ostream& out) {
    const StoreInfo info = readStoreInfo(file);
    const std::string lastAt = info.lastAuthor.empty() ? "" : utcText(info.lastAt);
    if (wantsJson) {
        out << toLine({{"command", "store info"},
                       {"file", file},
                       {"objects", info.objects},
                       {"commits", info.position},
                       {"firstEntry", info.firstEntry},
                       {"lastAuthor", info.lastAuthor},
                       {"lastAt", lastAt},
                       {"model", info.model},
                       {"bytes", info.bytes}})
            << '\n';
        return ExitOk;
    }
    out << "objects      " << info.objects << "\ncommits      " << info.position << '\n';
    if (!info.lastAuthor.empty()) {
        out << "last commit  " << lastAt << " by " << info.lastAuthor << '\n';
    }
    out << "model        " << info.model << "\nbytes        " << info.bytes << '\n';
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
