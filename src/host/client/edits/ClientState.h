// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_EDITS_CLIENTSTATE_H
#define ORV_HOST_CLIENT_EDITS_CLIENTSTATE_H

#include "StateBefore.h"
#include "client/Client.h"

namespace OrvHost {

/// Throws RequestError if there are objects of a class at the top level that is not that of the
/// element at the root: their names cannot be read, since clients see all objects there under the
/// name of that element.
void requireNoneAtTop(Client& client, unsigned long txHandle, const std::string& className);

/// The objects as a transaction sees them, read through the component.
class ClientState : public StateBefore {
public:
    /// \p client, of version 3, is borrowed and must outlive this object; the transaction stays
    /// open as long.
    ClientState(Client& client, unsigned long txHandle) : mClient(client), mTxHandle(txHandle) {}

    bool exists(const std::string& dn) override;
    /// Throws RequestError for an answer that no attribute can hold.
    std::vector<AttributeValue> attributes(const std::string& dn, const ClassDef& moc) override;
    /// Throws what requireNoneAtTop throws.
    std::vector<std::string> children(const std::string& dn, const std::string& className) override;

private:
    Client& mClient;
    unsigned long mTxHandle;
};

}

#endif
