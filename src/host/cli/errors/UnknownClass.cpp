// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "UnknownClass.h"

#include "base/Suggestion.h"

namespace OrvHost {

AnswerError unknownClass(const std::string& name, const std::vector<std::string>& classes) {
    return AnswerError(noClass(name, classes) + "." + didYouMean(name, classes) +
                       " Classes: " + enumerate(classes));
}

}
