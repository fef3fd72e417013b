// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Value records at the host's side: made into values and back, and shown as JSON.

#include "cli/output/ValueJson.h"
#include "model/ValueCheck.h"
#include "router/ContainerConversion.h"
#include "support/RecordMaker.h"
#include "support/Require.h"

#include <algorithm>

using namespace Fuzz;
using namespace OrvHost;

namespace {

/// An attribute of many structs, one level deep, so that members are looked up too.
AttributeDef makeDefinition() {
    AttributeDef def;
    def.name = "value";
    def.multiplicity.upper = kUnbounded;
    def.type.kind = ValueKind::Struct;
    AttributeDef inner;
    inner.multiplicity.upper = kUnbounded;
    inner.type.kind = ValueKind::MoRef;
    inner.name = "a";
    def.type.members.push_back(inner);
    return def;
}

template <class Container>
void checkJson(const Container& container) {
    static const AttributeDef kDefinition = makeDefinition();
    for (const AttributeDef* def : {&kDefinition, static_cast<const AttributeDef*>(nullptr)}) {
        const std::string line = toLine(toJson(toReadValue(&container, def)));
        require(line.find('\n') == std::string::npos, "more than one line");
        require(toLine(JsonValue::parse(line)) == line, "read otherwise: " + line);
    }
}

// NaN is not equal to itself, but its text is always the same.
bool areSame(const AttributeValue& left, const AttributeValue& right) {
    const auto haveSameText = [](const Value& one, const Value& other) {
        return toText(one) == toText(other);
    };
    return left == right || (left.kind == right.kind &&
                             std::equal(left.values.begin(), left.values.end(),
                                        right.values.begin(), right.values.end(), haveSameText));
}

// A refused record is refused with a reason; what is taken comes back the same.
template <class Records>
void checkValue(const typename Records::Container& container) {
    using Conversion = ContainerConversion<Records>;
    try {
        const AttributeValue value = Conversion::toValue(container);
        require(value.values.size() == container.count, "the number of values changes");
        Orv::AutoMemory memory;
        typename Records::Container again{};
        Conversion::fill(again, value, memory);
        require(areSame(Conversion::toValue(again), value), "a value does not come back");
        whyRefused(makeDefinition(), value);
    } catch (const HostError& error) {
        require(error.code() == OrvInvalidArgument, "refused with another code");
        require(error.what()[0] != '\0', "refused without a reason");
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ByteSource source(data, size);
    if (source.byte() % 2 == 0) {
        RecordMaker<Version3> maker(source);
        const auto& container = *maker.container();
        checkValue<Records3>(container);
        checkJson(container);
    } else {
        RecordMaker<Version1> maker(source);
        const auto& container = *maker.container();
        checkValue<Records1>(container);
        checkJson(container);
    }
    return 0;
}
