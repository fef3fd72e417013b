// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_XMLWRITER_H
#define ORV_HOST_YANG_INSTANCES_XMLWRITER_H

#include "yang/instances/ObjectWriter.h"

namespace OrvHost {

/// The XML of RFC 7950. Several top-level objects stand side by side, with no element around them.
class XmlWriter : public ObjectWriter {
public:
    using ObjectWriter::ObjectWriter;

    std::string body(const ObjectShape& shape, const std::vector<std::string>& keys,
                     const std::vector<NamedValue>& attributes) const override;
    std::unique_ptr<NodeStream> stream(std::ostream& out, int step) const override;

private:
    void append(std::string& text, const NamedValue& value, const ValueShape& shape,
                const lysc_node* parent) const;
    std::string single(const Value& value, const ValueShape& shape, const lysc_node* parent) const;
    std::string scalar(const Value& value, const lysc_node* node, const lysc_node* parent) const;
};

}

#endif
