// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CLIENT_H
#define ORV_HOST_CLI_CLIENT_H

#include "CliError.h"
#include "OrvOamSpiManagedObject_3.h"
#include "ValueJson.h"

#include <functional>
#include <string>
#include <vector>

namespace OrvHost {

class Host;

/// An MO client: calls the tables that the component offers, looked up through the portal as any
/// client's would be. All DNs are external. A code that is not OrvOk becomes an OperationError with
/// the messages that the call left in the thread context; what is received is released before the
/// operation returns.
///
/// Threads: one at a time for each transaction.
class Client {
public:
    /// Throws LoadError if no started component offers the table. \p host must outlive the client,
    /// and its components stay started while the client is in use.
    explicit Client(Host& host);

    bool exists(unsigned long txHandle, const std::string& dn);

    /// \p dn empty: the top level.
    unsigned long long count(unsigned long txHandle, const std::string& dn,
                             const std::string& className);

    /// The value of one attribute. \p moc, which may be null, tells the attributes' multiplicity.
    JsonValue get(unsigned long txHandle, const std::string& dn, const std::string& attribute,
                  const ClassDef* moc);

    /// The values of several attributes, in one call, as an object.
    JsonValue get(unsigned long txHandle, const std::string& dn,
                  const std::vector<std::string>& attributes, const ClassDef* moc);

    /// What is done with each child; false ends the walk.
    using Visit = std::function<bool(const std::string& name)>;

    /// Walks the children of one class; \p dn empty: the top level. The iterator is finalized also
    /// when the walk ends early or \p visit throws.
    void forEachChild(unsigned long txHandle, const std::string& dn, const std::string& className,
                      const Visit& visit);

private:
    void check(OrvReturnT code, OperationSubject subject);

    Host& mHost;
    OrvOamSpiManagedObject_3* mTable;
};

/// The external DN of a child. \p parent may be empty.
std::string childOf(const std::string& parent, const std::string& className,
                    const std::string& name);

}

#endif
