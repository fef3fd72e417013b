// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_VALIDATE_CASE_H
#define ORV_VALIDATE_CASE_H

#include <chrono>
#include <string>
#include <vector>

namespace OrvValidate {

/// The programs with the cases, and the interceptors that they load.
struct CaseFiles {
    std::string programs; ///< the directory of the programs
    std::string probe;    ///< the shared object with the interceptors
};

/// Finds them beside this program or where they are installed. Throws std::runtime_error if they
/// are at neither place.
CaseFiles findCaseFiles();

/// One case. Its full name is "group/Suite.Case".
struct Case {
    std::string group;
    std::string program; ///< the file to run
    std::string name;    ///< as the program knows it

    std::string fullName() const { return group + "/" + name; }
};

/// All cases whose full names match one of \p filters, or all if there is none. In a filter `*`
/// stands for any text and `?` for one character. Throws std::runtime_error if a program cannot be
/// run.
std::vector<Case> listCases(const CaseFiles& files, const std::vector<std::string>& filters);

enum class Verdict { Passed, Failed, Crashed, TimedOut };

struct CaseResult {
    Verdict verdict = Verdict::Passed;
    std::string reason; ///< one line; empty if it passed
    std::string story;  ///< what was expected, what came, what the host did
    std::chrono::milliseconds duration{0};
};

/// Runs \p which in a process of its own, which is ended after \p limit. Any thread.
CaseResult runCase(const Case& which, std::chrono::seconds limit);

/// Runs \p cases, all of one program, in this process, in the place of this program. It returns
/// only by an exception: std::system_error.
[[noreturn]] void becomeCases(const std::vector<Case>& cases);

}

#endif
