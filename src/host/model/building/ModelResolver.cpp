// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ModelResolver.h"

#include "AssociationResolver.h"
#include "AttributeResolver.h"
#include "base/RootObject.h"
#include "model/KeyValues.h"
#include "model/ValueCheck.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace OrvHost {

namespace {

std::string subjectOf(const ClassDef& moc) {
    return "Class " + moc.name;
}

constexpr const char* kNameIsTaken =
    ": this is the name of the naming attribute, which is the class's name and \"Id\"; expected "
    "another name.";

std::string firstPlace(const SourcePosition& source) {
    return source.file.empty() ? "" : ", first in " + toText(source);
}

}

Model ModelResolver::resolve() {
    enterClasses();
    resolveClasses();
    resolveContainments();
    checkReachability();
    AssociationResolver(mDraft.references, mModel, mProblems).resolve();
    mProblems.throwIfAny();
    return std::move(mModel);
}

void ModelResolver::enterClasses() {
    for (const ClassDraft& draft : mDraft.classes) {
        const ClassDef& moc = draft.def;
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
            if (moc.isTopLevel) {
                mModel.childClasses.add(ChildClassTable::topLevel, moc.name, index);
            }
        } else {
            mProblems.add(moc.source, {subjectOf(moc), " is defined more than once",
                                       firstPlace(mModel.classes[known->second].source), "."});
        }
    }
}

void ModelResolver::resolveClasses() {
    std::unordered_set<std::string> resolved;
    for (const ClassDraft& draft : mDraft.classes) {
        if (resolved.insert(draft.def.name).second) {
            resolveClass(draft, mModel.classes[*mModel.findClass(draft.def.name)]);
        }
    }
}

void ModelResolver::resolveClass(const ClassDraft& draft, ClassDef& moc) {
    AttributeResolver attributes(mModel, mProblems);
    moc.attributes =
        attributes.resolveAll(draft.attributes, "Attribute " + moc.name + ".", moc.source);
    mProblems.checkBounds(moc.source, subjectOf(moc) + ", number of objects", moc.instances);
    addNamingAttribute(moc);
    checkNamingAttribute(draft, moc);
    checkRoot(moc);
    resolveActions(draft, moc);
    checkChoices(moc);
}

void ModelResolver::checkChoices(const ClassDef& moc) {
    for (const ChoiceDef& choice : moc.choices) {
        for (const ChoiceCase& one : choice.cases) {
            for (const std::string& name : one.attributes) {
                if (moc.findAttribute(name) == nullptr) {
                    mProblems.add(moc.source, {subjectOf(moc), ", choice ", choice.name,
                                               ": the class has no attribute ", name, "."});
                }
            }
        }
    }
}

void ModelResolver::resolveActions(const ClassDraft& draft, ClassDef& moc) {
    AttributeResolver attributes(mModel, mProblems);
    for (const ActionDraft& actionDraft : draft.actions) {
        const std::string subject = "Action " + moc.name + "." + actionDraft.name;
        if (!isUsableName(actionDraft.name)) {
            mProblems.add(moc.source, {subject, ": this cannot be the name of an action."});
        }
        if (moc.findAction(actionDraft.name)) {
            mProblems.add(moc.source, {subject, " is defined more than once."});
        }
        ActionDef action;
        action.name = actionDraft.name;
        action.description = actionDraft.description;
        action.parameters =
            attributes.resolveAll(actionDraft.parameters, subject + ", parameter ", moc.source);
        if (actionDraft.resultDraft) {
            action.result =
                attributes.resolve(*actionDraft.resultDraft, subject + ", result", moc.source);
        }
        moc.actions.push_back(std::move(action));
    }
}

// Several keys together name the object through one attribute that holds all of them.
void ModelResolver::addNamingAttribute(ClassDef& moc) {
    std::vector<AttributeDef> keys;
    for (const AttributeDef& attribute : moc.attributes) {
        if (!attribute.keyPosition) {
            continue;
        }
        const ValueKind kind = attribute.type.kind;
        if (kind != ValueKind::String && kind != ValueKind::Enumeration) {
            mProblems.add(attribute.source,
                          {"Attribute ", moc.name, ".", attribute.name,
                           ": a key is a text or an enumeration, this is a ", kindName(kind), "."});
        }
        keys.push_back(attribute);
    }
    if (keys.empty()) {
        return;
    }
    std::sort(keys.begin(), keys.end(), [](const AttributeDef& left, const AttributeDef& right) {
        return left.keyPosition < right.keyPosition;
    });
    if (keys.size() == 1) {
        mProblems.add(moc.source, {subjectOf(moc), " has one of several keys, ", keys[0].name,
                                   ", and no other: a single key is declared with key()."});
        return;
    }
    AttributeDef naming;
    for (const AttributeDef& key : keys) {
        moc.keys.push_back(key.name);
        naming.type.description += (naming.type.description.empty() ? "" : "|") + key.name;
    }
    naming.isNaming = true;
    naming.multiplicity = {1, 1};
    naming.source = moc.source;
    naming.type.check = [keys](const std::string& name) { return whyNoKeys(keys, name); };
    moc.attributes.insert(moc.attributes.begin(), std::move(naming));
}

// The naming value is the text after "=" in a DN, so the attribute must be able to hold any single
// text.
void ModelResolver::checkNamingAttribute(const ClassDraft& draft, ClassDef& moc) {
    const auto isNaming = [](const AttributeDef& attribute) { return attribute.isNaming; };
    const auto naming = std::find_if(moc.attributes.begin(), moc.attributes.end(), isNaming);
    if (naming == moc.attributes.end()) {
        mProblems.add(moc.source, {subjectOf(moc), " has no naming attribute."});
        return;
    }
    if (std::count_if(naming, moc.attributes.end(), isNaming) > 1) {
        mProblems.add(moc.source, {subjectOf(moc), " has more than one naming attribute."});
        return;
    }
    const ValueKind kind = naming->type.kind;
    if (kind != ValueKind::String && kind != ValueKind::Enumeration) {
        mProblems.add(naming->source,
                      {"Attribute ", draft.def.name, ".", naming->name,
                       ": a naming attribute is a text or an enumeration, this is a ",
                       kindName(kind), "."});
    }
    if (naming->multiplicity.lower > 1 || naming->multiplicity.upper != 1) {
        mProblems.add(naming->source, {"Attribute ", draft.def.name, ".", naming->name,
                                       ": a naming attribute has exactly one value, not ",
                                       toText(naming->multiplicity), "."});
    }
    nameNamingAttribute(moc, static_cast<std::size_t>(naming - moc.attributes.begin()));
}

// The component writes DNs of other forms if a naming attribute has another name.
void ModelResolver::nameNamingAttribute(ClassDef& moc, std::size_t position) {
    AttributeDef& naming = moc.attributes[position];
    moc.namingAttribute = moc.name.empty() ? naming.name : defaultNamingAttribute(moc.name);
    if (moc.keys.empty()) {
        moc.keys.push_back(naming.name);
    }
    for (std::size_t other = 0; other < moc.attributes.size(); ++other) {
        if (other != position && moc.attributes[other].name == moc.namingAttribute) {
            mProblems.add(moc.attributes[other].source,
                          {"Attribute ", moc.name, ".", moc.namingAttribute, kNameIsTaken});
        }
    }
    naming.name = moc.namingAttribute;
}

// No client could create or name the element at the root if its key did not permit the name that it
// has in the host.
void ModelResolver::checkRoot(const ClassDef& moc) {
    const AttributeDef* naming = moc.findAttribute(moc.namingAttribute);
    if (moc.name != kRootClass || !moc.isTopLevel || naming == nullptr) {
        return;
    }
    const std::string reason = whyRefused(naming->type, Value(std::string(kRootName)));
    if (!reason.empty()) {
        mProblems.add(naming->source,
                      {subjectOf(moc), ": this is the element at the root, which every host calls ",
                       kRootClass, "=", kRootName, " inside; expected a single key that permits ",
                       kRootName, ": ", reason});
    }
}

void ModelResolver::resolveContainments() {
    for (const ContainmentDraft& draft : mDraft.containments) {
        resolveContainment(draft);
    }
}

void ModelResolver::resolveContainment(const ContainmentDraft& draft) {
    const auto parent = mModel.findClass(draft.parent);
    const auto child = mModel.findClass(draft.child);
    for (const auto& [index, name] :
         {std::pair(parent, draft.parent), std::pair(child, draft.child)}) {
        if (!index) {
            mProblems.add(draft.source, {"Containment of ", draft.child, " in ", draft.parent,
                                         ": the class ", name, " does not exist in the model."});
        }
    }
    if (parent && child && !mModel.classes[*child].mayStandUnder(*parent)) {
        mModel.classes[*parent].children.push_back(*child);
        ClassDef& moc = mModel.classes[*child];
        moc.parents.push_back(*parent);
        auto& sorted = moc.sortedParents;
        sorted.insert(std::upper_bound(sorted.begin(), sorted.end(), *parent), *parent);
        mModel.childClasses.add(*parent, moc.name, *child);
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
