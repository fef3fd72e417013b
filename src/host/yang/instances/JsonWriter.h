// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_JSONWRITER_H
#define ORV_HOST_YANG_INSTANCES_JSONWRITER_H

#include "yang/instances/ObjectWriter.h"

namespace OrvHost {

/// The text as it stands between the quotes of a JSON string.
std::string jsonEscaped(const std::string& text);

/// The JSON of RFC 7951.
class JsonWriter : public ObjectWriter {
public:
    using ObjectWriter::ObjectWriter;

    std::string body(const ObjectShape& shape, const std::vector<std::string>& keys,
                     const std::vector<NamedValue>& attributes) const override;
    std::unique_ptr<NodeStream> stream(std::ostream& out, int step) const override;

private:
    std::string member(const NamedValue& value, const ValueShape& shape,
                       const lysc_node* parent) const;
    std::string single(const Value& value, const ValueShape& shape) const;
    std::string scalar(const Value& value, const lysc_node* node) const;
    std::string structure(const StructValue& value, const ValueShape& shape) const;
};

}

#endif
