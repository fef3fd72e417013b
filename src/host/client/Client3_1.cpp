// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Client3_1.h"

#include "NamedRecords.h"
#include "OfferedTable.h"

namespace OrvHost {

Client3_1::Client3_1(Host& host)
    : Client(host),
      mTable(requireOffered<VekOamSpiManagedObject_3_1>(host, VekOamSpiManagedObject_3_1_ExtCmId)) {
}

void Client3_1::set(unsigned long txHandle, const std::string& writtenDn,
                    const std::vector<NamedValue>& written) {
    const std::vector<NamedValue> attributes = shortForm(written);
    const std::string dn = shortForm(writtenDn);
    NamedRecords records(attributes);
    check(mTable->setMoAttributes(txHandle, dn.c_str(), records.data()),
          {"setMoAttributes", dn, {}, namesOf(attributes)});
}

}
