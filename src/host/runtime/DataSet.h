// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_RUNTIME_DATASET_H
#define ORV_HOST_RUNTIME_DATASET_H

#include "model/InstanceReport.h"
#include "model/InstanceSource.h"
#include "model/Model.h"

#include <cstddef>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace OrvHost {

class MoStore;

/// One object as it was read.
struct StartObject {
    std::string dn; ///< internal
    std::vector<NamedValue> attributes;
    SourcePosition source;
};

/// Data for the start of a host: gathered from any number of files, checked as a whole, completed
/// if that is wanted, and put into a store.
///
/// An object that tells nothing but its name is a mention: files that add to a tree mention the
/// objects above theirs, and all mentions of an object are one. The order of objects does not
/// matter, but for that of siblings, which the store keeps.
///
/// One thread at a time.
class DataSet : public InstanceSource {
public:
    /// Called with the number of objects that are done, and that of all.
    using Progress = std::function<void(std::size_t done, std::size_t all)>;

    /// \p model must outlive this object.
    explicit DataSet(const Model& model) : mModel(model) {}

    void add(StartObject object);
    std::size_t size() const { return mObjects.size(); }

    void visit(const Visitor& visitor) const override;

    /// All that is wrong, one text each, with file and line of the object where they are known.
    /// Empty: the data is as the component would have left it.
    std::vector<std::string> check() const;

    /// The objects at the top level that no client can name: the translator of DNs knows one
    /// ManagedElement at the root, which is 1 inside, and whatever stands below another is out of
    /// reach as well. One text each, with file and line. Ask while a Host stands: it tells the
    /// translator its identities.
    std::vector<std::string> unreachable() const;

    /// The objects at the top level that a listing shows under another name: there every object
    /// bears the identity of the ManagedElement. Clients that know their DNs can work with them.
    /// One text each, as above.
    std::vector<std::string> misnamedInLists() const;

    /// Adds the missing sides of bidirectional associations and returns a text for each. What it
    /// cannot mend is told by check.
    std::vector<std::string> repair();

    /// Puts all objects into \p store, which must be over the same model, parents first, and keeps
    /// none. Returns what the store refused, as check does; objects below a refused one are left
    /// out without a word. Call check first: the store does not look at associations.
    std::vector<std::string> moveInto(MoStore& store, const Progress& progress = {});

private:
    bool isMention(const StartObject& object) const;
    std::string place(const std::string& dn) const;
    std::vector<std::string> topLevelDns() const;
    std::vector<std::size_t> parentsFirst() const;

    const Model& mModel;
    std::vector<StartObject> mObjects;
    std::unordered_map<std::string, std::size_t> mByDn; ///< the first object of each DN
};

}

#endif
