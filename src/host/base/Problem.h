// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_PROBLEM_H
#define ORV_HOST_BASE_PROBLEM_H

#include <stdexcept>
#include <string>
#include <vector>

namespace OrvHost {

/// The place of a definition or an object in a file: for messages. `line` 0 means that it is not
/// known.
struct SourcePosition {
    std::string file;
    int line = 0;
};

/// One thing that is wrong in a file or in a definition: its place, and a description.
struct Problem {
    SourcePosition source;
    std::string text;
};

/// "file:line", "file" if the line is not known, empty if the file is not.
std::string toText(const SourcePosition& source);

/// "file:line: text", or the parts of it that are known.
std::string toText(const Problem& problem);

/// The base of errors that report all problems of their subject at once. what() is all of them, one
/// on each line.
class ProblemsError : public std::runtime_error {
public:
    /// `problems` is not empty.
    explicit ProblemsError(std::vector<Problem> problems);

    const std::vector<Problem>& problems() const { return mProblems; }

private:
    std::vector<Problem> mProblems;
};

}

#endif
