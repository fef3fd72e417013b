// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_TREEREADER_H
#define ORV_HOST_YANG_INSTANCES_TREEREADER_H

#include "base/Problem.h"
#include "yang/instances/DataObject.h"
#include "yang/instances/EntryLines.h"
#include "yang/instances/NodeValues.h"
#include "yang/schema/ModelNotes.h"
#include "yang/schema/YangSchema.h"

#include <libyang/libyang.h>

#include <functional>
#include <string>
#include <vector>

namespace OrvHost {

/// "/module:list[key='a']/leaf".
std::string dataPathOf(const lyd_node* node);

/// The value that names an object, from its entry in a list: its key, or all of them joined. Empty
/// if the entry lacks one.
std::string nameOfEntry(const lyd_node* entry, const ObjectShape& shape);

/// Turns a tree of instance data into objects.
class TreeReader {
public:
    using Sink = std::function<void(DataObject&& object)>;

    /// `label` is used as the name of the data's file in messages. What has no place in the model
    /// is skipped, and `notes`, which is borrowed, says so. Objects and problems have the lines
    /// that `lines` knows.
    TreeReader(const YangSchema& schema, std::string label, ModelNotes& notes,
               EntryLines lines = {});
    TreeReader(const TreeReader&) = delete;
    TreeReader& operator=(const TreeReader&) = delete;

    /// Delivers the objects of a whole tree, whose first node may be null.
    /// \throws InstanceDataError with all problems, after the last object
    void read(const lyd_node* first, const Sink& sink);

private:
    /// The direct contents of an object.
    struct Contents {
        std::vector<NamedValue> attributes;
        std::vector<const lyd_node*> children;
        bool isBare = true;
    };

    void readSiblings(const lyd_node* first, const std::string& parentDn, const Sink& sink);
    void readObject(const lyd_node* node, const ObjectShape& shape, const std::string& parentDn,
                    const Sink& sink);
    void gather(const lyd_node* first, const ObjectShape& shape, Contents& contents);
    std::string namingValueOf(const lyd_node* node, const ObjectShape& shape);
    void skip(const lyd_node* node);
    void refuse(const lyd_node* node, const std::string& text);

    const YangSchema& mSchema;
    std::string mLabel;
    ModelNotes& mNotes;
    EntryLines mLines;
    NodeValues mValues;
    std::vector<Problem> mProblems;
};

}

#endif
