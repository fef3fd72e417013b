// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LogCommand.h"

#include "LoggingWrapper.h"
#include "cli/CliError.h"
#include "cli/LogLevel.h"
#include "cli/Session.h"
#include "cli/Suggestion.h"

namespace OrvHost {

namespace {

constexpr std::size_t kTailDefault = 20;

void showLevel(Session& session) {
    const unsigned int level = Orv::LoggingWrapper::instance()->get_level();
    if (session.wantsJson()) {
        session.print({{"command", "log"}, {"level", level}, {"name", logLevelWord(level)}});
    } else {
        session.out() << "level " << level << " (" << logLevelWord(level) << ")\n";
    }
}

void showTail(Session& session, std::size_t count) {
    const std::vector<std::string> lines = session.log().recent(count);
    if (!session.wantsJson()) {
        for (const std::string& line : lines) {
            session.out() << line << '\n';
        }
        return;
    }
    JsonValue documents = JsonValue::array();
    for (const std::string& line : lines) {
        const bool isJson = session.log().format() == LogFormat::Json;
        documents.push_back(isJson ? JsonValue::parse(line) : JsonValue(line));
    }
    session.print({{"command", "log"}, {"lines", documents}});
}

}

const CommandInfo& LogCommand::info() const {
    static const CommandInfo theInfo{"log",
                                     "[level LEVEL | tail [N]]",
                                     "show or set the level of logging, show the latest lines",
                                     "LEVEL is off, error, warning, info, trace, or a number.\n",
                                     {WordKind::Other},
                                     {}};
    return theInfo;
}

void LogCommand::run(Session& session, Words words) {
    const std::string what = words.takeOptional().value_or("");
    if (what == "tail") {
        const auto count = words.takeOptional();
        words.end();
        showTail(session, count ? parseNumber(*count, "tail") : kTailDefault);
        return;
    }
    if (what == "level") {
        const unsigned int level = parseLogLevel(words.take("the level"));
        words.end();
        Orv::LoggingWrapper::instance()->setLevel(level);
    } else if (!what.empty()) {
        throw UsageError("'" + what + "' is neither level nor tail." +
                         didYouMean(what, {"level", "tail"}));
    }
    showLevel(session);
}

}
