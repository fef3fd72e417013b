// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ClientErrors.h"

#include "base/HostReturn.h"

#include <unordered_set>
#include <utility>

namespace OrvHost {

namespace {

std::string whatOf(OrvReturnT code, const OperationSubject& subject,
                   const std::vector<ThreadContext::Message>& messages) {
    std::string text = toText(subject) + ": " + codeText(code);
    // The router explains each of its refusals, and the component may have asked it twice.
    std::unordered_set<std::string> told;
    for (const ThreadContext::Message& message : messages) {
        text += told.insert(message.text).second ? "; " + message.text : "";
    }
    return text;
}

}

std::string toText(const OperationSubject& subject) {
    std::string text = subject.operation + " " + (subject.dn.empty() ? "/" : subject.dn);
    text += subject.className.empty() ? "" : " " + subject.className;
    text += subject.action.empty() ? "" : " " + subject.action;
    for (const std::string& attribute : subject.attributes) {
        text += " " + attribute;
    }
    return text;
}

std::string codeText(OrvReturnT code) {
    return returnText(code) + " (" + std::to_string(code) + ")";
}

OperationError::OperationError(OrvReturnT code, OperationSubject subject,
                               std::vector<ThreadContext::Message> messages)
    : std::runtime_error(whatOf(code, subject, messages)),
      mCode(code),
      mSubject(std::move(subject)),
      mMessages(std::move(messages)) {}

}
