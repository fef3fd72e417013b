// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ModelError.h"

#include <utility>

namespace OrvHost {

std::string toText(const SourcePosition& source) {
    const bool isLineKnown = !source.file.empty() && source.line > 0;
    return source.file + (isLineKnown ? ":" + std::to_string(source.line) : "");
}

std::string toText(const ModelProblem& problem) {
    const bool isPlaceKnown = !problem.source.file.empty();
    return (isPlaceKnown ? toText(problem.source) + ": " : "") + problem.text;
}

ModelError::ModelError(std::vector<ModelProblem> problems) : mProblems(std::move(problems)) {
    for (const ModelProblem& problem : mProblems) {
        mText += (mText.empty() ? "" : "\n") + toText(problem);
    }
}

}
