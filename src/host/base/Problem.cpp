// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Problem.h"

#include <utility>

namespace OrvHost {

namespace {

std::string linesOf(const std::vector<Problem>& problems) {
    std::string text;
    for (const Problem& problem : problems) {
        text.append(text.empty() ? "" : "\n").append(toText(problem));
    }
    return text;
}

}

std::string toText(const SourcePosition& source) {
    std::string text = source.file;
    if (!text.empty() && source.line > 0) {
        text.append(":").append(std::to_string(source.line));
    }
    return text;
}

std::string toText(const Problem& problem) {
    const bool isPlaceKnown = !problem.source.file.empty();
    return (isPlaceKnown ? toText(problem.source) + ": " : "") + problem.text;
}

ProblemsError::ProblemsError(std::vector<Problem> problems)
    : std::runtime_error(linesOf(problems)), mProblems(std::move(problems)) {}

}
