// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_INSTANCEDATAWRITER_H
#define ORV_HOST_YANG_INSTANCES_INSTANCEDATAWRITER_H

#include "yang/instances/DataObject.h"
#include "yang/instances/InstanceDataError.h"
#include "yang/schema/YangSchema.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <unordered_map>

namespace OrvHost {

class ObjectWriter;
struct TextNode;

/// Writes objects as instance data. It collects them first, as text, because the entries of a list
/// must be together in any order of the objects. Memory is about the size of the result, so
/// large data is written in slices, with a clear() after each.
///
/// An object whose parent was not added gets its ancestors with only their keys, as the reader
/// expects it in a slice. One thread at a time.
class InstanceDataWriter {
public:
    InstanceDataWriter(std::shared_ptr<const YangSchema> schema, DataFormat format);
    ~InstanceDataWriter();
    InstanceDataWriter(const InstanceDataWriter&) = delete;
    InstanceDataWriter& operator=(const InstanceDataWriter&) = delete;

    /// Files without indentation are smaller. On by default.
    InstanceDataWriter& indent(bool on);

    /// Adds an object with its internal DN; `object.moc` and `object.isBare` are ignored. Values
    /// are written as they are, even if the type does not permit them.
    /// \throws InstanceDataError if the DN is not a path of the model, the object was already
    /// added, or an attribute does not exist or has another kind; the object is not added then.
    void add(const DataObject& object);

    /// The number of objects added since the last clear().
    std::size_t size() const { return mSize; }

    /// Writes what was added, and keeps it.
    void write(std::ostream& out) const;

    /// Writes a file and replaces its old content.
    /// \throws InstanceDataError if it cannot be written
    void writeFile(const std::filesystem::path& file) const;

    void clear();

private:
    struct Entry {
        const ObjectShape* shape = nullptr;
        TextNode* node = nullptr;
        bool isAdded = false; ///< false: only needed for the objects below it
    };

    const ObjectShape& shapeFor(std::string_view dn) const;
    Entry& enter(std::string_view dn);
    TextNode& place(const ObjectShape& shape, TextNode& parent);

    std::shared_ptr<const YangSchema> mSchema;
    std::unique_ptr<ObjectWriter> mWriter;
    std::unique_ptr<TextNode> mRoot;
    std::unordered_map<std::string, Entry> mEntries; // by DN
    std::size_t mSize = 0;
    int mStep = 2;
};

}

#endif
