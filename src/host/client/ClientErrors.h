// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_CLIENTERRORS_H
#define ORV_HOST_CLIENT_CLIENTERRORS_H

#include "OrvReturn.h"
#include "transactions/ThreadContext.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace OrvHost {

/// The object of an operation, in the client's words.
struct OperationSubject {
    std::string operation; ///< name of the table's slot
    std::string dn;        ///< external
    std::string className; ///< empty where the operation takes none
    std::vector<std::string> attributes;
    std::string action{}; ///< empty where the operation calls none
    /// What the same request did before with other operations: "height is set".
    std::vector<std::string> done{};
};

/// "setMoAttribute ManagedElement=north,Mast=a height".
std::string toText(const OperationSubject& subject);

/// "OrvNotExist (-2)".
std::string codeText(OrvReturnT code);

/// A code that is not OrvOk from one of the component's tables. what() has the subject,
/// the code and the messages, each once; ErrorExplainer finds out more.
class OperationError : public std::runtime_error {
public:
    OperationError(OrvReturnT code, OperationSubject subject,
                   std::vector<ThreadContext::Message> messages);

    OrvReturnT code() const { return mCode; }
    const OperationSubject& subject() const { return mSubject; }
    /// The messages that were in the thread context when the code was returned.
    const std::vector<ThreadContext::Message>& messages() const { return mMessages; }

private:
    OrvReturnT mCode;
    OperationSubject mSubject;
    std::vector<ThreadContext::Message> mMessages;
};

/// The part of an error that says how much of the work is written, in the transaction, although the
/// rest is not.
class PartlyWritten {
public:
    explicit PartlyWritten(std::size_t done) : mDone(done) {}
    virtual ~PartlyWritten() = default;

    /// The number of writes that were made.
    std::size_t done() const { return mDone; }

private:
    std::size_t mDone;
};

/// A request that cannot be put to the component as it is. The component was not asked.
class RequestError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Objects at the top level that clients cannot list: they see all objects there under the name of
/// the element at the root.
class UnlistedTopError : public RequestError {
public:
    using RequestError::RequestError;
};

/// No started component offers a table that the client needs.
class NotOfferedError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The work was cancelled: see CancellationToken.
class CancelledError : public std::runtime_error {
public:
    CancelledError() : std::runtime_error("cancelled") {}
};

}

#endif
