// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Commands.h"

#include "Expectation.h"
#include "cli/input/WordSplitter.h"
#include "cli/session/Session.h"

#include <sstream>

namespace OrvHost {

namespace {

/// Collects what commands print while it lives.
class Capture {
public:
    explicit Capture(Session& session) : mSession(session), mOut(session.redirect(mText)) {}
    ~Capture() { mSession.redirect(mOut); }
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    std::string text() const {
        std::string text = mText.str();
        text.erase(text.find_last_not_of('\n') + 1);
        return text;
    }

private:
    std::ostringstream mText;
    Session& mSession;
    std::ostream& mOut;
};

/// An expectation that runs. Each within another one needs more of the stack.
class Nested {
public:
    Nested() {
        if (theDepth == kMostExpectations) {
            throw UsageError("more than " + std::to_string(kMostExpectations) +
                             " expectations are within one another");
        }
        ++theDepth;
    }
    ~Nested() { --theDepth; }
    Nested(const Nested&) = delete;
    Nested& operator=(const Nested&) = delete;

private:
    static thread_local int theDepth;
};

thread_local int Nested::theDepth = 0;

std::string asLine(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        line += (line.empty() ? "" : " ") + quoteWord(word);
    }
    return line;
}

Answer answerOf(const CommandTable& table, Session& session,
                const std::vector<std::string>& words) {
    const Capture capture(session);
    Answer answer;
    try {
        table.run(session, words);
    } catch (const CancelledError&) {
        throw; // Ctrl-C is no answer
    } catch (...) {
        answer.failure =
            FailureReader(session).read(table.usageOf(words.front()), std::current_exception());
    }
    answer.output = capture.text();
    return answer;
}

JsonValue documentOf(const std::string& output) {
    try {
        return JsonValue::parse(output);
    } catch (const JsonError&) { // not one document
        return output;
    }
}

// An expected failure is no error, so it goes to the output as well.
void printMet(Session& session, const std::string& name, const Answer& answer) {
    if (!session.wantsJson()) {
        const std::string text =
            answer.failure ? name + ": " + answer.failure->text : answer.output;
        session.out() << text << (text.empty() ? "" : "\n");
    } else if (answer.failure) {
        session.print({{"command", "expect"},
                       {"answer", {{"command", name}, {"error", answer.failure->document}}}});
    } else {
        session.print({{"command", "expect"}, {"answer", documentOf(answer.output)}});
    }
}

}

void runExpect(const CommandTable& table, Session& session, Words words) {
    const Expectation expectation(words);
    const std::vector<std::string> command = words.takeRest();
    if (command.empty()) {
        throw UsageError("the command is missing");
    }
    const Nested level;
    const Answer answer = answerOf(table, session, command);
    const std::string difference = expectation.compare(answer);
    if (!difference.empty()) {
        throw AnswerError(asLine(command) + "\n" + difference.substr(0, difference.size() - 1));
    }
    printMet(session, command.front(), answer);
}

}
