// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_CLASSNAMES_H
#define ORV_HOST_YANG_SCHEMA_CLASSNAMES_H

#include "yang/schema/ModelNotes.h"
#include "yang/source/SourceLocator.h"

#include <libyang/libyang.h>

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace OrvHost {

/// Decides which lists are one class and what each class is called, before anything else is read.
///
/// Lists are one class if they come from one statement, or if they have one name in one module and
/// look the same. A class has the name of its lists if no other class has it. Otherwise it is
/// called "module:name", or, if its own module has several of that name, "parent:name", with as
/// many ancestors as are needed, and with the module in front if that is not enough.
class ClassNames {
public:
    ClassNames(const SourceLocator& locator, ModelNotes& notes)
        : mLocator(locator), mNotes(notes) {}

    /// Call it once, with all modules in the order of loading.
    void collect(const std::vector<const lys_module*>& modules);

    /// The name of the class that a list makes; \p list must be one of the collected modules.
    const std::string& of(const lysc_node* list) const;

    /// The names of the classes that a text can mean: a class's own name, that of a list, or
    /// "module:list". A list's name means that of \p module if several modules have one.
    std::vector<std::string> find(const std::string& text, const std::string& module) const;

    /// The module of the first list of a class of the model.
    std::string moduleOf(const std::string& className) const;

private:
    /// The lists that are one class.
    struct Class {
        std::string bareName;
        std::vector<const lysc_node*> places;
        std::set<const void*> statements;    ///< the parsed lists
        std::vector<std::string> candidates; ///< for the name, the shortest first
        std::size_t chosen = 0;              ///< in candidates
        std::vector<std::string> written;    ///< the candidates as the modules have the names

        const lysc_node* first() const { return places.front(); }
        const std::string& name() const { return candidates[chosen]; }
        bool isOf(const std::string& module) const;
    };

    void collectTop(const lys_module* module, const lysc_node* parent);
    void collectList(const lysc_node* list);
    void enter(const lysc_node* list);
    Class* findSame(const lysc_node* list);
    void noteMerge(const lysc_node* list, const Class& moc, bool isOneStatement);
    const std::string& shapeOf(const lysc_node* list);
    void findCandidates();
    void makeUnique();
    void tellApart(const std::vector<Class*>& classes);
    void noteChangedNames();

    const SourceLocator& mLocator;
    ModelNotes& mNotes;
    std::vector<Class> mClasses;
    std::map<std::string, std::vector<std::size_t>> mByBareName; ///< positions in mClasses
    std::unordered_map<const lysc_node*, std::size_t> mClassOf;
    std::unordered_map<const lysc_node*, std::string> mShapes; ///< of those that were compared
};

}

#endif
