// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_BUILDING_PROBLEMLIST_H
#define ORV_HOST_MODEL_BUILDING_PROBLEMLIST_H

#include "base/Problem.h"
#include "model/Bounds.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

/// Collects the problems of a model while its parts are checked.
class ProblemList {
public:
    void add(const SourcePosition& source, std::initializer_list<std::string_view> pieces);

    /// Checks that 0 <= lower <= upper.
    void checkBounds(const SourcePosition& source, std::string_view subject, const Bounds& bounds);

    /// \throws ModelError with all problems, if there is one.
    void throwIfAny();

private:
    std::vector<Problem> mProblems;
};

}

#endif
