// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_VIOLATIONEXPLAINER_H
#define ORV_HOST_CLIENT_VIOLATIONEXPLAINER_H

#include "RefusalError.h"

#include <string>
#include <vector>

namespace OrvHost {

class ClientSession;

/// Finds out what the messages of a refused transaction mean, in external DNs: which object, which
/// attribute, which value it has, what the model allows. The messages contain internal DNs and only
/// some of these facts. Reads through the component, in the transaction, which must still be open.
///
/// One thread at a time.
class ViolationExplainer {
public:
    /// \p session must outlive this object.
    ViolationExplainer(ClientSession& session, unsigned long txHandle)
        : mSession(session), mTxHandle(txHandle) {}

    /// A violation for each message of a verdict, in the same order.
    std::vector<Violation> explain(const std::vector<ThreadContext::Message>& messages);

    /// The facts about one message; none but the message itself for an unknown form of message.
    Violation explain(const std::string& message);

private:
    void explainAttribute(const std::string& dn, const std::string& attribute,
                          Violation& violation);
    void explainRule(const std::string& dn, const std::string& attribute, Violation& violation);
    void explainClass(const std::string& internal, Violation& violation) const;
    void explainObject(const std::string& dn, Violation& violation) const;
    ReadValue valuesOf(const std::string& dn, const std::string& attribute);

    ClientSession& mSession;
    unsigned long mTxHandle;
};

/// What the model allows in an attribute, for people: how many values, or for references how many
/// objects of which classes.
std::string allowedText(const Model& model, ClassIndex moc, const std::string& attribute);

}

#endif
