// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ObjectMaker.h"

#include <iterator>

namespace RanGenerator {
namespace {

using OrvHost::Value;
using OrvHost::ValueKind;

std::vector<Value> toValues(std::vector<std::string> texts) {
    return {std::make_move_iterator(texts.begin()), std::make_move_iterator(texts.end())};
}

}

ObjectMaker& ObjectMaker::add(std::string name, ValueKind kind, std::vector<Value> values) {
    if (!values.empty()) {
        mObject.attributes.emplace_back(std::move(name),
                                        OrvHost::AttributeValue{kind, std::move(values)});
    }
    return *this;
}

ObjectMaker& ObjectMaker::text(std::string name, std::string value) {
    return add(std::move(name), ValueKind::String, {Value(std::move(value))});
}

ObjectMaker& ObjectMaker::texts(std::string name, std::vector<std::string> values) {
    return add(std::move(name), ValueKind::String, toValues(std::move(values)));
}

ObjectMaker& ObjectMaker::choice(std::string name, std::string enumerator) {
    return add(std::move(name), ValueKind::Enumeration, {Value(std::move(enumerator))});
}

ObjectMaker& ObjectMaker::flag(std::string name, bool value) {
    return add(std::move(name), ValueKind::Bool, {Value(value)});
}

ObjectMaker& ObjectMaker::number(std::string name, std::int64_t value) {
    return add(std::move(name), ValueKind::Int, {Value(value)});
}

ObjectMaker& ObjectMaker::count(std::string name, std::uint64_t value) {
    return add(std::move(name), ValueKind::Uint, {Value(value)});
}

ObjectMaker& ObjectMaker::counts(std::string name, const std::vector<std::uint64_t>& values) {
    return add(std::move(name), ValueKind::Uint, {values.begin(), values.end()});
}

ObjectMaker& ObjectMaker::decimal(std::string name, double value) {
    return add(std::move(name), ValueKind::Double, {Value(value)});
}

ObjectMaker& ObjectMaker::references(std::string name, std::vector<std::string> dns) {
    return add(std::move(name), ValueKind::MoRef, toValues(std::move(dns)));
}

ObjectMaker& ObjectMaker::reference(std::string name, std::string dn) {
    return add(std::move(name), ValueKind::MoRef, {Value(std::move(dn))});
}

ObjectMaker& ObjectMaker::structs(std::string name, std::vector<ObjectMaker> values) {
    std::vector<Value> structs;
    structs.reserve(values.size());
    for (ObjectMaker& value : values) {
        structs.emplace_back(OrvHost::StructValue{std::move(value.mObject.attributes)});
    }
    return add(std::move(name), ValueKind::Struct, std::move(structs));
}

}
