// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_OBJECTWRITER_H
#define ORV_HOST_YANG_INSTANCES_OBJECTWRITER_H

#include "yang/instances/DataObject.h"
#include "yang/schema/YangSchema.h"
#include "yang/source/YangContext.h"

#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

/// A value that cannot be written; the text has no DN.
class UnwritableValueError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A container, or an entry of a list, while it is written. Its own values are already text; what
/// is below it follows by schema node, since JSON keeps the entries of a list together.
struct TextNode {
    struct Group {
        const lysc_node* schema = nullptr;
        std::vector<std::unique_ptr<TextNode>> nodes;
    };

    std::string body; ///< lines, without indentation of their own level and without a last line end
    std::vector<Group> groups;

    /// The group of that schema node; if there is none, a new one at the end.
    Group& group(const lysc_node* schema);
};

/// Writes nested nodes one after the other, and keeps only the path to the open one. The entries of
/// one list must follow each other.
class NodeStream {
public:
    NodeStream() = default;
    virtual ~NodeStream() = default;
    NodeStream(const NodeStream&) = delete;
    NodeStream& operator=(const NodeStream&) = delete;

    /// Begins an entry of a list, or a container, in the open node. \p body: see TextNode::body.
    virtual void open(const lysc_node* schema, const std::string& body) = 0;
    /// Ends the open node.
    virtual void close() = 0;
    /// Ends the text. Every node must be closed.
    virtual void finish() = 0;
};

/// Writes objects in one of the two formats.
class ObjectWriter {
public:
    explicit ObjectWriter(const YangContext& context) : mContext(context) {}
    virtual ~ObjectWriter() = default;
    ObjectWriter(const ObjectWriter&) = delete;
    ObjectWriter& operator=(const ObjectWriter&) = delete;

    static std::unique_ptr<ObjectWriter> make(DataFormat format, const YangContext& context);

    /// The text of an object's keys, one value for each in order, and attributes.
    /// \throws UnwritableValueError
    virtual std::string body(const ObjectShape& shape, const std::vector<std::string>& keys,
                             const std::vector<NamedValue>& attributes) const = 0;

    /// Begins a text. `step` is the number of spaces for each level; `out` is borrowed.
    virtual std::unique_ptr<NodeStream> stream(std::ostream& out, int step) const = 0;

    /// The text of a whole tree: everything below `root`.
    void write(std::ostream& out, const TextNode& root, int step) const;

protected:
    const YangContext& context() const { return mContext; }

private:
    const YangContext& mContext;
};

/// The shape with that name. The value must have its kind, and must be single if the shape is.
/// \throws UnwritableValueError
const ValueShape& shapeOf(const NamedValue& value, const std::vector<ValueShape>& shapes);

/// The place of a class below a place of its parent, or at the top if `parent` is null.
/// \throws UnwritableValueError if the class is not at that place
const ObjectShape& requireShape(const YangSchema& schema, const ObjectShape* parent,
                                std::string_view className);

/// The values of the keys of an object with that naming value.
/// \throws UnwritableValueError if it does not consist of them
std::vector<std::string> keysOf(const ObjectShape& shape, std::string_view name);

/// Writes `text`, which can have several lines, with `indent` spaces before each line.
void writeIndented(std::ostream& out, const std::string& text, int indent);

}

#endif
