// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_DATAOBJECT_H
#define ORV_HOST_YANG_INSTANCES_DATAOBJECT_H

#include "model/Model.h"

#include <cstdint>
#include <string>
#include <vector>

namespace OrvHost {

/// The two encodings of instance data: JSON of RFC 7951, and XML.
enum class DataFormat : std::uint8_t { Json, Xml };

/// A managed object as instance data holds it. Its DNs are internal or external, as the data has
/// them.
struct DataObject {
    std::string dn;
    ClassIndex moc = 0;
    /// Without the naming attribute, whose value is in the DN.
    std::vector<NamedValue> attributes;
    /// True if the data gives only the name of the object and the objects below it. Large data
    /// comes in several files, and each file repeats the objects above its own in this way. If such
    /// an object already exists, that one is meant, and nothing is to be done with it; otherwise it
    /// is a new object without attributes.
    bool isBare = false;
    int line = 0; ///< where its name stands in a file; 0: not known
};

}

#endif
