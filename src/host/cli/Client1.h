// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CLIENT1_H
#define ORV_HOST_CLI_CLIENT1_H

#include "Client.h"
#include "OrvOamSpiManagedObject_1.h"

namespace OrvHost {

/// A client of interface version 1. The version has no way to ask whether an object exists or to
/// count, so for these version 3 is used. What it hands out lives until the transaction ends, and
/// is not released.
class Client1 : public Client {
public:
    explicit Client1(Host& host);

    JsonValue get(unsigned long txHandle, const std::string& dn, const std::string& attribute,
                  const ClassDef* moc) override;
    /// One call for each attribute.
    JsonValue get(unsigned long txHandle, const std::string& dn,
                  const std::vector<std::string>& attributes, const ClassDef* moc) override;
    void forEachChild(unsigned long txHandle, const std::string& dn, const std::string& className,
                      const Visit& visit) override;
    /// The version creates without attributes; they are set behind, one call for each.
    void create(unsigned long txHandle, const NewObject& object,
                const std::vector<NamedValue>& attributes) override;
    void set(unsigned long txHandle, const std::string& dn,
             const std::vector<NamedValue>& attributes) override;
    void remove(unsigned long txHandle, const std::string& dn) override;
    /// Parameters go by position: they are put in the order of the definition, and one that is left
    /// out before another must have a default. Throws UsageError if it has none.
    JsonValue action(unsigned long txHandle, const std::string& dn, const std::string& name,
                     const std::vector<NamedValue>& parameters, const ActionDef* def) override;

private:
    /// \p done: what the same command did before, to be told if an attribute is refused.
    void setAll(unsigned long txHandle, const std::string& dn,
                const std::vector<NamedValue>& attributes, std::vector<std::string> done);

    OrvOamSpiManagedObject_1* mTable;
};

/// Parameters in the order of their definition, defaults in between where they are needed. What the
/// definition does not know comes last. Throws UsageError as told above.
std::vector<NamedValue> inOrderOf(const ActionDef& def, const std::vector<NamedValue>& parameters);

}

#endif
