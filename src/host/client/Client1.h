// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_CLIENT1_H
#define ORV_HOST_CLIENT_CLIENT1_H

#include "Client.h"
#include "OrvOamSpiManagedObject_1.h"

namespace OrvHost {

/// A client of interface version 1. This version cannot ask whether an object exists and cannot
/// count, so version 3 is used for these. Results live until the transaction ends, and are not
/// released.
class Client1 : public Client {
public:
    explicit Client1(Host& host);

    ReadValue get(unsigned long txHandle, const std::string& dn, const std::string& attribute,
                  const ClassDef* moc) override;
    /// One call for each attribute.
    std::vector<NamedReadValue> get(unsigned long txHandle, const std::string& dn,
                                    const std::vector<std::string>& attributes,
                                    const ClassDef* moc) override;
    ChildIterator openChildren(unsigned long txHandle, const std::string& dn,
                               const std::string& className) override;
    std::optional<std::string> nextChild(const ChildIterator& iterator) override;
    /// Does nothing: in this version walks end with their transaction.
    void closeChildren(const ChildIterator& iterator) override;
    /// This version creates objects without attributes; they are set afterwards, one call for each.
    void create(unsigned long txHandle, const NewObject& object,
                const std::vector<NamedValue>& attributes) override;
    void set(unsigned long txHandle, const std::string& dn,
             const std::vector<NamedValue>& attributes) override;
    void remove(unsigned long txHandle, const std::string& dn) override;
    /// Parameters go by position. They are put in the order of the definition, and a parameter that
    /// is left out before another one must have a default. Throws UsageError if it has none.
    ReadValue action(unsigned long txHandle, const std::string& dn, const std::string& name,
                     const std::vector<NamedValue>& parameters, const ActionDef* def) override;

private:
    /// \p done: what the same command did before, to be reported if an attribute is refused.
    void setAll(unsigned long txHandle, const std::string& dn,
                const std::vector<NamedValue>& attributes, std::vector<std::string> done);

    OrvOamSpiManagedObject_1* mTable;
};

/// Parameters in the order of their definition, with defaults for those that are left out in
/// between. Parameters that the definition does not know come last. Throws UsageError if a default
/// is missing.
std::vector<NamedValue> inOrderOf(const ActionDef& def, const std::vector<NamedValue>& parameters);

}

#endif
