// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_CLIENT3_1_H
#define ORV_HOST_CLIENT_CLIENT3_1_H

#include "Client.h"
#include "VekOamSpiManagedObject_3_1.h"

namespace OrvHost {

/// A client of interface version 3_1: sets several attributes in one call. That is the only
/// operation of this version; its clients use version 3 for the others.
class Client3_1 : public Client {
public:
    explicit Client3_1(Host& host);

    /// All attributes or none.
    void set(unsigned long txHandle, const std::string& dn,
             const std::vector<NamedValue>& attributes) override;

private:
    VekOamSpiManagedObject_3_1* mTable;
};

}

#endif
