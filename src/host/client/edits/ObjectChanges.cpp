// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ObjectChanges.h"

#include "References.h"
#include "base/Counted.h"
#include "base/DnView.h"
#include "client/DnResolver.h"
#include "store/WriteCheck.h"

namespace OrvHost {

namespace {

bool takesObjects(EditKind kind) {
    return kind != EditKind::Delete && kind != EditKind::Remove;
}

}

ObjectChanges::ObjectChanges(const Wish& wish, KnownState& state,
                             std::vector<EditProblem>& problems)
    : mState(state), mProblems(problems) {
    for (const Edit& edit : wish.edits) {
        if (takesObjects(edit.kind)) {
            readObjects(edit);
        } else {
            readDelete(edit);
        }
    }
    for (const Edit& edit : wish.edits) {
        if (edit.kind == EditKind::Replace) {
            findWhatGoes(edit.dn);
        }
    }
    checkParents();
}

void ObjectChanges::readDelete(const Edit& edit) {
    if (mState.classOf(edit.dn) == nullptr) {
        addNoSuchClass(edit.dn);
    } else if (mState.exists(edit.dn)) {
        mDeletedTops.insert(edit.dn);
    } else if (edit.kind == EditKind::Delete) {
        add(EditProblem::Kind::NotThere, edit.dn, {},
            "there is no object " + edit.dn + " to be deleted");
    }
}

void ObjectChanges::readObjects(const Edit& edit) {
    if (!edit.dn.empty() && mState.classOf(edit.dn) == nullptr) {
        addNoSuchClass(edit.dn);
    }
    const WishedObject* firstOutside = nullptr;
    std::size_t outside = 0;
    for (const WishedObject& object : edit.objects) {
        if (DnView(object.dn).isAtOrBelow(DnView(edit.dn))) {
            readObject(edit, object);
            continue;
        }
        firstOutside = firstOutside == nullptr ? &object : firstOutside;
        ++outside;
    }
    if (outside > 0) {
        add(EditProblem::Kind::OutsideEdit, firstOutside->dn, {},
            firstOutside->dn + " is not in the subtree of " + edit.dn +
                ", which the edit is about" +
                (outside > 1 ? "; of all, " + counted(outside, "object") + " are not" : ""));
    }
}

void ObjectChanges::readObject(const Edit& edit, const WishedObject& object) {
    const ClassDef* moc = mState.classOf(object.dn);
    if (moc == nullptr) {
        addNoSuchClass(object.dn);
        return;
    }
    const auto [place, isNew] = mPositions.try_emplace(object.dn, mChanges.size());
    if (isNew) {
        mChanges.push_back({object.dn, moc, false, false, {}, {}});
    }
    ObjectWish& change = mChanges[place->second];
    checkExistence(edit, object, change);
    readAttributes(object, change);
}

void ObjectChanges::checkExistence(const Edit& edit, const WishedObject& object,
                                   ObjectWish& change) {
    const bool exists = mState.exists(object.dn);
    if (edit.kind == EditKind::Create && exists) {
        add(EditProblem::Kind::AlreadyThere, object.dn, {},
            object.dn + " is to be created, but it exists");
    }
    if (edit.kind == EditKind::Set) {
        mSet.insert(object.dn);
        return;
    }
    if (!exists && !change.isCreated) {
        checkName(object.dn, *change.moc);
    }
    change.isCreated = !exists;
    change.isReplaced = change.isReplaced || edit.kind == EditKind::Replace;
}

void ObjectChanges::checkName(const std::string& dn, const ClassDef& moc) {
    try {
        WriteCheck::name(moc, std::string(DnView(dn).last().value()));
    } catch (const HostError& error) {
        add(EditProblem::Kind::WrongValue, dn, {}, dn + ": " + error.what());
    }
}

void ObjectChanges::readAttributes(const WishedObject& object, ObjectWish& change) {
    for (const NamedValue& named : object.attributes) {
        const AttributeDef* def = change.moc->findAttribute(named.first);
        if (def == nullptr) {
            add(EditProblem::Kind::NoSuchAttribute, object.dn, named.first,
                object.dn + ": class " + change.moc->name + " has no attribute " + named.first);
            continue;
        }
        const auto [place, isNew] = change.attributes.insert(named);
        if (isNew || place->second != named.second) {
            checkReferences(change, named);
            checkValue(change, named);
        }
        if (!isNew && place->second != named.second) {
            change.contradicted.insert(named.first);
            add(EditProblem::Kind::Contradiction, object.dn, named.first,
                object.dn + "." + named.first + " is wished with two different values");
        }
    }
}

// The component would write such a reference, but it would not be the one that was meant.
void ObjectChanges::checkReferences(const ObjectWish& change, const NamedValue& named) {
    forEachReference(named.second, [&](const std::string& target) {
        const std::string problem = DnResolver(mState.model()).whyOtherRoot(target);
        if (!problem.empty()) {
            add(EditProblem::Kind::WrongValue, change.dn, named.first,
                change.dn + "." + named.first + " names " + target + ": " + problem);
        }
    });
}

// What an attribute has already may be named, though no client could set it.
void ObjectChanges::checkValue(const ObjectWish& change, const NamedValue& named) {
    const AttributeDef& def = *change.moc->findAttribute(named.first);
    const bool exists = mState.exists(change.dn);
    const bool isAsBefore =
        exists ? mState.value(change.dn, def.name) == named.second : named.second.values.empty();
    if (isAsBefore) {
        return;
    }
    if (def.isGivenByName()) {
        const std::string name(DnView(change.dn).last().value());
        if (named.second != WriteCheck::nameValue(*change.moc, def, name)) {
            add(EditProblem::Kind::WrongValue, change.dn, def.name,
                change.dn + "." + def.name + " names the object and cannot differ from " + name);
        }
        return;
    }
    try {
        WriteCheck::value(*change.moc, *change.moc->findAttributeIndex(def.name), named.second,
                          WriteCheck::Writer::Client);
    } catch (const HostError& error) {
        add(EditProblem::Kind::WrongValue, change.dn, def.name, change.dn + ": " + error.what());
    }
}

// Objects that stay may have children that go.
void ObjectChanges::findWhatGoes(const std::string& dn) {
    if (!dn.empty()) {
        if (!mState.exists(dn)) {
            return;
        }
        if (find(dn) == nullptr) {
            mDeletedTops.insert(dn);
            return;
        }
    }
    for (const std::string& child : mState.children(dn)) {
        findWhatGoes(child);
    }
}

void ObjectChanges::checkParents() {
    for (const ObjectWish& change : mChanges) {
        if (mSet.count(change.dn) != 0 && !change.isCreated && !mState.exists(change.dn)) {
            add(EditProblem::Kind::NotThere, change.dn, {},
                "there is no object " + change.dn + " to be set");
            continue;
        }
        if (const std::string* top = deletedTopOf(change.dn)) {
            add(EditProblem::Kind::Contradiction, change.dn, {},
                change.dn + " is named by the wish, which also deletes " + *top);
            continue;
        }
        const std::string parent = parentOf(change.dn);
        if (!parent.empty() && !existsAfter(parent)) {
            add(EditProblem::Kind::NoParent, change.dn, {},
                change.dn + " has no parent: " + parent + " neither exists nor is created");
        }
    }
}

const ObjectWish* ObjectChanges::find(const std::string& dn) const {
    const auto found = mPositions.find(dn);
    return found != mPositions.end() ? &mChanges[found->second] : nullptr;
}

const std::string* ObjectChanges::deletedTopOf(const std::string& dn) const {
    for (std::string top = dn; !top.empty(); top = parentOf(top)) {
        const auto found = mDeletedTops.find(top);
        if (found != mDeletedTops.end()) {
            return &*found;
        }
    }
    return nullptr;
}

bool ObjectChanges::isDeleted(const std::string& dn) const {
    return mState.exists(dn) && !existsAfter(dn);
}

bool ObjectChanges::existsAfter(const std::string& dn) const {
    return find(dn) != nullptr || (deletedTopOf(dn) == nullptr && mState.exists(dn));
}

void ObjectChanges::addNoSuchClass(const std::string& dn) {
    const ClassDef* none = nullptr;
    add(EditProblem::Kind::NoSuchClass, dn, {}, DnResolver(mState.model()).whyNoDn(dn, &none));
}

void ObjectChanges::add(EditProblem::Kind kind, const std::string& dn, const std::string& attribute,
                        const std::string& text) {
    mProblems.push_back({kind, dn, attribute, text});
}

}
