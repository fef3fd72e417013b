// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AttributeBytes.h"

#include "BytesWriter.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace OrvHost {

namespace {

std::size_t sizeOfNumber(std::uint64_t number) {
    std::size_t size = 1;
    for (; number >= 0x80U; number >>= 7U) {
        ++size;
    }
    return size;
}

void putValues(BytesWriter& out, const TypeDef& type, const AttributeValue& value);
std::size_t sizeOf(const TypeDef& type, const AttributeValue& value);
AttributeValue getValues(BytesReader& reader, const TypeDef& type);

std::size_t positionOf(const std::vector<std::string>& all, const std::string& name) {
    return static_cast<std::size_t>(std::find(all.begin(), all.end(), name) - all.begin());
}

std::size_t positionOf(const std::vector<AttributeDef>& all, const std::string& name) {
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const AttributeDef& one) { return one.name == name; });
    return static_cast<std::size_t>(found - all.begin());
}

/// Writes one value of a type.
struct ValueWriter {
    BytesWriter& out;
    const TypeDef& type;

    void operator()(bool flag) const { out.flag(flag); }
    void operator()(std::int64_t number) const { out.signedNumber(number); }
    void operator()(std::uint64_t number) const { out.number(number); }
    void operator()(double number) const { out.real(number); }
    void operator()(const std::string& text) const {
        if (type.kind == ValueKind::Enumeration) {
            out.number(positionOf(type.enumerators, text));
        } else {
            out.text(text);
        }
    }
    void operator()(const StructValue& value) const {
        out.number(value.members.size());
        for (const NamedValue& member : value.members) {
            const std::size_t index = positionOf(type.members, member.first);
            out.number(index);
            putValues(out, type.members[index].type, member.second);
        }
    }
};

void putValues(BytesWriter& out, const TypeDef& type, const AttributeValue& value) {
    out.number(value.values.size());
    for (const Value& one : value.values) {
        std::visit(ValueWriter{out, type}, one);
    }
}

/// Returns how many bytes ValueWriter writes.
struct ValueSizer {
    const TypeDef& type;

    std::size_t operator()(bool) const { return 1; }
    std::size_t operator()(std::int64_t number) const {
        return sizeOfNumber(BytesWriter::foldSign(number));
    }
    std::size_t operator()(std::uint64_t number) const { return sizeOfNumber(number); }
    std::size_t operator()(double) const { return sizeof(double); }
    std::size_t operator()(const std::string& text) const {
        return type.kind == ValueKind::Enumeration
                   ? sizeOfNumber(positionOf(type.enumerators, text))
                   : sizeOfNumber(text.size()) + text.size();
    }
    std::size_t operator()(const StructValue& value) const {
        std::size_t sum = sizeOfNumber(value.members.size());
        for (const NamedValue& member : value.members) {
            const std::size_t index = positionOf(type.members, member.first);
            sum += sizeOfNumber(index) + sizeOf(type.members[index].type, member.second);
        }
        return sum;
    }
};

std::size_t sizeOf(const TypeDef& type, const AttributeValue& value) {
    std::size_t sum = sizeOfNumber(value.values.size());
    for (const Value& one : value.values) {
        sum += std::visit(ValueSizer{type}, one);
    }
    return sum;
}

StructValue getStruct(BytesReader& reader, const TypeDef& type) {
    StructValue value;
    for (std::uint64_t count = reader.number(); count > 0; --count) {
        const AttributeDef& member = type.members[reader.number()];
        value.members.emplace_back(member.name, getValues(reader, member.type));
    }
    return value;
}

Value getValue(BytesReader& reader, const TypeDef& type) {
    switch (type.kind) {
    case ValueKind::Bool:
        return reader.flag();
    case ValueKind::Int:
        return reader.signedNumber();
    case ValueKind::Uint:
        return reader.number();
    case ValueKind::Double:
        return reader.real();
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

AttributeValue getValues(BytesReader& reader, const TypeDef& type) {
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

    std::size_t size() const { return end - begin; }
};

inline std::optional<Entry> findEntry(std::string_view bytes, AttributeIndex index) {
    BytesReader reader(bytes);
    while (!reader.atEnd()) {
        const std::size_t begin = bytes.size() - reader.rest().size();
        const bool isWanted = reader.number() == index;
        const std::string_view values = reader.text();
        if (isWanted) {
            return Entry{values, begin, bytes.size() - reader.rest().size()};
        }
    }
    return std::nullopt;
}

// Appends the entries but for those that are left out. What stays is mostly one piece.
template <class LeftOut>
void appendEntries(std::string& merged, std::string_view bytes, const LeftOut& isLeftOut) {
    const auto append = [&](const char* begin, const char* end) {
        merged.append(begin, static_cast<std::size_t>(end - begin));
    };
    const char* piece = bytes.data();
    BytesReader reader(bytes);
    while (!reader.atEnd()) {
        const char* const entry = reader.rest().data();
        const auto index = static_cast<AttributeIndex>(reader.number());
        if (isLeftOut(index, reader.text())) {
            append(piece, entry);
            piece = reader.rest().data();
        }
    }
    append(piece, bytes.data() + bytes.size());
}

// Puts an entry at the end, in the place of the former one. All or nothing if memory runs out.
void putEntry(std::string& bytes, const std::optional<Entry>& former, AttributeIndex index,
              const TypeDef& type, const AttributeValue& value) {
    const std::size_t size = sizeOf(type, value);
    const std::size_t whole = sizeOfNumber(index) + sizeOfNumber(size) + size;
    bytes.reserve(bytes.size() - (former ? former->size() : 0) + whole);
    if (former) {
        bytes.erase(former->begin, former->size());
    }
    BytesWriter out(bytes);
    out.number(index);
    out.number(size);
    putValues(out, type, value);
}

}

std::optional<AttributeValue> AttributeBytes::read(const ClassDef& moc, std::string_view bytes,
                                                   AttributeIndex index) {
    const auto values = find(bytes, index);
    return values ? std::optional(valuesOf(moc.attributes[index].type, *values)) : std::nullopt;
}

AttributeValue AttributeBytes::valuesOf(const TypeDef& type, std::string_view values) {
    BytesReader reader(values);
    return getValues(reader, type);
}

void AttributeBytes::write(const ClassDef& moc, std::string& bytes, AttributeIndex index,
                           const AttributeValue& value) {
    replace(moc, bytes, index, value, false);
}

void AttributeBytes::writeChange(const ClassDef& moc, std::string& changes, AttributeIndex index,
                                 const AttributeValue& value) {
    replace(moc, changes, index, value, true);
}

void AttributeBytes::replace(const ClassDef& moc, std::string& bytes, AttributeIndex index,
                             const AttributeValue& value, bool keepsEmpty) {
    const auto former = findEntry(bytes, index);
    if (keepsEmpty || !value.values.empty()) {
        putEntry(bytes, former, index, moc.attributes[index].type, value);
    } else if (former) {
        bytes.erase(former->begin, former->size());
    }
}

bool AttributeBytes::has(std::string_view bytes, AttributeIndex index) {
    return find(bytes, index).has_value();
}

std::optional<std::string_view> AttributeBytes::find(std::string_view bytes, AttributeIndex index) {
    const auto entry = findEntry(bytes, index);
    return entry ? std::optional(entry->values) : std::nullopt;
}

std::optional<std::string_view>
AttributeBytes::find(std::string_view bytes, std::string_view changes, AttributeIndex index) {
    if (const auto changed = find(changes, index)) {
        return changed->front() != 0 ? changed : std::nullopt;
    }
    return find(bytes, index);
}

void AttributeBytes::merge(std::string_view bytes, std::string_view changes, std::string& merged) {
    merged.clear();
    merged.reserve(bytes.size() + changes.size());
    appendEntries(merged, bytes,
                  [&](AttributeIndex index, std::string_view) { return has(changes, index); });
    appendEntries(merged, changes,
                  [](AttributeIndex, std::string_view values) { return values.front() == 0; });
}

}
