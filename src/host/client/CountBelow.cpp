// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CountBelow.h"

#include "ClientSession.h"
#include "DnResolver.h"
#include "base/DnView.h"

namespace OrvHost {

namespace {

bool canHaveChildren(ClientSession& session, const std::string& className) {
    const Model& model = session.model();
    const auto moc = model.findClass(className);
    return moc && !DnResolver(model).childClasses(&model.classes[*moc]).empty();
}

}

std::vector<std::string> childClassesOf(ClientSession& session, const std::string& dn) {
    const DnResolver resolver(session.model());
    return resolver.childClasses(dn.empty() ? nullptr : resolver.classOf(dn));
}

unsigned long long countBelow(ClientSession& session, unsigned long txHandle,
                              const std::string& dn) {
    unsigned long long below = 0;
    for (const std::string& className : childClassesOf(session, dn)) {
        session.cancellation().throwIfCancelled();
        if (!canHaveChildren(session, className)) {
            below += session.client().count(txHandle, dn, className);
            continue;
        }
        session.client().forEachChild(txHandle, dn, className, [&](const std::string& name) {
            below += 1 + countBelow(session, txHandle, DnView(dn).child(className, name));
            return true;
        });
    }
    return below;
}

}
