// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InstanceDataError.h"

#include <utility>

namespace OrvHost {

InstanceDataError::InstanceDataError(std::vector<ModelProblem> problems)
    : mProblems(std::move(problems)) {
    for (const ModelProblem& problem : mProblems) {
        mText += (mText.empty() ? "" : "\n") + toText(problem);
    }
}

}
