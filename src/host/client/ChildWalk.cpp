// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ChildWalk.h"

#include "ClientSession.h"
#include "DnResolver.h"

namespace OrvHost {

ChildWalk::ChildWalk(ClientSession& session, std::string dn,
                     const std::optional<std::string>& oneClass)
    : mSession(session), mDn(std::move(dn)) {
    if (oneClass) {
        mClasses = {*oneClass};
        return;
    }
    // For a class without children no walk is started, so no call of the component would notice
    // that the object does not exist.
    if (!mDn.empty()) {
        session.requireObject(mDn);
    }
    const DnResolver resolver(session.model());
    mClasses = resolver.childClasses(mDn.empty() ? nullptr : resolver.classOf(mDn));
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
