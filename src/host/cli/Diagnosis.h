// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_DIAGNOSIS_H
#define ORV_HOST_CLI_DIAGNOSIS_H

#include "CliError.h"
#include "model/Model.h"

#include <string>
#include <vector>

namespace OrvHost {

class Session;

/// Finds out what a code means, for people. The component only returns codes, so this asks the
/// model what the user could have meant, and the component which part of a DN exists.
class Diagnosis {
public:
    /// \p session must outlive this object.
    explicit Diagnosis(Session& session) : mSession(session) {}

    /// What is wrong with the subject of \p error, and what was expected; empty if nothing is
    /// found.
    std::string explain(const OperationError& error);

    /// Why \p dn (external) cannot name an object of the model; empty if it can. \p moc receives
    /// the class that the DN leads to.
    std::string whyNoDn(const std::string& dn, const ClassDef** moc) const;

    /// The class that \p dn leads to, or null.
    const ClassDef* classOf(const std::string& dn) const;

    /// \p text, which the host wrote, in the client's words: with external DNs, and with the names
    /// of transactions.
    std::string inClientsWords(const std::string& text) const;

    /// Names for "expected one of": the child classes of \p parent, or the classes at the top level
    /// if it is null.
    std::vector<std::string> childClasses(const ClassDef* parent) const;

private:
    std::string explainClass(const ClassDef* parent, const std::string& className) const;
    std::string explainAttributes(const ClassDef& moc,
                                  const std::vector<std::string>& attributes) const;
    std::string explainAction(const ClassDef& moc, const std::string& action) const;
    std::string explainCode(const OperationError& error) const;
    std::string explainMissingObject(const std::string& dn);
    std::string siblings(const std::string& parent, const std::string& className);

    Session& mSession;
};

/// The names of a class's attributes, in the order of their definition.
std::vector<std::string> attributeNames(const ClassDef& moc);
std::vector<std::string> actionNames(const ClassDef& moc);

/// "OrvNotExist (-2)".
std::string codeText(OrvReturnT code);

}

#endif
