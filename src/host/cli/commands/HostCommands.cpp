// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Commands.h"

#include "LoggingWrapper.h"
#include "base/Suggestion.h"
#include "cli/errors/CliErrors.h"
#include "cli/input/LogLevel.h"
#include "cli/output/AlignedText.h"
#include "cli/session/Session.h"

namespace OrvHost {

namespace {

const char* stateText(ComponentState state) {
    switch (state) {
    case ComponentState::Registered:
        return "registered";
    case ComponentState::Starting:
        return "starting";
    case ComponentState::Started:
        return "started";
    case ComponentState::Failed:
        return "failed";
    case ComponentState::Blocked:
        return "blocked";
    }
    return "unknown";
}

constexpr std::size_t kTailDefault = 20;
constexpr std::size_t kHelpColumns = 80;

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
        documents.add(isJson ? JsonValue::parse(line) : JsonValue(line));
    }
    session.print({{"command", "log"}, {"lines", documents}});
}

JsonValue toJson(const Command& command, HelpForm form) {
    JsonValue document{
        {"name", command.name}, {"usage", command.usage()}, {"summary", command.summary}};
    document["options"] = command.options;
    if (form.isServed && !command.whyNotServed.empty()) {
        document["whyNotServed"] = command.whyNotServed;
    }
    return document;
}

std::string helpOn(const Command& command, HelpForm form) {
    return wrapped(command.usage(), kHelpColumns, 2) + command.summary + "\n" +
           wrapped(command.details, kHelpColumns) +
           (form.isServed && !command.whyNotServed.empty()
                ? wrapped("A server's shell does not have it: " + command.whyNotServed + ".\n",
                          kHelpColumns)
                : "");
}

std::string helpOnAll(const CommandTable& table, HelpForm form) {
    std::vector<std::vector<std::string>> rows;
    std::string missing;
    for (const Command& command : table.all()) {
        if (form.isServed && !command.whyNotServed.empty()) {
            missing += (missing.empty() ? "" : ", ") + command.name;
        } else {
            rows.push_back({command.name, command.summary});
        }
    }
    return layOutTable({"COMMAND", ""}, rows) + "'help COMMAND' shows how one is written.\n" +
           (missing.empty()
                ? ""
                : "Not in a server's shell: " + missing + "; 'help COMMAND' says why.\n");
}

}

void runComponents(Session& session, const Words& words) {
    words.end();
    JsonValue documents = JsonValue::array();
    std::vector<std::vector<std::string>> rows;
    for (const ComponentReport& report : session.host().components().components()) {
        const char* state = stateText(report.state);
        documents.add({{"name", report.name}, {"state", state}, {"problem", report.problem}});
        rows.push_back({report.name, state, report.problem});
    }
    if (session.wantsJson()) {
        session.print({{"command", "components"}, {"components", documents}});
    } else {
        session.out() << layOutTable({"COMPONENT", "STATE", "PROBLEM"}, rows);
    }
}

void runLog(Session& session, Words words) {
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

void printHelp(const CommandTable& table, const std::optional<std::string>& name, HelpForm form,
               std::ostream& out) {
    if (!form.wantsJson) {
        out << (name ? helpOn(table.require(*name), form) : helpOnAll(table, form));
        return;
    }
    JsonValue documents = JsonValue::array();
    if (name) {
        documents.add(toJson(table.require(*name), form));
    } else {
        for (const Command& command : table.all()) {
            documents.add(toJson(command, form));
        }
    }
    out << toLine({{"command", "help"}, {"commands", documents}}) << '\n';
}

void runHelp(const CommandTable& table, Session& session, Words words) {
    const auto name = words.takeOptional();
    words.end();
    printHelp(table, name, {session.wantsJson(), session.isServed()}, session.out());
}

void runGoTo(Session& session, Words words) {
    const std::string dn = words.takeDnOrTop(session.model());
    words.end();
    if (!dn.empty()) {
        session.requireObject(dn);
    }
    session.goTo(dn);
    if (session.wantsJson()) {
        session.print({{"command", "cd"}, {"dn", dn}});
    } else {
        session.out() << (dn.empty() ? "/" : dn) << '\n';
    }
}

// The interpreter runs it: a script has lines, places and errors of its own.
void runSource(Session&, const Words&) {
    throw UsageError("a script cannot be a part of another command");
}

void runQuit(Session& session, const Words& words) {
    words.end();
    session.end();
    if (session.wantsJson()) {
        session.print({{"command", "quit"}});
    }
}

}
