// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_ERROREXPLAINER_H
#define ORV_HOST_CLIENT_ERROREXPLAINER_H

#include "ClientErrors.h"
#include "model/Model.h"

#include <string>
#include <vector>

namespace OrvHost {

class ClientSession;

/// Finds out what a code means, for people. The component only returns codes, so this asks the
/// model what the user could have meant, and the component which part of a DN exists.
class ErrorExplainer {
public:
    /// \p session must outlive this object.
    explicit ErrorExplainer(ClientSession& session) : mSession(session) {}

    /// What is wrong with the subject of \p error, and what was expected; empty if nothing is
    /// found.
    std::string explain(const OperationError& error);

    /// \p text, which the host wrote, in the client's words: with external DNs, and with the names
    /// of transactions.
    std::string inClientsWords(const std::string& text) const;

private:
    std::string explainAttributes(const ClassDef& moc,
                                  const std::vector<std::string>& attributes) const;
    std::string explainAction(const ClassDef& moc, const std::string& action) const;
    std::string explainCode(const OperationError& error) const;
    std::string explainMissingObject(const std::string& dn);
    std::string siblings(const std::string& parent, const std::string& className);

    ClientSession& mSession;
};

std::vector<std::string> actionNames(const ClassDef& moc);

}

#endif
