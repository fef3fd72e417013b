// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_SUBTREEREADER_H
#define ORV_HOST_CLIENT_SUBTREEREADER_H

#include "ObjectState.h"

#include <functional>
#include <string>

namespace OrvHost {

class Client;
class ClientSession;

/// Reads all objects of a subtree with their values, one after the other, and keeps only the path
/// to the current one. Parents come before their children; the classes of children come in the
/// order of the model, objects of one class in the order of the component.
///
/// Reads through version 3, whatever version is chosen. Asks the session's cancellation token at
/// each object. One thread.
class SubtreeReader {
public:
    /// Called with each object, before those below it.
    using Enter = std::function<void(const ObjectState& object)>;
    /// Called after the last object below the object that was entered last and not left.
    using Leave = std::function<void()>;

    /// \p session is borrowed; the transaction \p txHandle stays open while the reader is used.
    SubtreeReader(ClientSession& session, unsigned long txHandle);

    /// \p dn, external, is the top of the subtree; empty: all objects. Throws OperationError, with
    /// OrvNotExist if there is no object \p dn, CancelledError, what the callbacks throw, and
    /// RequestError for objects at the top level that cannot be listed: clients see all objects
    /// there under the name of the element at the root.
    void read(const std::string& dn, const Enter& enter, const Leave& leave);

private:
    void readObject(const std::string& dn, const ClassDef& moc, const Enter& enter,
                    const Leave& leave);
    void readChildren(const std::string& dn, const ClassDef* moc, const Enter& enter,
                      const Leave& leave);

    ClientSession& mSession;
    Client& mClient;
    unsigned long mTxHandle;
};

}

#endif
