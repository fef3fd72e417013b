// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CheckedBytes.h"

#include "DnUtil.h"
#include "WriteCheck.h"

namespace OrvHost {

namespace {

void skipValues(CheckedReader& reader, const TypeDef& type);

void skipValue(CheckedReader& reader, const TypeDef& type) {
    switch (type.kind) {
    case ValueKind::Bool:
        reader.bytes(1);
        return;
    case ValueKind::Int:
    case ValueKind::Uint:
        reader.number();
        return;
    case ValueKind::Double:
        reader.bytes(sizeof(double));
        return;
    case ValueKind::Enumeration:
        reader.numberBelow(type.enumerators.size());
        return;
    case ValueKind::Struct:
        for (std::uint64_t count = reader.number(); count > 0; --count) {
            skipValues(reader, type.members[reader.numberBelow(type.members.size())].type);
        }
        return;
    case ValueKind::String:
    case ValueKind::MoRef:
        reader.text();
        return;
    }
}

void skipValues(CheckedReader& reader, const TypeDef& type) {
    for (std::uint64_t count = reader.number(); count > 0; --count) {
        skipValue(reader, type);
    }
}

}

std::uint64_t CheckedReader::number() {
    std::uint64_t result = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
        const auto byte = static_cast<unsigned char>(bytes(1).front());
        result |= std::uint64_t{byte & 0x7FU} << shift;
        if (byte < 0x80U) {
            if ((byte == 0 && shift > 0) || (shift == 63 && byte > 1)) {
                break;
            }
            return result;
        }
    }
    throw BytesError("a number is longer than it must be, or than 64 bits");
}

std::uint64_t CheckedReader::numberBelow(std::uint64_t end) {
    const std::uint64_t result = number();
    if (result >= end) {
        throw BytesError("there is a number " + std::to_string(result) + ", expected one below " +
                         std::to_string(end));
    }
    return result;
}

std::string_view CheckedReader::bytes(std::uint64_t length) {
    if (length > mRest.size()) {
        throw BytesError("the bytes end too early");
    }
    const std::string_view result = mRest.substr(0, length);
    mRest.remove_prefix(length);
    return result;
}

void requireAttributes(const ClassDef& moc, std::string_view bytes) {
    CheckedReader reader(bytes);
    while (!reader.atEnd()) {
        const AttributeDef& def = moc.attributes[reader.numberBelow(moc.attributes.size())];
        CheckedReader values(reader.text());
        skipValues(values, def.type);
        if (!values.atEnd()) {
            throw BytesError("there are more bytes than values of attribute '" + def.name + "'");
        }
    }
}

void requirePlace(const Model& model, const ClassDef* parent, ClassIndex moc,
                  const std::string& name) {
    const bool hasEnd = name.find('\0') != std::string::npos; // for the check it would end there
    if (hasEnd || !Orv::DnUtil::validateMoNamingAttr(name.c_str())) {
        throw BytesError("'" + name + "' cannot name an object");
    }
    try {
        WriteCheck::containment(model, parent, moc);
    } catch (const HostError& error) {
        throw BytesError(error.what());
    }
}

}
