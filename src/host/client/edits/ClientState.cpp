// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ClientState.h"

#include "client/DnResolver.h"

namespace OrvHost {

void requireNoneAtTop(Client& client, unsigned long txHandle, const std::string& className) {
    if (client.count(txHandle, "", className) > 0) {
        throw UnlistedTopError(
            "the objects of class " + className +
            " at the top level cannot be listed, so the whole tree cannot be read "
            "or replaced; name each of them by its own DN");
    }
}

bool ClientState::exists(const std::string& dn) {
    return mClient.exists(mTxHandle, dn);
}

std::vector<AttributeValue> ClientState::attributes(const std::string& dn, const ClassDef& moc) {
    const std::vector<std::string> names = attributeNames(moc);
    std::vector<AttributeValue> values;
    values.reserve(names.size());
    const std::vector<NamedReadValue> answers =
        names.empty() ? std::vector<NamedReadValue>() : mClient.get(mTxHandle, dn, names, &moc);
    for (std::size_t at = 0; at < moc.attributes.size(); ++at) {
        const ValueKind kind = moc.attributes[at].type.kind;
        std::optional<AttributeValue> value = at < answers.size()
                                                  ? toAttributeValue(answers[at].second, kind)
                                                  : AttributeValue{kind, {}};
        if (!value) {
            throw RequestError(dn + "." + names[at] +
                               " was read as values of a type that is not known");
        }
        values.push_back(std::move(*value));
    }
    return values;
}

std::vector<std::string> ClientState::children(const std::string& dn,
                                               const std::string& className) {
    if (dn.empty() && className != kRootClass) {
        requireNoneAtTop(mClient, mTxHandle, className);
        return {};
    }
    std::vector<std::string> names;
    mClient.forEachChild(mTxHandle, dn, className, [&](const std::string& name) {
        names.push_back(name);
        return true;
    });
    return names;
}

}
