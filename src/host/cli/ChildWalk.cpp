// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ChildWalk.h"

#include "CliError.h"
#include "Diagnosis.h"
#include "Session.h"

namespace OrvHost {

ChildWalk::ChildWalk(Session& session, std::string dn, const std::optional<std::string>& oneClass)
    : mSession(session), mDn(std::move(dn)) {
    if (oneClass) {
        mClasses = {*oneClass};
        return;
    }
    if (!mDn.empty()) {
        requireObject();
    }
    const Diagnosis diagnosis(session);
    mClasses = diagnosis.childClasses(mDn.empty() ? nullptr : diagnosis.classOf(mDn));
}

// For a class without children no walk is started, so no call of the component would notice that
// the object does not exist.
void ChildWalk::requireObject() const {
    const bool exists = mSession.read(
        [&](unsigned long txHandle) { return mSession.client().exists(txHandle, mDn); });
    if (!exists) {
        throw OperationError(OrvNotExist, {"existsMo", mDn, {}, {}}, {});
    }
}

void ChildWalk::forEach(unsigned long txHandle, const Visit& visit) const {
    bool goesOn = true;
    for (const std::string& className : mClasses) {
        if (!goesOn) {
            return;
        }
        mSession.client().forEachChild(txHandle, mDn, className, [&](const std::string& name) {
            goesOn = visit(className, name);
            return goesOn;
        });
    }
}

}
