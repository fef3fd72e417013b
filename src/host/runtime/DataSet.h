// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_RUNTIME_DATASET_H
#define ORV_HOST_RUNTIME_DATASET_H

#include "PackedValues.h"
#include "audit/InstanceReport.h"
#include "audit/InstanceSource.h"
#include "model/Model.h"
#include "model/RuleCheck.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace OrvHost {

class MoStore;

/// One object as it was read.
struct StartObject {
    std::string dn; ///< internal; here and in values, steps can be Class.key=value, too
    std::vector<NamedValue> attributes;
    SourcePosition source;
};

/// What a check of data found: texts, each with file and line of the object if they are known.
struct DataReport {
    std::vector<std::string> problems;
    /// References that a client may leave as they are: to objects that do not exist, and ends of
    /// associations that were never written.
    std::vector<std::string> notes;
    /// Some problems are about associations: they would be notes if these are taken as they are.
    bool isAboutAssociations = false;
};

/// How data must keep associations.
enum class Associations { InStep, AsTheyAre };

/// Data for the start of a host: collected from any number of files, checked as a whole, completed
/// on request, and put into a store.
///
/// An object with nothing but its name is a mention: files that extend a tree mention the objects
/// above theirs, and all mentions of an object count as one. The order of objects does not matter,
/// except for siblings: the store keeps their order.
///
/// One thread at a time.
class DataSet : public InstanceSource {
public:
    /// Called with the number of objects that are done, and the number of all objects.
    using Progress = std::function<void(std::size_t done, std::size_t all)>;

    /// \p model must outlive this object.
    explicit DataSet(const Model& model) : mModel(model) {}

    void add(StartObject object);
    std::size_t size() const { return mObjects.size(); }

    void visit(const Visitor& visitor) const override;

    /// Everything that is wrong. AsTheyAre is for data that came out of a network: clients can
    /// leave one side of an association without the other, for example by interface version 1.
    DataReport check(Associations associations = Associations::InStep) const;

    /// What does not follow \p rules, one text each, with the file of the object if it is known.
    /// Call it if check() finds nothing: the objects must have their parents.
    std::vector<std::string> checkRules(const RuleCheck& rules) const;

    /// The objects at the top level that no client can name. The DN translator knows one
    /// ManagedElement at the root, which is 1 in internal DNs; all objects below another one are
    /// unreachable, too. One text each, with file and line. Call it while a Host exists, because
    /// the Host gives the translator its identities.
    std::vector<std::string> unreachable() const;

    /// The objects at the top level that appear under another name when children are listed: there
    /// every object has the identity of the ManagedElement. Clients that know their DNs can work
    /// with them. One text each, with file and line.
    std::vector<std::string> misnamedInLists() const;

    /// Adds the missing sides of bidirectional associations and returns a text for each. What it
    /// cannot repair is reported by check.
    std::vector<std::string> repair();

    /// Moves all objects into \p store, parents first. The store must use the same model. Returns
    /// what the store refused, one text each; objects below a refused one are left out without a
    /// text. Call check first: the store does not check associations.
    std::vector<std::string> moveInto(MoStore& store, const Progress& progress = {});

private:
    class View;

    /// An object, in few bytes.
    struct Entry {
        std::string dn;
        std::string attributes; ///< see PackedValues
        const std::string* file = nullptr;
        int line = 0;
        bool isMention = false;
    };

    bool isMention(const StartObject& object) const;
    Entry entryOf(StartObject object);
    std::vector<std::string> repeatedObjects() const;
    /// In front of a message; empty if it is not known.
    std::string place(std::string_view dn) const;
    static std::string place(const Entry& object);
    static std::string positionOf(const Entry& object);
    std::vector<std::string> topLevelDns() const;
    std::vector<std::size_t> parentsFirst() const;

    const Model& mModel;
    PackedValues mValues;
    std::set<std::string> mFiles;
    std::deque<Entry> mObjects; ///< which never move
    /// The first object with each DN; the keys are their texts.
    std::unordered_map<std::string_view, std::size_t, TextHash> mByDn;
};

}

#endif
