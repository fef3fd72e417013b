// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AttributeBytes.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace OrvHost {

namespace {

void putNumber(std::string& out, std::uint64_t number) {
    while (number >= 0x80U) {
        out += static_cast<char>(number | 0x80U);
        number >>= 7U;
    }
    out += static_cast<char>(number);
}

void putText(std::string& out, std::string_view text) {
    putNumber(out, text.size());
    out += text;
}

// Maps small numbers of either sign to small unsigned numbers, which take few bytes.
std::uint64_t foldSign(std::int64_t number) {
    const auto bits = static_cast<std::uint64_t>(number);
    return (bits << 1U) ^ (number < 0 ? UINT64_MAX : 0);
}

std::int64_t unfoldSign(std::uint64_t folded) {
    return static_cast<std::int64_t>((folded >> 1U) ^ ((folded & 1U) != 0 ? UINT64_MAX : 0));
}

/// Reads bytes from front to back.
class Reader {
public:
    explicit Reader(std::string_view bytes) : mRest(bytes) {}

    bool atEnd() const { return mRest.empty(); }
    std::string_view rest() const { return mRest; }

    std::uint64_t number() {
        std::uint64_t result = 0;
        for (unsigned shift = 0;; shift += 7) {
            const auto byte = static_cast<unsigned char>(mRest.front());
            mRest.remove_prefix(1);
            result |= std::uint64_t{byte & 0x7FU} << shift;
            if (byte < 0x80U) {
                return result;
            }
        }
    }
    std::string_view bytes(std::size_t length) {
        const std::string_view result = mRest.substr(0, length);
        mRest.remove_prefix(length);
        return result;
    }
    std::string_view text() { return bytes(number()); }

private:
    std::string_view mRest;
};

void putValues(std::string& out, const TypeDef& type, const AttributeValue& value);
AttributeValue getValues(Reader& reader, const TypeDef& type);

template <class Named>
std::size_t positionOf(const std::vector<Named>& all, const std::string& name) {
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const Named& candidate) { return candidate.name == name; });
    return static_cast<std::size_t>(found - all.begin());
}

/// Writes one value of a type.
struct ValueWriter {
    std::string& out;
    const TypeDef& type;

    void operator()(bool flag) const { out += static_cast<char>(flag ? 1 : 0); }
    void operator()(std::int64_t number) const { putNumber(out, foldSign(number)); }
    void operator()(std::uint64_t number) const { putNumber(out, number); }
    void operator()(double number) const {
        char raw[sizeof number];
        std::memcpy(raw, &number, sizeof number);
        out.append(raw, sizeof number);
    }
    void operator()(const std::string& text) const {
        if (type.kind == ValueKind::Enumeration) {
            const auto& known = type.enumerators;
            const auto found = std::find(known.begin(), known.end(), text);
            putNumber(out, static_cast<std::uint64_t>(found - known.begin()));
        } else {
            putText(out, text);
        }
    }
    void operator()(const StructValue& value) const {
        putNumber(out, value.members.size());
        for (const NamedValue& member : value.members) {
            const std::size_t index = positionOf(type.members, member.first);
            putNumber(out, index);
            putValues(out, type.members[index].type, member.second);
        }
    }
};

void putValues(std::string& out, const TypeDef& type, const AttributeValue& value) {
    putNumber(out, value.values.size());
    for (const Value& one : value.values) {
        std::visit(ValueWriter{out, type}, one);
    }
}

double getDouble(Reader& reader) {
    double number = 0;
    std::memcpy(&number, reader.bytes(sizeof number).data(), sizeof number);
    return number;
}

StructValue getStruct(Reader& reader, const TypeDef& type) {
    StructValue value;
    for (std::uint64_t count = reader.number(); count > 0; --count) {
        const AttributeDef& member = type.members[reader.number()];
        value.members.emplace_back(member.name, getValues(reader, member.type));
    }
    return value;
}

Value getValue(Reader& reader, const TypeDef& type) {
    switch (type.kind) {
    case ValueKind::Bool:
        return reader.bytes(1).front() != 0;
    case ValueKind::Int:
        return unfoldSign(reader.number());
    case ValueKind::Uint:
        return reader.number();
    case ValueKind::Double:
        return getDouble(reader);
    case ValueKind::Enumeration:
        return type.enumerators[reader.number()];
    case ValueKind::Struct:
        return getStruct(reader, type);
    case ValueKind::String:
    case ValueKind::MoRef:
        break;
    }
    return std::string(reader.text());
}

AttributeValue getValues(Reader& reader, const TypeDef& type) {
    AttributeValue result;
    result.kind = type.kind;
    const std::uint64_t count = reader.number();
    result.values.reserve(count);
    for (std::uint64_t done = 0; done < count; ++done) {
        result.values.push_back(getValue(reader, type));
    }
    return result;
}

/// The bytes of one attribute: those of its values, and those of the whole entry.
struct Entry {
    std::string_view values;
    std::size_t begin;
    std::size_t end;
};

std::optional<Entry> findEntry(std::string_view bytes, AttributeIndex index) {
    Reader reader(bytes);
    while (!reader.atEnd()) {
        const std::size_t begin = bytes.size() - reader.rest().size();
        const bool found = reader.number() == index;
        const std::string_view values = reader.text();
        if (found) {
            return Entry{values, begin, bytes.size() - reader.rest().size()};
        }
    }
    return std::nullopt;
}

}

std::optional<AttributeValue> AttributeBytes::read(const ClassDef& moc, std::string_view bytes,
                                                   AttributeIndex index) {
    const auto entry = findEntry(bytes, index);
    if (!entry) {
        return std::nullopt;
    }
    Reader reader(entry->values);
    return getValues(reader, moc.attributes[index].type);
}

void AttributeBytes::write(const ClassDef& moc, std::string& bytes, AttributeIndex index,
                           const AttributeValue& value) {
    if (const auto entry = findEntry(bytes, index)) {
        bytes.erase(entry->begin, entry->end - entry->begin);
    }
    if (value.values.empty()) {
        return;
    }
    std::string values;
    putValues(values, moc.attributes[index].type, value);
    putNumber(bytes, index);
    putText(bytes, values);
}

bool AttributeBytes::has(std::string_view bytes, AttributeIndex index) {
    return findEntry(bytes, index).has_value();
}

}
