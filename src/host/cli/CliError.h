// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CLIERROR_H
#define ORV_HOST_CLI_CLIERROR_H

#include "OrvReturn.h"
#include "transactions/ThreadContext.h"

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// The exit status of the process.
enum ExitStatus : int {
    ExitOk = 0,           ///< every command was answered
    ExitCommandError = 1, ///< a command was answered with an error
    ExitUsage = 2,        ///< an option, a command or its words cannot be understood
    ExitLoad = 3          ///< a model, data or a component could not be loaded
};

/// Words that cannot be understood.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
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

/// The object of an operation, in the client's words.
struct OperationSubject {
    std::string operation; ///< name of the table's slot
    std::string dn;        ///< external
    std::string className; ///< empty where the operation takes none
    std::vector<std::string> attributes;
    std::string action{}; ///< empty where the operation calls none
    /// What the same command did before with other operations: "height is set".
    std::vector<std::string> done{};
};

/// A code that is not OrvOk from one of the component's tables.
class OperationError : public std::runtime_error {
public:
    OperationError(OrvReturnT code, OperationSubject subject,
                   std::vector<ThreadContext::Message> messages)
        : std::runtime_error(subject.operation),
          mCode(code),
          mSubject(std::move(subject)),
          mMessages(std::move(messages)) {}

    OrvReturnT code() const { return mCode; }
    const OperationSubject& subject() const { return mSubject; }
    /// The messages that were in the thread context when the code was returned.
    const std::vector<ThreadContext::Message>& messages() const { return mMessages; }

private:
    OrvReturnT mCode;
    OperationSubject mSubject;
    std::vector<ThreadContext::Message> mMessages;
};

}

#endif
