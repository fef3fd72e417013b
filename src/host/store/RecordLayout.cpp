// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RecordLayout.h"

#include "BytesWriter.h"
#include "CheckedBytes.h"

namespace OrvHost {

namespace {

// How deep structs may be in structs: far more than any model has.
constexpr unsigned kMaxDepth = 64;
constexpr auto kKinds = static_cast<std::uint64_t>(ValueKind::Struct) + 1;

void putAttributes(BytesWriter& out, const std::vector<AttributeDef>& attributes) {
    out.number(attributes.size());
    for (const AttributeDef& def : attributes) {
        out.text(def.name);
        out.number(static_cast<std::uint64_t>(def.type.kind));
        out.number(def.type.enumerators.size());
        for (const std::string& enumerator : def.type.enumerators) {
            out.text(enumerator);
        }
        putAttributes(out, def.type.members);
    }
}

std::vector<AttributeDef> getAttributes(CheckedReader& reader, unsigned depth) {
    if (depth > kMaxDepth) {
        throw BytesError("structs are in structs more than " + std::to_string(kMaxDepth) +
                         " times");
    }
    std::vector<AttributeDef> attributes;
    for (std::uint64_t count = reader.number(); count > 0; --count) {
        AttributeDef& def = attributes.emplace_back();
        def.name = reader.text();
        def.type.kind = static_cast<ValueKind>(reader.numberBelow(kKinds));
        for (std::uint64_t left = reader.number(); left > 0; --left) {
            def.type.enumerators.emplace_back(reader.text());
        }
        def.type.members = getAttributes(reader, depth + 1);
    }
    return attributes;
}

}

std::string encodedLayout(const Model& model) {
    std::string bytes;
    BytesWriter out(bytes);
    out.number(model.classes.size());
    for (const ClassDef& moc : model.classes) {
        out.text(moc.name);
        putAttributes(out, moc.attributes);
    }
    return bytes;
}

Model decodedLayout(std::string_view bytes) {
    CheckedReader reader(bytes);
    Model model;
    for (std::uint64_t count = reader.number(); count > 0; --count) {
        ClassDef& moc = model.classes.emplace_back();
        moc.name = reader.text();
        moc.attributes = getAttributes(reader, 0);
    }
    if (!reader.atEnd()) {
        throw BytesError("there are more bytes than those of the layout");
    }
    return model;
}

}
