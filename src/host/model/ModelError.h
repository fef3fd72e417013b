// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_MODELERROR_H
#define ORV_HOST_MODEL_MODELERROR_H

#include "Model.h"

#include <exception>
#include <string>
#include <vector>

namespace OrvHost {

/// One problem of a model: its place, and a description.
struct ModelProblem {
    SourcePosition source;
    std::string text;
};

/// "file:line", "file" if the line is not known, empty if the file is not.
std::string toText(const SourcePosition& source);

/// "file:line: text", or the parts of it that are known.
std::string toText(const ModelProblem& problem);

/// A model that cannot be used, with all its problems.
class ModelError : public std::exception {
public:
    /// `problems` is not empty.
    explicit ModelError(std::vector<ModelProblem> problems);

    /// All problems, one on each line.
    const char* what() const noexcept override { return mText.c_str(); }
    const std::vector<ModelProblem>& problems() const { return mProblems; }

private:
    std::vector<ModelProblem> mProblems;
    std::string mText;
};

}

#endif
