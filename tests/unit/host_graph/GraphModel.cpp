// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "GraphModel.h"

#include "model/ModelBuilder.h"

#include <map>

namespace OrvHost {

namespace {

PicturedObject makeObject(const std::string& dn, std::vector<PicturedLink> links) {
    PicturedObject object;
    object.dn = dn;
    std::map<std::string, AttributeValue> references;
    for (const PicturedLink& link : links) {
        references.try_emplace(link.attribute, AttributeValue{ValueKind::MoRef, {}})
            .first->second.values.emplace_back(link.target);
    }
    object.references.assign(references.begin(), references.end());
    object.links = std::move(links);
    return object;
}

}

Model graphModel() {
    return ModelBuilder()
        .add(ClassSpec("Site").topLevel().key("id"))
        .add(ClassSpec("Mast").key("id").instances(0, 4).attribute(
            AttributeSpec::reference("antennas").many()))
        .add(ClassSpec("Antenna")
                 .key("id")
                 .attribute(AttributeSpec::reference("mast"))
                 .attribute(AttributeSpec::reference("seen").many())
                 .attribute(AttributeSpec::reference("near").many())
                 .attribute(AttributeSpec::reference("any")))
        .contain("Site", "Mast")
        .contain("Site", "Antenna")
        .biDir(ReferenceSpec("Mast", "antennas").counts(1, 9), ReferenceSpec("Antenna", "mast"))
        .biDir(ReferenceSpec("Antenna", "near"), ReferenceSpec("Antenna", "near"))
        .uniDir(ReferenceSpec("Antenna", "seen"), {"Mast"})
        .build();
}

void GraphTest::add(const std::string& dn, std::vector<PicturedLink> links) {
    PicturedObject object = makeObject(dn, std::move(links));
    const std::string parent = dn.substr(0, dn.rfind(','));
    for (std::size_t position = 0; position < mPicture.objects.size(); ++position) {
        if (mPicture.objects[position].dn == parent) {
            object.parent = position;
        }
    }
    mPicture.objects.push_back(std::move(object));
}

void GraphTest::addOutside(const std::string& dn, std::vector<PicturedLink> links) {
    mPicture.outside.push_back(makeObject(dn, std::move(links)));
}

}
