// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_MODELERROR_H
#define ORV_HOST_MODEL_MODELERROR_H

#include "Model.h"

#include <exception>
#include <string>
#include <vector>

namespace OrvHost {

/// One thing that is wrong with a model: where it was written, and what, in plain words.
struct ModelProblem {
    SourcePosition source;
    std::string text;
};

/// "file:line", "file" if the line is not known, empty if the file is not.
std::string toText(const SourcePosition& source);

/// "file:line: text", or as much of it as is known.
std::string toText(const ModelProblem& problem);

/// A model that cannot be used, with all that is wrong with it.
class ModelError : public std::exception {
public:
    /// `problems` is not empty.
    explicit ModelError(std::vector<ModelProblem> problems);

    /// All problems, one a line.
    const char* what() const noexcept override { return mText.c_str(); }
    const std::vector<ModelProblem>& problems() const { return mProblems; }

private:
    std::vector<ModelProblem> mProblems;
    std::string mText;
};

}

#endif
