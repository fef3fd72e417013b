// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ModelResolver.h"

#include "AssociationResolver.h"
#include "AttributeResolver.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace OrvHost {

namespace {

std::string subjectOf(const ClassDef& moc) {
    return "Class " + moc.name;
}

std::string firstPlace(const SourcePosition& source) {
    return source.file.empty() ? "" : ", first in " + toText(source);
}

}

Model ModelResolver::resolve() {
    enterClasses();
    resolveClasses();
    resolveContainments();
    checkReachability();
    AssociationResolver(mSpec.references, mModel, mProblems).resolve();
    mProblems.throwIfAny();
    return std::move(mModel);
}

void ModelResolver::enterClasses() {
    for (const ClassSpec& spec : mSpec.classes) {
        const ClassDef& moc = spec.def;
        if (!isUsableName(moc.name) || moc.name.find('.') != std::string::npos) {
            mProblems.add(moc.source,
                          {subjectOf(moc),
                           ": this cannot be the name of a class: expected a text "
                           "without blanks, control characters and . , = + \" \\ < > ;"});
        }
        if (moc.name == kAnyClassName) {
            mProblems.add(moc.source, {subjectOf(moc), ": the name stands for any class and cannot "
                                                       "be given to one."});
        }
        const auto index = static_cast<ClassIndex>(mModel.classes.size());
        const auto [known, isNew] = mModel.classByName.emplace(moc.name, index);
        if (isNew) {
            mModel.classes.push_back(moc);
        } else {
            mProblems.add(moc.source, {subjectOf(moc), " is defined more than once",
                                       firstPlace(mModel.classes[known->second].source), "."});
        }
    }
}

void ModelResolver::resolveClasses() {
    std::unordered_set<std::string> resolved;
    for (const ClassSpec& spec : mSpec.classes) {
        if (resolved.insert(spec.def.name).second) {
            resolveClass(spec, mModel.classes[*mModel.findClass(spec.def.name)]);
        }
    }
}

void ModelResolver::resolveClass(const ClassSpec& spec, ClassDef& moc) {
    AttributeResolver attributes(mModel, mProblems);
    moc.attributes =
        attributes.resolveAll(spec.attributes, "Attribute " + moc.name + ".", moc.source);
    mProblems.checkBounds(moc.source, subjectOf(moc) + ", number of objects", moc.instances);
    checkNamingAttribute(spec, moc);
    resolveActions(spec, moc);
}

void ModelResolver::resolveActions(const ClassSpec& spec, ClassDef& moc) {
    AttributeResolver attributes(mModel, mProblems);
    for (const ActionSpec& actionSpec : spec.actions) {
        const std::string subject = "Action " + moc.name + "." + actionSpec.name;
        if (!isUsableName(actionSpec.name)) {
            mProblems.add(moc.source, {subject, ": this cannot be the name of an action."});
        }
        if (moc.findAction(actionSpec.name)) {
            mProblems.add(moc.source, {subject, " is defined more than once."});
        }
        ActionDef action;
        action.name = actionSpec.name;
        action.description = actionSpec.description;
        action.parameters =
            attributes.resolveAll(actionSpec.parameters, subject + ", parameter ", moc.source);
        if (actionSpec.resultSpec) {
            action.result =
                attributes.resolve(*actionSpec.resultSpec, subject + ", result", moc.source);
        }
        moc.actions.push_back(std::move(action));
    }
}

// The naming value is the text behind "=" in a DN: the attribute must be able to hold any one text.
void ModelResolver::checkNamingAttribute(const ClassSpec& spec, ClassDef& moc) {
    const auto isNaming = [](const AttributeDef& attribute) { return attribute.isNaming; };
    const auto naming = std::find_if(moc.attributes.begin(), moc.attributes.end(), isNaming);
    if (naming == moc.attributes.end()) {
        mProblems.add(moc.source, {subjectOf(moc), " has no naming attribute."});
        return;
    }
    if (std::count_if(naming, moc.attributes.end(), isNaming) > 1) {
        mProblems.add(moc.source, {subjectOf(moc), " has more than one naming attribute."});
    }
    moc.namingAttribute = naming->name;
    const ValueKind kind = naming->type.kind;
    if (kind != ValueKind::String && kind != ValueKind::Enumeration) {
        mProblems.add(naming->source,
                      {"Attribute ", spec.def.name, ".", naming->name,
                       ": a naming attribute is a text or an enumeration, this is a ",
                       kindName(kind), "."});
    }
    if (naming->multiplicity.lower > 1 || naming->multiplicity.upper != 1) {
        mProblems.add(naming->source, {"Attribute ", spec.def.name, ".", naming->name,
                                       ": a naming attribute has exactly one value, not ",
                                       toText(naming->multiplicity), "."});
    }
}

void ModelResolver::resolveContainments() {
    for (const ContainmentSpec& spec : mSpec.containments) {
        resolveContainment(spec);
    }
}

void ModelResolver::resolveContainment(const ContainmentSpec& spec) {
    const auto parent = mModel.findClass(spec.parent);
    const auto child = mModel.findClass(spec.child);
    for (const auto& [index, name] :
         {std::pair(parent, spec.parent), std::pair(child, spec.child)}) {
        if (!index) {
            mProblems.add(spec.source, {"Containment of ", spec.child, " in ", spec.parent,
                                        ": the class ", name, " does not exist in the model."});
        }
    }
    if (parent && child && !mModel.classes[*child].mayStandUnder(*parent)) {
        mModel.classes[*parent].children.push_back(*child);
        mModel.classes[*child].parents.push_back(*parent);
    }
}

void ModelResolver::checkReachability() {
    std::vector<bool> isReached(mModel.classes.size());
    std::vector<ClassIndex> toVisit;
    const auto reach = [&](ClassIndex index) {
        if (!isReached[index]) {
            isReached[index] = true;
            toVisit.push_back(index);
        }
    };
    for (ClassIndex index = 0; index < mModel.classes.size(); ++index) {
        if (mModel.classes[index].isTopLevel) {
            reach(index);
        }
    }
    while (!toVisit.empty()) {
        const ClassIndex parent = toVisit.back();
        toVisit.pop_back();
        for (const ClassIndex child : mModel.classes[parent].children) {
            reach(child);
        }
    }
    for (ClassIndex index = 0; index < mModel.classes.size(); ++index) {
        const ClassDef& moc = mModel.classes[index];
        if (!isReached[index]) {
            mProblems.add(moc.source, {subjectOf(moc),
                                       " can have no objects: it is neither a top-level class nor "
                                       "contained, directly or through others, in one."});
        }
    }
}

}
