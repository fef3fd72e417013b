// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_VIOLATIONREADER_H
#define ORV_HOST_CLI_VIOLATIONREADER_H

#include "Refusal.h"

#include <string>
#include <vector>

namespace OrvHost {

class Session;

/// Finds out what the messages of a refused transaction mean, in external DNs: which object, which
/// attribute, what was found there, what the model allows. The messages tell internal DNs and not
/// all of that. Reads through the component, in the transaction, which must be open still.
///
/// One thread at a time.
class ViolationReader {
public:
    /// \p session must outlive this object.
    ViolationReader(Session& session, unsigned long txHandle)
        : mSession(session), mTxHandle(txHandle) {}

    /// A violation for each message of a verdict, in their order.
    std::vector<Violation> read(const std::vector<ThreadContext::Message>& messages);

    /// What is known about one message, an object with some of "object", "attribute", "found" and
    /// "allowed"; empty for a message of another kind.
    JsonValue explain(const std::string& message);

private:
    JsonValue explainAttribute(const std::string& dn, const std::string& attribute);
    JsonValue explainClass(const std::string& dn) const;
    JsonValue valuesOf(const std::string& dn, const std::string& attribute);

    Session& mSession;
    unsigned long mTxHandle;
};

/// What the model allows in an attribute, for people: how many values, or for references how many
/// objects of which classes.
std::string allowedText(const Model& model, ClassIndex moc, const std::string& attribute);

}

#endif
