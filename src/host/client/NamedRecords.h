// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_NAMEDRECORDS_H
#define ORV_HOST_CLIENT_NAMEDRECORDS_H

#include "AutoMemory.h"
#include "OrvMoAttributeValue.h"
#include "model/Value.h"

#include <string>
#include <vector>

namespace OrvHost {

/// Named values in the form in which a client of version 3 or 3_1 passes them: an array of pointers
/// to records, with a null pointer at the end.
class NamedRecords {
public:
    /// The names of \p values are not copied, so \p values must outlive this object.
    explicit NamedRecords(const std::vector<NamedValue>& values);
    NamedRecords(const NamedRecords&) = delete;
    NamedRecords& operator=(const NamedRecords&) = delete;

    OrvMoNamedAttributeValueContainer_3** data() { return mPointers.data(); }

private:
    Orv::AutoMemory mMemory;
    std::vector<OrvMoNamedAttributeValueContainer_3> mRecords;
    std::vector<OrvMoNamedAttributeValueContainer_3*> mPointers;
};

/// The names alone.
std::vector<std::string> namesOf(const std::vector<NamedValue>& values);

}

#endif
