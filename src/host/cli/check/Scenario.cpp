// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Scenario.h"

#include "base/TextFile.h"
#include "cli/input/ScriptReader.h"
#include "cli/input/WordSplitter.h"
#include "cli/session/Session.h"
#include "cli/setup/HostSetup.h"
#include "cli/shell/Interpreter.h"

#include <fstream>
#include <iostream>
#include <sstream>

namespace OrvHost {

namespace {

std::string withoutLineEnd(std::string text) {
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
}

void runLines(const Options& options, Session& session, std::istream& script,
              const std::function<void(int line)>& atLine, ScenarioResult& result) {
    const CommandTable commands;
    std::ostringstream errors;
    Interpreter interpreter(session, commands, errors);
    ScriptReader reader(script);
    int last = 0;
    while (!session.isEnded() && reader.next()) {
        last = reader.number();
        if (!splitWords(reader.line()).words.empty()) {
            atLine(last);
            ++result.commands;
        }
        errors.str({});
        if (interpreter.runLine(reader.line()) == ExitOk) {
            continue;
        }
        result.failures.push_back({reader.number(), withoutLineEnd(errors.str())});
        if (!options.keepGoing) {
            return;
        }
    }
    // What comes after a quit would be left out, and nobody would notice.
    while (session.isEnded() && result.isPassed() && reader.next()) {
        if (!splitWords(reader.line()).words.empty()) {
            result.failures.push_back({last, "the scenario ends here, before the command in line " +
                                                 std::to_string(reader.number())});
        }
    }
    if (result.commands == 0 && result.isPassed()) {
        result.failures.push_back({0, "there is no command in it"});
    }
}

}

ScenarioResult runScenario(const Options& options, const std::string& file,
                           const std::function<void(int line)>& atLine) {
    ScenarioResult result;
    result.name = file;
    try {
        if (const std::string problem = whyNotReadable(file); !problem.empty()) {
            throw LoadError(problem);
        }
        if (!std::filesystem::is_regular_file(file)) {
            throw LoadError("cannot be read: it is not a plain file");
        }
        std::ifstream script(file);
        HostSetup setup(options, std::cerr);
        std::ostream nowhere(nullptr);
        Session session(setup.host(), setup.clients(), setup.log(), nowhere, false);
        session.setModelNotes(setup.modelNotes());
        session.setSchema(setup.schema());
        runLines(options, session, script, atLine, result);
    } catch (const std::exception& failure) {
        result.isBroken = true;
        result.failures.push_back({0, failure.what()});
    }
    return result;
}

}
