// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RefusedWrite.h"

#include "ClientSession.h"
#include "DnResolver.h"
#include "base/HostReturn.h"
#include "base/Suggestion.h"

#include <algorithm>

namespace OrvHost {

namespace {

bool isNamedBack(const Model& model, const ClassDef& moc, const std::string& attribute) {
    return std::any_of(model.biDirAssociations.begin(), model.biDirAssociations.end(),
                       [&](const BiDirAssociation& association) {
                           const AssociationEnd& one = association.ends[0];
                           const AssociationEnd& other = association.ends[1];
                           return (&model.classes[one.moc] == &moc && other.name == attribute) ||
                                  (&model.classes[other.moc] == &moc && one.name == attribute);
                       });
}

// In versions 3 and 3_1 the references back are updated before the attribute itself is set, so a
// refused write may have changed them.
bool mayHaveMovedReferences(ClientSession& session, const OperationSubject& subject) {
    const bool isSet =
        subject.operation == "setMoAttributes" ||
        (subject.operation == "setMoAttribute" && session.clients().version() != "1");
    const ClassDef* moc = isSet ? DnResolver(session.model()).classOf(subject.dn) : nullptr;
    return moc != nullptr && std::any_of(subject.attributes.begin(), subject.attributes.end(),
                                         [&](const std::string& attribute) {
                                             return isNamedBack(session.model(), *moc, attribute);
                                         });
}

}

std::vector<std::string> explainWhatStays(ClientSession& session, const OperationError& error) {
    const OpenTransactions::Entry* current = session.transactions().current();
    if (current == nullptr) {
        return {};
    }
    std::vector<std::string> lines;
    const OperationSubject& subject = error.subject();
    if (!subject.done.empty()) {
        lines.push_back("in transaction " + current->name +
                        " stays what was done before: " + enumerate(subject.done));
    }
    if (error.code() == OrvHostWriteConflict) {
        lines.push_back("transaction " + current->name + " can only be aborted");
    } else if (mayHaveMovedReferences(session, subject)) {
        lines.push_back(
            "references back may have been changed before this was refused, and validate "
            "may not report it: abort transaction " +
            current->name);
    }
    return lines;
}

}
