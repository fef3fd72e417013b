// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_INSTANCEDATAERROR_H
#define ORV_HOST_YANG_INSTANCES_INSTANCEDATAERROR_H

#include "model/ModelError.h"

#include <exception>
#include <string>
#include <vector>

namespace OrvHost {

/// Instance data that cannot be read or written, with all problems.
class InstanceDataError : public std::exception {
public:
    /// `problems` is not empty.
    explicit InstanceDataError(std::vector<ModelProblem> problems);

    /// All problems, one on each line.
    const char* what() const noexcept override { return mText.c_str(); }
    const std::vector<ModelProblem>& problems() const { return mProblems; }

private:
    std::vector<ModelProblem> mProblems;
    std::string mText;
};

}

#endif
