// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_INSTANCEDATASTREAM_H
#define ORV_HOST_YANG_INSTANCES_INSTANCEDATASTREAM_H

#include "yang/instances/DataObject.h"
#include "yang/instances/InstanceDataError.h"
#include "yang/schema/YangSchema.h"

#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

class NodeStream;
class ObjectWriter;

/// Writes objects as instance data while they come, parents first: open() each object, then those
/// below it, then close() it. It keeps only the path to the open object, so data of any size can be
/// written. Where objects come in any order, use InstanceDataWriter.
///
/// One thread at a time.
class InstanceDataStream {
public:
    /// `out` is borrowed; the caller looks whether it could be written.
    InstanceDataStream(std::shared_ptr<const YangSchema> schema, DataFormat format,
                       std::ostream& out);
    ~InstanceDataStream();
    InstanceDataStream(const InstanceDataStream&) = delete;
    InstanceDataStream& operator=(const InstanceDataStream&) = delete;

    /// Begins an object below the open one, or at the top. The objects of one class below one
    /// object must follow each other. `name` is the value of its naming attribute; `attributes` are
    /// those besides it, in the order in which they shall stand. DNs are written as they are given.
    /// \throws InstanceDataError if the class does not stand there, its objects do not follow each
    /// other, or an attribute does not exist or has another kind; nothing is begun then.
    void open(std::string_view className, const std::string& name,
              const std::vector<NamedValue>& attributes);

    /// Ends the open object.
    void close();

    /// Ends the data. Every object must be closed.
    void finish();

private:
    /// The objects below one object, or at the top.
    struct Level {
        std::string dn;
        const ObjectShape* shape = nullptr;         ///< of the object; null: the top
        std::vector<const lysc_node*> openWrappers; ///< around the objects below, outermost first
        std::vector<const lysc_node*> begun;        ///< lists and wrappers; only the last can go on
    };

    void enter(Level& level, const ObjectShape& shape);
    void begin(Level& level, const lysc_node* node);
    void closeWrappers(Level& level, std::size_t kept);

    std::shared_ptr<const YangSchema> mSchema;
    std::unique_ptr<ObjectWriter> mWriter;
    std::unique_ptr<NodeStream> mStream;
    std::vector<Level> mLevels;
};

}

#endif
