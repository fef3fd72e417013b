// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InstancePlan.h"

namespace OrvHost {

InstancePlan::InstancePlan(const Model& model) : mClasses(model.classes.size()) {
    for (ClassIndex index = 0; index < model.classes.size(); ++index) {
        Class& plan = mClasses[index];
        for (const AttributeDef& attribute : model.classes[index].attributes) {
            plan.byName.emplace(attribute.name, plan.attributes.size());
            plan.attributes.push_back({&attribute, {}, attribute.isRequired()});
        }
        const ClassDef& moc = model.classes[index];
        for (const std::string& key : moc.keys) { // the own name of a single key
            const auto position = moc.findAttributeIndex(key);
            if (position) {
                plan.byName.emplace(key, *position);
            }
        }
    }
    addEnds(model);
}

void InstancePlan::addEnds(const Model& model) {
    for (std::size_t index = 0; index < model.biDirAssociations.size(); ++index) {
        const auto& ends = model.biDirAssociations[index].ends;
        const bool isSymmetric = ends[0].moc == ends[1].moc && ends[0].name == ends[1].name;
        find(ends[0].moc, ends[1].name).ends.push_back({&ends[1], true, index, 1});
        if (!isSymmetric) {
            find(ends[1].moc, ends[0].name).ends.push_back({&ends[0], true, index, 0});
        }
    }
    for (const UniDirAssociation& association : model.uniDirAssociations) {
        find(association.owner, association.end.name).ends.push_back({&association.end});
    }
    for (Class& plan : mClasses) {
        for (Attribute& attribute : plan.attributes) {
            for (const End& end : attribute.ends) {
                const bool isDemanded = end.end->cardinality.lower > 0 &&
                                        attribute.def->isWritable && !attribute.def->isConditional;
                attribute.isExpected = attribute.isExpected || isDemanded;
            }
        }
    }
}

InstancePlan::Attribute& InstancePlan::find(ClassIndex owner, const std::string& name) {
    Class& plan = mClasses[owner];
    return plan.attributes[plan.byName.at(name)];
}

}
