// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ChangeDifferences.h"

#include "MeIdTranslator.h"
#include "edits/References.h"

namespace OrvHost {

namespace {

AttributeValue external(AttributeValue value) {
    forEachReference(
        value, [](std::string& dn) { dn = Orv::MeIdTranslator::instance()->toExternalDn(dn); });
    return value;
}

ObjectDifference::Kind kindOf(ObjectChange::Kind kind) {
    switch (kind) {
    case ObjectChange::Kind::Deleted:
        return ObjectDifference::Kind::Deleted;
    case ObjectChange::Kind::Created:
        return ObjectDifference::Kind::Created;
    case ObjectChange::Kind::Changed:
        break;
    }
    return ObjectDifference::Kind::Changed;
}

}

std::vector<ObjectDifference> differencesOf(const ChangeSet& changes, const Model& model) {
    std::vector<ObjectDifference> differences;
    for (const ObjectChange& object : changes.objects) {
        ObjectDifference difference{
            kindOf(object.kind), Orv::MeIdTranslator::instance()->toExternalDn(object.dn), {}};
        const auto moc = model.findClass(object.className);
        for (const AttributeChange& attribute : object.attributes) {
            const auto index =
                moc ? model.classes[*moc].findAttributeIndex(attribute.name) : std::nullopt;
            if (index) {
                difference.attributes.push_back({&model.classes[*moc].attributes[*index],
                                                 external(attribute.before),
                                                 external(attribute.after)});
            }
        }
        differences.push_back(std::move(difference));
    }
    return differences;
}

}
