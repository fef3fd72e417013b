// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SubtreeReader.h"

#include "ClientSession.h"
#include "DnResolver.h"
#include "base/DnView.h"
#include "edits/ClientState.h"

namespace OrvHost {

SubtreeReader::SubtreeReader(ClientSession& session, unsigned long txHandle)
    : mSession(session), mClient(session.clients().version3()), mTxHandle(txHandle) {}

void SubtreeReader::read(const std::string& dn, const Enter& enter, const Leave& leave) {
    if (dn.empty()) {
        readChildren(dn, nullptr, enter, leave);
        return;
    }
    const ClassDef* moc = DnResolver(mSession.model()).classOf(dn);
    if (moc == nullptr || !mClient.exists(mTxHandle, dn)) {
        throw OperationError(OrvNotExist, {"existsMo", dn, {}, {}}, {});
    }
    readObject(dn, *moc, enter, leave);
}

void SubtreeReader::readObject(const std::string& dn, const ClassDef& moc, const Enter& enter,
                               const Leave& leave) {
    mSession.cancellation().throwIfCancelled();
    enter({dn, &moc, ClientState(mClient, mTxHandle).attributes(dn, moc)});
    readChildren(dn, &moc, enter, leave);
    leave();
}

void SubtreeReader::readChildren(const std::string& dn, const ClassDef* moc, const Enter& enter,
                                 const Leave& leave) {
    const Model& model = mSession.model();
    for (const std::string& className : DnResolver(model).childClasses(moc)) {
        const ClassDef& child = model.classes[*model.findClass(className)];
        if (dn.empty() && className != kRootClass) {
            requireNoneAtTop(mClient, mTxHandle, className);
            continue;
        }
        mClient.forEachChild(mTxHandle, dn, className, [&](const std::string& name) {
            readObject(DnView(dn).child(className, name), child, enter, leave);
            return true;
        });
    }
}

}
