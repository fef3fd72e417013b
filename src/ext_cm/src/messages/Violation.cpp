// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "messages/Violation.h"

#include "OrvReturn.h"

namespace OrvExtCmRouterService {

namespace {

constexpr int messageKind = 1; // the only one that hosts are given

}

MessageText& MessageText::operator<<(const char* piece) {
    mEnded = mEnded || piece == nullptr;
    if (!mEnded) {
        mText += piece;
    }
    return *this;
}

MessageText unknownType(const char* dn) {
    MessageText message;
    message << dn << " does not correspond to a valid MO type.";
    return message;
}

MessageText notAReference(const char* attribute, const char* dn) {
    MessageText message;
    message << "Attribute " << attribute << " in " << dn << " is not a MO ref.";
    return message;
}

MessageText outsideMultiplicity(const char* attribute, const char* dn, long long lower,
                                long long upper) {
    MessageText message;
    message << "Multiplicity of attribute " << attribute << " in " << dn << " is not in range ("
            << lower << ".." << upper << ").";
    return message;
}

MessageText notAValidType(const char* type, const char* attribute, const char* dn) {
    MessageText message;
    message << type << " is not a valid type for attribute " << attribute << " in " << dn;
    return message;
}

bool giveToClient(VekMgmtSpiThreadContext_2& threadContext, const std::string& message) {
    return threadContext.addMessage(messageKind, message.c_str()) == OrvOk;
}

void logNotTaken(const TracePoint& point, const std::string& message) {
    ORV_LOG_AT(point, 4, "Failed to add message to thread context. Message: [%s]", message.c_str());
}

}
