// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ShellProtocol.h"

#include "cli/remote/Frame.h"

#include <algorithm>
#include <utility>

namespace OrvHost {

namespace {

/// Reads a body of JSON; what is missing or of another type is a FrameError.
template <class Read>
auto parsed(const std::string& body, const char* what, const Read& read) {
    try {
        return read(JsonValue::parse(body));
    } catch (const JsonError&) {
        throw FrameError(std::string(what) + " in JSON was expected");
    }
}

}

std::string toBody(const ShellHello& hello) {
    return toLine({{"version", hello.version},
                   {"json", hello.look.json},
                   {"echo", hello.look.echo},
                   {"answerColours", hello.look.answerColours},
                   {"errorColours", hello.look.errorColours},
                   {"typed", hello.look.isTyped},
                   {"interface", hello.interface}});
}

// Of another version only the number can be relied on.
ShellHello helloFrom(const std::string& body) {
    return parsed(body, "a hello", [](const JsonValue& document) {
        ShellHello hello;
        hello.version = document.at("version").get<int>();
        if (hello.version == kShellProtocol) {
            hello.look = {document.at("json").get<bool>(), document.at("echo").get<bool>(),
                          document.at("answerColours").get<bool>(),
                          document.at("errorColours").get<bool>(),
                          document.at("typed").get<bool>()};
            hello.interface = document.at("interface").get<std::string>();
        }
        return hello;
    });
}

std::string toBody(const ShellWelcome& welcome) {
    return toLine(
        {{"version", welcome.version}, {"greeting", welcome.greeting}, {"prompt", welcome.prompt}});
}

ShellWelcome welcomeFrom(const std::string& body) {
    return parsed(body, "a welcome", [](const JsonValue& document) {
        ShellWelcome welcome;
        welcome.version = document.at("version").get<int>();
        if (welcome.version == kShellProtocol) {
            welcome.greeting = document.at("greeting").get<std::string>();
            welcome.prompt = document.at("prompt").get<std::string>();
        }
        return welcome;
    });
}

std::string toBody(const ShellState& state) {
    JsonValue open = JsonValue::array();
    for (const UncommittedWork& one : state.uncommitted) {
        open.add({{"transaction", one.transaction}, {"writes", one.writes}});
    }
    return toLine({{"status", state.status},
                   {"ended", state.isEnded},
                   {"prompt", state.prompt},
                   {"uncommitted", open}});
}

ShellState stateFrom(const std::string& body) {
    return parsed(body, "the end of an answer", [](const JsonValue& document) {
        ShellState state;
        state.status = document.at("status").get<int>();
        state.isEnded = document.at("ended").get<bool>();
        state.prompt = document.at("prompt").get<std::string>();
        for (const JsonValue& one : document.at("uncommitted").elements()) {
            state.uncommitted.push_back(
                {one.at("transaction").get<std::string>(), one.at("writes").get<std::size_t>()});
        }
        return state;
    });
}

std::string toBody(const Completion& completion) {
    return toLine({{"start", completion.start},
                   {"candidates", completion.candidates},
                   {"canGoOn", completion.canGoOn},
                   {"shownFrom", completion.shownFrom}});
}

Completion completionFrom(const std::string& body) {
    return parsed(body, "a completion", [](const JsonValue& document) {
        Completion completion;
        completion.start = document.at("start").get<std::size_t>();
        completion.candidates = document.at("candidates").get<std::vector<std::string>>();
        completion.canGoOn = document.at("canGoOn").get<bool>();
        completion.shownFrom = document.at("shownFrom").get<std::size_t>();
        return completion;
    });
}

Completion shortened(Completion completion) {
    std::vector<std::string>& all = completion.candidates;
    const auto fits = [&all](std::size_t size) {
        // A byte can become six in JSON; and there are quotes and a comma.
        constexpr std::size_t kMost = kLongestAnswer / 8;
        std::size_t count = 0;
        while (count < all.size() && size + all[count].size() + 3 <= kMost) {
            size += all[count++].size() + 3;
        }
        return count;
    };
    if (fits(0) == all.size()) {
        return completion;
    }
    // The common beginning is that of the first one and the one that differs from it first.
    const auto common = [&](const std::string& one) {
        return std::mismatch(one.begin(), one.end(), all.front().begin(), all.front().end()).first -
               one.begin();
    };
    const auto other =
        std::min_element(all.begin(), all.end(), [&](const auto& left, const auto& right) {
            return common(left) < common(right);
        });
    std::string last = std::move(*other);
    all.erase(other);
    const std::size_t kept = fits(last.size() + 3);
    all.resize(kept);
    if (kept > 0) {
        all.push_back(std::move(last));
    }
    return completion;
}

std::string toBody(const ScriptLine& line) {
    return line.place + '\0' + line.line;
}

ScriptLine lineFrom(const std::string& body) {
    const std::size_t zero = body.find('\0');
    if (zero == std::string::npos) {
        throw FrameError("a line with its place was expected");
    }
    return {body.substr(zero + 1), body.substr(0, zero)};
}

std::string toBody(const std::vector<std::string>& words) {
    std::string body;
    for (const std::string& word : words) {
        body += (&word == &words.front() ? "" : std::string(1, '\0')) + word;
    }
    return body;
}

std::vector<std::string> wordsFrom(const std::string& body) {
    std::vector<std::string> words(1);
    for (const char byte : body) {
        if (byte == '\0') {
            words.emplace_back();
        } else {
            words.back() += byte;
        }
    }
    return words;
}

}
