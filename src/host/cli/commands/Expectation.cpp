// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Expectation.h"

#include "base/JsonText.h"
#include "cli/input/WordSplitter.h"
#include "client/ErrorExplainer.h"

#include <algorithm>
#include <charconv>

namespace OrvHost {

namespace {

using Texts = std::vector<std::string>;

constexpr const char* kEndOfClauses = ":";
/// Of a text that is not as expected: the beginning is enough to see what it is.
constexpr std::size_t kMostBytes = 1000;

std::string outcomeText(const Answer& answer) {
    if (!answer.failure) {
        return "ok";
    }
    if (answer.failure->code) {
        return codeName(*answer.failure->code) + " (" + std::to_string(*answer.failure->code) + ")";
    }
    return answer.failure->status == ExitUsage ? "usage" : "error";
}

Texts messagesOf(const Answer& answer) {
    return answer.failure ? answer.failure->messages : Texts();
}

Texts textsOf(const std::string& subject, const Answer& answer) {
    if (subject == "message") {
        return messagesOf(answer);
    }
    if (subject == "output") {
        return {answer.output};
    }
    return {answer.failure ? answer.failure->text : ""};
}

std::string listed(const std::string& subject, const Texts& texts) {
    std::string list;
    for (const std::string& text : texts) {
        list += (list.empty() ? "" : ", ") + jsonText(beginningOf(text, kMostBytes));
    }
    return texts.empty() ? "no " + subject : subject + " " + list;
}

std::optional<OrvReturnT> parseCode(const std::string& word) {
    OrvReturnT number = 0;
    const char* end = word.data() + word.size();
    const auto parsed = std::from_chars(word.data(), end, number);
    return parsed.ec == std::errc() && parsed.ptr == end ? number : codeOfName(word);
}

}

Expectation::Expectation(Words& words) {
    for (;;) {
        const std::string word = words.take("the ':' in front of the command");
        if (word == kEndOfClauses) {
            break;
        }
        mClauses.push_back(parseClause(word, words));
    }
    if (!mHasOutcome) {
        mClauses.insert(mClauses.begin(), parseOutcome("ok"));
    }
}

Expectation::Clause Expectation::parseClause(const std::string& word, Words& words) {
    if (word == "message" || word == "output" || word == "explanation") {
        return parseText(word, words);
    }
    if (word == "messages") {
        const std::size_t count = parseNumber(words.take("the number of messages"), word);
        return {word + " " + std::to_string(count),
                [count](const Answer& answer) { return messagesOf(answer).size() == count; },
                [](const Answer& answer) { return listed("message", messagesOf(answer)); }};
    }
    if (mHasOutcome) {
        throw UsageError("'" + word +
                         "' is a second outcome, or no clause; clauses: message, "
                         "messages, output, explanation");
    }
    mHasOutcome = true;
    return parseOutcome(word);
}

Expectation::Clause Expectation::parseText(const std::string& subject, Words& words) {
    std::string text = words.take("the text of the " + subject);
    const bool isPart = text == "containing";
    if (isPart) {
        text = words.take("the text after containing");
    }
    if (text == kEndOfClauses) {
        throw UsageError("the text of the " + subject + " is missing");
    }
    const auto isMet = [subject, text, isPart](const Answer& answer) {
        const Texts texts = textsOf(subject, answer);
        return std::any_of(texts.begin(), texts.end(), [&](const std::string& one) {
            return isPart ? one.find(text) != std::string::npos : one == text;
        });
    };
    return {subject + (isPart ? " containing " : " ") + jsonText(text), isMet,
            [subject](const Answer& answer) { return listed(subject, textsOf(subject, answer)); }};
}

Expectation::Clause Expectation::parseOutcome(const std::string& word) {
    if (word == "ok" || word == "error" || word == "usage") {
        return {word,
                [word](const Answer& answer) {
                    return word == "error" ? answer.failure.has_value()
                                           : outcomeText(answer) == word;
                },
                outcomeText};
    }
    const std::optional<OrvReturnT> code = parseCode(word);
    if (!code) {
        throw UsageError("'" + word + "' is neither ok, error, usage nor a code");
    }
    return {codeText(*code),
            [code](const Answer& answer) {
                return answer.failure ? answer.failure->code == code : *code == OrvOk;
            },
            outcomeText};
}

std::string Expectation::compare(const Answer& answer) const {
    std::string text;
    for (const Clause& clause : mClauses) {
        if (!clause.isMet(answer)) {
            text += "  expected: " + clause.text + "\n  got:      " + clause.got(answer) + "\n";
        }
    }
    return text;
}

}
