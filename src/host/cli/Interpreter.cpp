// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Interpreter.h"

#include "Diagnosis.h"
#include "OrvReturnText.h"
#include "Session.h"
#include "WordSplitter.h"

namespace OrvHost {

namespace {

std::string subjectText(const OperationSubject& subject) {
    std::string text = subject.operation + " " + (subject.dn.empty() ? "/" : subject.dn);
    text += subject.className.empty() ? "" : " " + subject.className;
    for (const std::string& attribute : subject.attributes) {
        text += " " + attribute;
    }
    return text;
}

// The router's own explanations speak of internal names; they are for when nothing better is known.
bool isWanted(const ThreadContext::Message& message, const std::string& explanation) {
    return message.kind != ThreadContext::Explanation || explanation.empty();
}

}

ExitStatus Interpreter::runLine(const std::string& line, const std::string& place) {
    const SplitLine split = splitWords(line);
    if (split.isOpen) {
        return report(
            {}, place,
            std::make_exception_ptr(UsageError("the line ends inside a quoted text: " + line)));
    }
    return split.words.empty() ? ExitOk : runWords(split.words, place);
}

ExitStatus Interpreter::runWords(const std::vector<std::string>& words, const std::string& place) {
    const std::string& name = words.front();
    try {
        Command& command = mCommands.require(name);
        command.run(mSession, Words({words.begin() + 1, words.end()}));
        mSession.out().flush();
        return ExitOk;
    } catch (...) {
        return report(name, place, std::current_exception());
    }
}

ExitStatus Interpreter::runScript(std::istream& script, const std::string& name, bool keepGoing) {
    ExitStatus first = ExitOk;
    std::string line;
    for (int number = 1; !mSession.isEnded() && std::getline(script, line); ++number) {
        const ExitStatus status = runLine(line, name + ":" + std::to_string(number));
        first = first == ExitOk ? status : first;
        if (first != ExitOk && !keepGoing) {
            break;
        }
    }
    return first;
}

ExitStatus Interpreter::report(const std::string& command, const std::string& place,
                               const std::exception_ptr& error) {
    mSession.out().flush();
    try {
        std::rethrow_exception(error);
    } catch (const OperationError& failure) {
        print(command, place, failure);
        return ExitCommandError;
    } catch (const UsageError& failure) {
        const Command* known = mCommands.find(command);
        const std::string usage =
            known != nullptr ? ". Usage: " + command + " " + known->info().synopsis : "";
        print(command, place, failure.what() + usage);
        return ExitUsage;
    } catch (const std::exception& failure) {
        print(command, place, failure.what());
        return ExitCommandError;
    }
}

void Interpreter::print(const std::string& command, const std::string& place,
                        const std::string& text) {
    if (mSession.wantsJson()) {
        JsonValue error{{"text", text}};
        if (!place.empty()) {
            error["place"] = place;
        }
        mSession.print({{"command", command}, {"error", error}});
    } else {
        mErrors << (place.empty() ? "" : place + ": ") << (command.empty() ? "" : command + ": ")
                << text << std::endl;
    }
}

void Interpreter::print(const std::string& command, const std::string& place,
                        const OperationError& error) {
    const std::string explanation = explain(error);
    if (!mSession.wantsJson()) {
        std::string text = subjectText(error.subject()) + ": " + codeText(error.code());
        text += explanation.empty() ? "" : "\n  " + explanation;
        for (const ThreadContext::Message& message : error.messages()) {
            text += isWanted(message, explanation) ? "\n  host: " + message.text : "";
        }
        print(command, place, text);
        return;
    }
    JsonValue document{{"operation", error.subject().operation},
                       {"dn", error.subject().dn},
                       {"code", error.code()},
                       {"name", Orv::OrvReturn::strerror(error.code())},
                       {"text", explanation},
                       {"messages", JsonValue::array()}};
    if (!place.empty()) {
        document["place"] = place;
    }
    for (const ThreadContext::Message& message : error.messages()) {
        document["messages"].push_back(message.text);
    }
    mSession.print({{"command", command}, {"error", document}});
}

// The explanation asks the component again, and must not hide the error if that fails as well.
std::string Interpreter::explain(const OperationError& error) {
    try {
        return Diagnosis(mSession).explain(error);
    } catch (const std::exception&) {
        return {};
    }
}

}
