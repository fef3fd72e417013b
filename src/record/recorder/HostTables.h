// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_RECORDER_HOSTTABLES_H
#define ORV_RECORD_RECORDER_HOSTTABLES_H

#include "OrvMgmtSpiComponent_1.h"
#include "Recording.h"

namespace OrvRecord {

/// A table as it is written: its shape, and its number among those of that shape.
struct TableName {
    Shape shape = Shape::Other;
    std::uint32_t instance = 0;
};

/// Puts what records in front of \p table, which the host gave for \p id. A table of a kind that is
/// not known stays as it is, and so does one of the component itself. Threads: any.
TableName tapHostTable(const VekMgmtSpiInterface_1& id, void*& table);

/// The same for an interface that the component offers. \p library is its shared object.
VekMgmtSpiInterface_1* tapOffered(VekMgmtSpiInterface_1* offered, void* library);

}

#endif
