// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_ERRORS_CLIERRORS_H
#define ORV_HOST_CLI_ERRORS_CLIERRORS_H

#include "client/ClientErrors.h"

#include <stdexcept>

namespace OrvHost {

/// The exit status of the process.
enum ExitStatus : int {
    ExitOk = 0,           ///< every command was answered
    ExitCommandError = 1, ///< a command was answered with an error
    ExitUsage = 2,        ///< an option, a command or its words cannot be understood
    ExitLoad = 3          ///< a model, data or a component could not be loaded
};

/// Words that cannot be understood.
class UsageError : public RequestError {
public:
    using RequestError::RequestError;
};

/// A question about something that does not exist, answered without the component.
class AnswerError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Something that is loaded before the first command cannot be used.
class LoadError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}

#endif
