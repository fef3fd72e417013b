// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "PackedValues.h"

#include "store/AttributeBytes.h"
#include "store/BytesWriter.h"

#include <cstddef>
#include <variant>

namespace OrvHost {

// Lists of named values: their number, then for each its name, its kind, the number of its values
// and the values. A value is the position of its alternative in Value, and what it holds.

struct PackedValues::Writer {
    PackedValues& packed;
    BytesWriter out;

    void all(const std::vector<NamedValue>& values) {
        out.number(values.size());
        for (const NamedValue& named : values) {
            out.number(packed.numberOf(named.first));
            out.number(static_cast<std::uint64_t>(named.second.kind));
            out.number(named.second.values.size());
            for (const Value& value : named.second.values) {
                out.number(value.index());
                std::visit(*this, value);
            }
        }
    }
    void operator()(bool flag) { out.flag(flag); }
    void operator()(std::int64_t number) { out.signedNumber(number); }
    void operator()(std::uint64_t number) { out.number(number); }
    void operator()(double number) { out.real(number); }
    void operator()(const std::string& text) { out.text(text); }
    void operator()(const StructValue& value) { all(value.members); }
};

struct PackedValues::Reader {
    const PackedValues& packed;
    BytesReader in;

    void all(std::vector<NamedValue>& values) {
        values.resize(in.number());
        for (NamedValue& named : values) {
            named.first = *packed.mNames[in.number()];
            named.second.kind = static_cast<ValueKind>(in.number());
            named.second.values.resize(in.number());
            for (Value& value : named.second.values) {
                one(value);
            }
        }
    }
    void one(Value& value) {
        switch (in.number()) {
        case 0:
            value = in.flag();
            return;
        case 1:
            value = in.signedNumber();
            return;
        case 2:
            value = in.number();
            return;
        case 3:
            value = in.real();
            return;
        case 4:
            text(value, in.text());
            return;
        default:
            all(value.emplace<StructValue>().members);
            return;
        }
    }
    // Into the memory that a text of the same place had before.
    static void text(Value& value, std::string_view text) {
        if (auto* const former = std::get_if<std::string>(&value)) {
            former->assign(text);
        } else {
            value.emplace<std::string>(text);
        }
    }
};

std::uint32_t PackedValues::numberOf(const std::string& name) {
    const auto known = mNumbers.find(name);
    if (known != mNumbers.end()) {
        return known->second;
    }
    mNames.reserve(mNames.size() + 1);
    const auto number = static_cast<std::uint32_t>(mNames.size());
    mNames.push_back(&mNumbers.emplace(name, number).first->first);
    return number;
}

std::string PackedValues::pack(const std::vector<NamedValue>& values) {
    mBuffer.clear();
    Writer{*this, BytesWriter(mBuffer)}.all(values);
    return {mBuffer.data(), mBuffer.size()}; // no larger than it must be
}

void PackedValues::unpack(std::string_view bytes, std::vector<NamedValue>& values) const {
    Reader{*this, BytesReader(bytes)}.all(values);
}

}
