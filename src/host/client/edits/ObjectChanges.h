// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_EDITS_OBJECTCHANGES_H
#define ORV_HOST_CLIENT_EDITS_OBJECTCHANGES_H

#include "EditProblem.h"
#include "KnownState.h"
#include "Wish.h"

#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace OrvHost {

/// What a wish says of one object, all its edits together.
struct ObjectWish {
    std::string dn;
    const ClassDef* moc = nullptr;
    bool isCreated = false;
    bool isReplaced = false; ///< what the wish does not name is taken away
    std::map<std::string, AttributeValue> attributes;
    /// Attributes that two edits wish differently. They are a problem and are not looked at again,
    /// so that no edit counts more than another.
    std::set<std::string> contradicted;
};

/// What a wish says of objects: which are named, which go, and what is wrong with that. One thread.
class ObjectChanges {
public:
    /// Reads all of \p wish. Problems go to \p problems. All arguments are borrowed.
    ObjectChanges(const Wish& wish, KnownState& state, std::vector<EditProblem>& problems);

    /// The named objects whose class is known, in the order of the wish.
    const std::vector<ObjectWish>& all() const { return mChanges; }
    /// What the wish says of an object; null: nothing.
    const ObjectWish* find(const std::string& dn) const;

    /// The tops of the subtrees that go.
    const std::set<std::string>& deletedTops() const { return mDeletedTops; }
    /// True if the object existed and goes. One that the wish deletes and names is a problem of its
    /// own, and not taken as deleted.
    bool isDeleted(const std::string& dn) const;
    /// True if the object is there afterwards.
    bool existsAfter(const std::string& dn) const;

private:
    void readDelete(const Edit& edit);
    void readObjects(const Edit& edit);
    void readObject(const Edit& edit, const WishedObject& object);
    void checkExistence(const Edit& edit, const WishedObject& object, ObjectWish& change);
    void checkName(const std::string& dn, const ClassDef& moc);
    void readAttributes(const WishedObject& object, ObjectWish& change);
    void checkReferences(const ObjectWish& change, const NamedValue& named);
    void checkValue(const ObjectWish& change, const NamedValue& named);
    void findWhatGoes(const std::string& dn);
    void checkParents();
    const std::string* deletedTopOf(const std::string& dn) const;
    void addNoSuchClass(const std::string& dn);
    void add(EditProblem::Kind kind, const std::string& dn, const std::string& attribute,
             const std::string& text);

    KnownState& mState;
    std::vector<EditProblem>& mProblems;
    std::vector<ObjectWish> mChanges;
    std::unordered_map<std::string, std::size_t> mPositions;
    std::set<std::string> mDeletedTops;
    std::set<std::string> mSet; ///< those that must exist or be created
};

}

#endif
