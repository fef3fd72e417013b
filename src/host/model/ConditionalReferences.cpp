// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ConditionalReferences.h"

#include "base/Join.h"

#include <algorithm>

namespace OrvHost {

namespace {

/// The ends that are named after an attribute.
std::vector<const AssociationEnd*> endsOf(const Model& model, ClassIndex moc,
                                          const std::string& attribute) {
    std::vector<const AssociationEnd*> ends;
    for (const BiDirAssociation& association : model.biDirAssociations) {
        for (const int far : {1, 0}) {
            const bool isHere = association.ends[1 - far].moc == moc;
            if (isHere && association.ends[far].name == attribute) {
                ends.push_back(&association.ends[far]);
            }
        }
    }
    for (const UniDirAssociation& association : model.uniDirAssociations) {
        if (association.owner == moc && association.end.name == attribute) {
            ends.push_back(&association.end);
        }
    }
    return ends;
}

std::int64_t countOf(const Model& model, const std::vector<Value>& values, ClassIndex moc) {
    return std::count_if(values.begin(), values.end(), [&](const Value& value) {
        const auto* dn = std::get_if<std::string>(&value);
        return dn != nullptr && model.findClassOfDn(*dn) == moc;
    });
}

void check(const Model& model, ClassIndex moc, const AttributeDef& attribute,
           const std::vector<Value>& values, std::vector<std::string>& wrong) {
    const auto add = [&](std::int64_t count, const std::string& what, const Bounds& expected) {
        wrong.push_back(joined({"attribute '", attribute.name, "': ", std::to_string(count), what,
                                ", expected none at all or ", toText(expected)}));
    };
    const auto size = static_cast<std::int64_t>(values.size());
    if (size < attribute.multiplicity.lower) {
        add(size, size == 1 ? " value" : " values", attribute.multiplicity);
        return;
    }
    for (const AssociationEnd* end : endsOf(model, moc, attribute.name)) {
        const std::int64_t count =
            end->cardinality.lower > 0 ? countOf(model, values, end->moc) : 0;
        if (count < end->cardinality.lower) {
            add(count, " of class " + model.classes[end->moc].name, end->cardinality);
        }
    }
}

}

std::vector<std::string>
tooFewReferences(const Model& model, ClassIndex moc,
                 const std::function<AttributeValue(const std::string&)>& valuesOf) {
    std::vector<std::string> wrong;
    for (const AttributeDef& attribute : model.classes[moc].attributes) {
        if (attribute.isConditional && attribute.isWritable &&
            attribute.type.kind == ValueKind::MoRef) {
            const AttributeValue value = valuesOf(attribute.name);
            if (!value.values.empty()) {
                check(model, moc, attribute, value.values, wrong);
            }
        }
    }
    return wrong;
}

}
