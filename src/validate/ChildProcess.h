// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_VALIDATE_CHILDPROCESS_H
#define ORV_VALIDATE_CHILDPROCESS_H

#include <chrono>
#include <string>
#include <vector>

namespace OrvValidate {

struct ChildEnd {
    std::string output; ///< standard output and standard error, in their order
    int status = 0;     ///< as of waitpid
    bool isInTime = true;
};

/// Runs the program \p arguments[0] and waits until it ends; after \p limit it is killed. Any
/// thread. Throws std::system_error if it cannot be run.
ChildEnd runChild(const std::vector<std::string>& arguments, std::chrono::seconds limit);

/// Why a process with this \p status did not end normally; empty if it ended with 0.
std::string breakdown(int status);

/// The arguments as the functions of the system expect them; valid as long as \p arguments.
std::vector<char*> argumentPointers(const std::vector<std::string>& arguments);

}

#endif
