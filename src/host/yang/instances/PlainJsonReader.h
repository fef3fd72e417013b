// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_PLAINJSONREADER_H
#define ORV_HOST_YANG_INSTANCES_PLAINJSONREADER_H

#include "yang/instances/DataObject.h"
#include "yang/instances/DataPlaces.h"
#include "yang/instances/JsonCursor.h"
#include "yang/schema/YangSchema.h"

#include <optional>
#include <string_view>
#include <vector>

namespace OrvHost {

/// Reads instance data in JSON straight into objects, several times as fast as the YANG library
/// with its tree. It knows only what our own writers write: one name at the top, members in the
/// order of the modules, each value in the form of its type. Whatever else a text holds, right or
/// wrong, it leaves to the library, and so to the messages of the library.
///
/// One thread at a time.
class PlainJsonReader {
public:
    /// The schema must outlive this object.
    explicit PlainJsonReader(const YangSchema& schema);
    PlainJsonReader(const PlainJsonReader&) = delete;
    PlainJsonReader& operator=(const PlainJsonReader&) = delete;

    /// The objects of \p text, which is well-formed UTF-8, as TreeReader delivers them; nothing if
    /// the text is not plain.
    std::optional<std::vector<DataObject>> read(std::string_view text);

private:
    class Reading;

    DataPlaces mPlaces;
};

}

#endif
