// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_VIOLATION_H
#define ORV_EXT_CM_VIOLATION_H

#include "VekMgmtSpiThreadContext_2.h"
#include "messages/Tracing.h"

#include <string>

/// \file
/// What a client gets to read when a transaction breaks a rule of the model: the texts of all
/// violations, and their way to the client. DNs are internal. Clients compare these texts, so they
/// stay as they are to the letter.

namespace OrvExtCmRouterService {

/// Joins the pieces of a message for the client. Numbers are plain decimals, whatever the locale.
///
/// A piece that is missing, a null text, ends the message: what stands before it stays, and nothing
/// that comes later is joined on. A message without its first piece is empty.
class MessageText {
public:
    MessageText& operator<<(const char* piece);
    MessageText& operator<<(long long number) { return *this << std::to_string(number).c_str(); }
    MessageText& operator<<(unsigned long long number) {
        return *this << std::to_string(number).c_str();
    }

    const std::string& text() const { return mText; }

private:
    std::string mText;
    bool mEnded = false;
};

/// The model knows no class for \p dn, that of an MO or a reference to one.
MessageText unknownType(const char* dn);

/// The attribute is written as a reference and is none.
MessageText notAReference(const char* attribute, const char* dn);

/// The attribute has too few or too many values.
MessageText outsideMultiplicity(const char* attribute, const char* dn, long long lower,
                                long long upper);

/// The attribute may not refer to \p type, a class or, if it has none, the reference itself. The
/// text has no full stop: only one of the two kinds of associations puts one.
MessageText notAValidType(const char* type, const char* attribute, const char* dn);

/// The attribute has too few or too many references of one association; \p counted is the word for
/// what they refer to. \p Number is signed for bidirectional associations, unsigned for the others.
template <class Number>
MessageText outsideCardinality(const char* attribute, const char* dn, Number count,
                               const char* counted, Number lower, Number upper) {
    MessageText message;
    message << "Attribute " << attribute << " in " << dn << " contains " << count << " " << counted
            << " which is not within cardinality range (" << lower << ".." << upper << ").";
    return message;
}

/// Gives \p message, which may be empty, to the client of the calling thread. False if the host
/// does not take it.
bool giveToClient(VekMgmtSpiThreadContext_2& threadContext, const std::string& message);

/// Logs that the host has not taken \p message, for the operation at \p point. The verdict stands
/// all the same. A function of its own, since each kind of association puts its trace at another
/// place between the two.
void logNotTaken(const TracePoint& point, const std::string& message);

}

#endif
