// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ClassNames.h"

#include "model/Model.h"
#include "yang/schema/ClassNodes.h"
#include "yang/schema/ListShape.h"

#include <algorithm>

namespace OrvHost {
namespace {

/// A name as it can be in the name of a class, which ends at the first "." in a DN.
std::string usable(std::string name) {
    std::replace(name.begin(), name.end(), '.', '_');
    return name;
}

const lysc_node* parentOf(const lysc_node* node) {
    const lysc_node* parent = node->parent;
    while (parent != nullptr && (parent->nodetype & (LYS_CHOICE | LYS_CASE)) != 0) {
        parent = parent->parent;
    }
    return parent;
}

/// "parent:name", "grandparent:parent:name" and so on.
std::vector<std::string> namesByParents(const lysc_node* list) {
    std::vector<std::string> names;
    std::string name = list->name;
    for (const lysc_node* node = parentOf(list); node != nullptr; node = parentOf(node)) {
        name.insert(0, std::string(node->name) + ":");
        names.push_back(name);
    }
    return names;
}

/// The name with all ancestors, each with its module: no other list has it.
std::string wholeName(const lysc_node* list) {
    std::string name;
    for (const lysc_node* node = list; node != nullptr; node = parentOf(node)) {
        name.insert(0,
                    std::string(node->module->name) + ":" + node->name + (name.empty() ? "" : ":"));
    }
    return name;
}

}

bool ClassNames::Class::isOf(const std::string& module) const {
    return std::any_of(places.begin(), places.end(),
                       [&](const lysc_node* list) { return list->module->name == module; });
}

void ClassNames::collect(const std::vector<const lys_module*>& modules) {
    for (const lys_module* module : modules) {
        collectTop(module, nullptr);
    }
    findCandidates();
    makeUnique();
    noteChangedNames();
}

void ClassNames::collectTop(const lys_module* module, const lysc_node* parent) {
    const lysc_node* node = nullptr;
    while ((node = lys_getnext(node, parent, parent == nullptr ? module->compiled : nullptr, 0)) !=
           nullptr) {
        if (isClass(node)) {
            collectList(node);
        } else if (node->nodetype == LYS_CONTAINER) {
            collectTop(module, node);
        }
    }
}

void ClassNames::collectList(const lysc_node* list) {
    enter(list);
    const lysc_node* node = nullptr;
    while ((node = lys_getnext(node, list, nullptr, 0)) != nullptr) {
        if (isClass(node)) {
            collectList(node);
        }
    }
}

void ClassNames::enter(const lysc_node* list) {
    Class* known = findSame(list);
    if (known == nullptr) {
        std::vector<std::size_t>& namesakes = mByBareName[usable(list->name)];
        namesakes.push_back(mClasses.size());
        known = &mClasses.emplace_back();
        known->bareName = usable(list->name);
        if (known->bareName != list->name) {
            mNotes.count("a class cannot have a \".\" in its name, which ends there in a DN, so "
                         "this one is called with \"_\"",
                         mLocator.of(list), pathOf(list));
        }
    } else {
        noteMerge(list, *known, known->statements.count(list->priv) > 0);
    }
    mClassOf.emplace(list, static_cast<std::size_t>(known - mClasses.data()));
    known->places.push_back(list);
    known->statements.insert(list->priv);
}

ClassNames::Class* ClassNames::findSame(const lysc_node* list) {
    const auto namesakes = mByBareName.find(usable(list->name));
    if (namesakes == mByBareName.end()) {
        return nullptr;
    }
    // A grouping that several modules use makes one class, although each module has its own copy.
    for (const std::size_t position : namesakes->second) {
        if (mClasses[position].statements.count(list->priv) > 0) {
            return &mClasses[position];
        }
    }
    for (const std::size_t position : namesakes->second) {
        Class& moc = mClasses[position];
        const bool isSame = std::string_view(moc.first()->name) == list->name &&
                            moc.first()->module == list->module &&
                            shapeOf(moc.first()) == shapeOf(list);
        if (isSame) {
            return &moc;
        }
    }
    return nullptr;
}

void ClassNames::noteMerge(const lysc_node* list, const Class& moc, bool isOneStatement) {
    if (!isOneStatement) {
        mNotes.count("this list and " + pathOf(moc.first()) +
                         " are one class, since they have one name and look the same",
                     mLocator.of(list), pathOf(list));
    } else if (shapeOf(list) != shapeOf(moc.first())) {
        mNotes.count("this list and " + pathOf(moc.first()) +
                         " come from one statement and are one class, although they differ: "
                         "objects can have what either has",
                     mLocator.of(list), pathOf(list));
    }
}

const std::string& ClassNames::shapeOf(const lysc_node* list) {
    const auto [known, isNew] = mShapes.try_emplace(list);
    if (isNew) {
        known->second = shapeTextOf(list);
    }
    return known->second;
}

void ClassNames::findCandidates() {
    for (const auto& [bareName, namesakes] : mByBareName) {
        for (const std::size_t position : namesakes) {
            Class& moc = mClasses[position];
            if (namesakes.size() == 1 && bareName != kAnyClassName) {
                moc.candidates = {bareName};
                continue;
            }
            const lysc_node* list = moc.first();
            const auto sameModule = [&](std::size_t other) {
                return mClasses[other].first()->module == list->module;
            };
            const std::string module = std::string(list->module->name) + ":";
            const std::vector<std::string> byParents = namesByParents(list);
            if (std::count_if(namesakes.begin(), namesakes.end(), sameModule) == 1) {
                moc.candidates = {module + list->name};
            } else {
                moc.candidates = byParents;
            }
            moc.candidates.push_back(module + (byParents.empty() ? list->name : byParents.back()));
            moc.candidates.push_back(wholeName(list));
            moc.written = moc.candidates;
            std::transform(moc.candidates.begin(), moc.candidates.end(), moc.candidates.begin(),
                           usable);
        }
    }
}

/// Lengthens the names that are equal until none are.
void ClassNames::makeUnique() {
    for (bool isChanged = true; isChanged;) {
        isChanged = false;
        std::map<std::string, std::vector<Class*>> byName;
        for (Class& moc : mClasses) {
            byName[moc.name()].push_back(&moc);
        }
        for (const auto& [name, classes] : byName) {
            if (classes.size() > 1) {
                tellApart(classes);
                isChanged = true;
            }
        }
    }
}

/// Names with all ancestors can still be equal, since "." has become "_" in them.
void ClassNames::tellApart(const std::vector<Class*>& classes) {
    bool isLonger = false;
    for (Class* moc : classes) {
        if (moc->chosen + 1 < moc->candidates.size()) {
            ++moc->chosen;
            isLonger = true;
        }
    }
    for (std::size_t i = 1; i < classes.size() && !isLonger; ++i) {
        Class& moc = *classes[i];
        moc.candidates.push_back(moc.candidates.back() + "_" + std::to_string(i + 1));
        ++moc.chosen;
        const lysc_node* list = moc.first();
        mNotes.count("only a \".\" makes the name of this class another one than that of a second "
                     "class, so it has a number at its end",
                     mLocator.of(list), pathOf(list));
    }
}

/// That the list's own name is changed is noted before; here it is about what is put in front of
/// it.
void ClassNames::noteChangedNames() {
    for (const Class& moc : mClasses) {
        const lysc_node* list = moc.first();
        if (moc.chosen >= moc.written.size()) {
            continue;
        }
        const std::string& written = moc.written[moc.chosen];
        const std::string front =
            written.substr(0, written.size() - std::string(list->name).size());
        if (front != usable(front)) {
            mNotes.count("a class cannot have a \".\" in its name, which ends there in a DN, so "
                         "this one is called \"" +
                             moc.name() + "\" and not \"" + written + "\"",
                         mLocator.of(list), pathOf(list));
        }
    }
}

const std::string& ClassNames::of(const lysc_node* list) const {
    return mClasses[mClassOf.at(list)].name();
}

std::vector<std::string> ClassNames::find(const std::string& text,
                                          const std::string& module) const {
    std::vector<std::string> ofModule;
    std::vector<std::string> ofAny;
    for (const Class& moc : mClasses) {
        if (moc.name() == text) {
            return {text};
        }
        const std::string& bareName = moc.bareName;
        const auto isQualifiedBy = [&](const lysc_node* list) {
            return text == std::string(list->module->name) + ":" + bareName;
        };
        if (bareName == text) {
            (moc.isOf(module) ? ofModule : ofAny).push_back(moc.name());
        } else if (std::any_of(moc.places.begin(), moc.places.end(), isQualifiedBy)) {
            ofAny.push_back(moc.name());
        }
    }
    return ofModule.empty() ? ofAny : ofModule;
}

std::string ClassNames::moduleOf(const std::string& className) const {
    const auto found = std::find_if(mClasses.begin(), mClasses.end(),
                                    [&](const Class& moc) { return moc.name() == className; });
    return found != mClasses.end() ? found->first()->module->name : "";
}

}
