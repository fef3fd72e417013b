// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_VALIDATE_CHILDPROCESS_H
#define ORV_VALIDATE_CHILDPROCESS_H

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace OrvValidate {

struct ChildEnd {
    std::string output; ///< standard output and standard error, in their order
    int status = 0;     ///< as of waitpid
    bool isInTime = true;
};

/// What runChild throws when this program was asked to end.
struct Interrupted {
    int signal; ///< SIGINT, SIGTERM or SIGHUP
};

/// From here on SIGINT, SIGTERM and SIGHUP end the children, and not this process at once. Once,
/// before the first child. Throws std::system_error.
void watchForInterruption();

/// Ends this process as \p signal would have ended it.
[[noreturn]] void endAsIfBy(int signal);

/// Runs the program \p arguments[0] and waits until it ends; after \p limit it is killed. With it
/// go the processes that it has started, and it goes with this process, whatever ends that. Any
/// thread. Throws std::system_error if it cannot be run, and Interrupted.
ChildEnd runChild(const std::vector<std::string>& arguments, std::chrono::seconds limit);

/// The same; the program has the file \p descriptor open under the number \p number.
ChildEnd runChild(const std::vector<std::string>& arguments, std::chrono::seconds limit,
                  int descriptor, int number);

/// The same with \p work in place of a program: what follows a fork, so no other thread may run.
/// The child ends with status 0 when the work is done.
ChildEnd runChild(const std::function<void()>& work, std::chrono::seconds limit);

/// Why a process with this \p status did not end normally; empty if it ended with 0.
std::string breakdown(int status);

/// The arguments as the functions of the system expect them; valid as long as \p arguments.
std::vector<char*> argumentPointers(const std::vector<std::string>& arguments);

}

#endif
