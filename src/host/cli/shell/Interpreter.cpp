// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Interpreter.h"

#include "cli/commands/WatchReport.h"
#include "cli/errors/Failure.h"
#include "cli/input/WordSplitter.h"
#include "cli/output/AlignedText.h"

#include <utility>

namespace OrvHost {

namespace {

/// Hints would make a long script slow, and nobody is asked in it.
class AsScript {
public:
    explicit AsScript(Session& session)
        : mSession(session), mGaveHints(session.giveHints(false)), mQuestion(session.question()) {
        mSession.setQuestion({});
    }
    ~AsScript() {
        mSession.setQuestion(std::move(mQuestion));
        mSession.giveHints(mGaveHints);
    }
    AsScript(const AsScript&) = delete;
    AsScript& operator=(const AsScript&) = delete;

private:
    Session& mSession;
    bool mGaveHints;
    Session::Question mQuestion;
};

}

Interpreter::Interpreter(Session& session, const CommandTable& commands, std::ostream& errors)
    : mSession(session),
      mCommands(commands),
      mErrors(errors),
      mScripts([this](const std::string& line,
                      const std::string& place) { return runLine(line, place); },
               [&session] { return session.isEnded(); }) {}

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

ExitStatus Interpreter::runSource(Words words) {
    if (mSession.isServed()) {
        throw AnswerError("a server's shell reads no files; its client runs scripts");
    }
    const AsScript quiet(mSession);
    return mScripts.source(std::move(words));
}

void Interpreter::show(const std::string& line, bool isCommand) {
    mSession.out() << (isCommand ? mSession.prompt() : "") << withoutControls(line) << std::endl;
}

ExitStatus Interpreter::report(const std::string& command, const std::string& place,
                               const std::exception_ptr& error) {
    mSession.out().flush();
    Failure failure = FailureReader(mSession).read(mCommands.usageOf(command), error);
    if (!mSession.wantsJson()) {
        const std::string text = (place.empty() ? "" : place + ": ") +
                                 (command.empty() ? "" : command + ": ") + failure.text;
        mErrors << mSession.errorColours().error(withoutControls(text)) << std::endl;
        return failure.status;
    }
    if (!place.empty()) {
        failure.document["place"] = place;
    }
    mSession.print({{"command", command}, {"error", failure.document}});
    return failure.status;
}

}
