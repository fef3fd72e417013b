// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Interpreter.h"

#include "base/TextFile.h"
#include "cli/commands/WatchReport.h"
#include "cli/errors/Failure.h"
#include "cli/input/ScriptReader.h"
#include "cli/input/WordSplitter.h"

#include <filesystem>
#include <fstream>

namespace OrvHost {

namespace {

constexpr int kMostScripts = 20;

}

ExitStatus Interpreter::runLine(const std::string& line, const std::string& place) {
    const SplitLine split = splitWords(line);
    if (mEchoes) {
        show(line, !split.words.empty());
    }
    if (split.isOpen) {
        return report(
            {}, place,
            std::make_exception_ptr(UsageError("the line ends inside a quoted text: " + line)));
    }
    if (line.find('\0') != std::string::npos) {
        return report({}, place,
                      std::make_exception_ptr(UsageError("there is a zero byte in the line")));
    }
    return split.words.empty() ? ExitOk : runWords(split.words, place);
}

ExitStatus Interpreter::runWords(const std::vector<std::string>& words, const std::string& place) {
    const std::string& name = words.front();
    try {
        mSession.cancellation().throwIfCancelled();
        if (name == "source") {
            return runSource(Words({words.begin() + 1, words.end()}));
        }
        mCommands.run(mSession, words);
        mSession.out().flush();
        reportWatched(mSession);
        return ExitOk;
    } catch (...) {
        return report(name, place, std::current_exception());
    }
}

ExitStatus Interpreter::runScript(std::istream& script, const std::string& name, bool keepGoing) {
    ExitStatus first = ExitOk;
    ScriptReader reader(script);
    while (!mSession.isEnded() && reader.next()) {
        const ExitStatus status =
            runLine(reader.line(), name + ":" + std::to_string(reader.number()));
        first = first == ExitOk ? status : first;
        if (first != ExitOk && !keepGoing) {
            break;
        }
    }
    return first;
}

ExitStatus Interpreter::runSource(Words words) {
    const std::string file = words.take("the FILE");
    words.end();
    if (mDepth == kMostScripts) {
        throw AnswerError(file + ": more than " + std::to_string(kMostScripts) +
                          " scripts run one another");
    }
    if (const std::string problem = whyNotReadable(file); !problem.empty()) {
        throw AnswerError(file + ": " + problem);
    }
    std::ifstream script(file);
    ++mDepth;
    const bool gaveHints = mSession.giveHints(false); // they would make a long script slow
    Session::Question question = mSession.question();
    mSession.setQuestion({});
    const ExitStatus status = runScript(script, file, false);
    mSession.setQuestion(std::move(question));
    mSession.giveHints(gaveHints);
    --mDepth;
    return status;
}

void Interpreter::show(const std::string& line, bool isCommand) {
    mSession.out() << (isCommand ? mSession.prompt() : "") << line << std::endl;
}

ExitStatus Interpreter::report(const std::string& command, const std::string& place,
                               const std::exception_ptr& error) {
    mSession.out().flush();
    Failure failure = FailureReader(mSession).read(mCommands.usageOf(command), error);
    if (!mSession.wantsJson()) {
        mErrors << mColours.error((place.empty() ? "" : place + ": ") +
                                  (command.empty() ? "" : command + ": ") + failure.text)
                << std::endl;
        return failure.status;
    }
    if (!place.empty()) {
        failure.document["place"] = place;
    }
    mSession.print({{"command", command}, {"error", failure.document}});
    return failure.status;
}

}
