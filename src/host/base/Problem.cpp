// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Problem.h"

#include "Join.h"

#include <utility>

namespace OrvHost {

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
    : std::runtime_error(
          joinedLines(problems, [](const Problem& problem) { return toText(problem); })),
      mProblems(std::move(problems)) {}

}
