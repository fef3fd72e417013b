// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "GraphModel.h"

#include "model/building/ModelBuilder.h"

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
        .add(ClassDraft("Site").topLevel().key("id"))
        .add(ClassDraft("Mast").key("id").instances(0, 4).attribute(
            AttributeDraft::reference("antennas").many()))
        .add(ClassDraft("Antenna")
                 .key("id")
                 .attribute(AttributeDraft::reference("mast"))
                 .attribute(AttributeDraft::reference("seen").many())
                 .attribute(AttributeDraft::reference("near").many())
                 .attribute(AttributeDraft::reference("heard").many())
                 .attribute(AttributeDraft::reference("any")))
        .contain("Site", "Mast")
        .contain("Site", "Antenna")
        .biDir(ReferenceDraft("Mast", "antennas").counts(1, 9), ReferenceDraft("Antenna", "mast"))
        .biDir(ReferenceDraft("Antenna", "near"), ReferenceDraft("Antenna", "near"))
        .uniDir(ReferenceDraft("Antenna", "seen"), {"Mast"})
        .uniDir(ReferenceDraft("Antenna", "heard").counts(0, 1), {"Mast"})
        .uniDir(ReferenceDraft("Antenna", "heard").counts(0, 9), {"Site"})
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
