// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirClient.h"

#include "Records.h"

namespace BiDirTests {

void Client::create(unsigned long tx, const std::string& dn, const NamedDns& attributes) {
    Scripted::NamedValues values;
    for (const auto& [name, references] : attributes) {
        values.emplace_back(name, Scripted::refs(references));
    }
    mStage.world.create(dn, values);
    for (const auto& [name, references] : attributes) {
        announce(tx, dn, name, references, true);
    }
    mUtils.updatePendingBackPointer(tx, dn, "id");
}

OrvReturnT Client::set(unsigned long tx, const std::string& dn, const std::string& attribute,
                       const Dns& references) {
    const OrvReturnT code = announce(tx, dn, attribute, references);
    mStage.world.set(dn, attribute, Scripted::refs(references));
    return code;
}

void Client::remove(unsigned long tx, const std::string& dn) {
    mUtils.updateBackPointersForDelete(tx, dn.c_str());
    mUtils.removePendingBackPointerUpdates(tx, dn);
    mStage.world.remove(dn);
}

void Client::finish(unsigned long tx) {
    mUtils.removePendingBackpointersForTransaction(tx);
}

OrvReturnT Client::announce(unsigned long tx, const std::string& dn, const std::string& attribute,
                            const Dns& references, bool isNewMo) {
    Scripted::Records records;
    return mUtils.updateBackPointersForModify(
        tx, dn.c_str(), attribute.c_str(), records.container(Scripted::refs(references)), isNewMo);
}

}
