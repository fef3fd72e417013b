// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ProblemList.h"

#include "base/Join.h"
#include "model/ModelError.h"

#include <utility>

namespace OrvHost {

void ProblemList::add(const SourcePosition& source,
                      std::initializer_list<std::string_view> pieces) {
    mProblems.push_back({source, joined(pieces)});
}

void ProblemList::checkBounds(const SourcePosition& source, std::string_view subject,
                              const Bounds& bounds) {
    if (bounds.lower < 0) {
        add(source, {subject, ": the lower bound of ", toText(bounds),
                     " is negative, expected 0 or more."});
    }
    if (bounds.upper < bounds.lower) {
        add(source, {subject, ": the upper bound of ", toText(bounds),
                     " is below the lower bound, expected lower <= upper."});
    }
}

void ProblemList::throwIfAny() {
    if (!mProblems.empty()) {
        throw ModelError(std::move(mProblems));
    }
}

}
