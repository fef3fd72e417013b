// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_CLASSGRAPH_H
#define ORV_HOST_CLI_GRAPH_CLASSGRAPH_H

#include "DotText.h"
#include "model/Model.h"
#include "repository/ModelDescription.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace OrvHost {

/// Classes with containment and associations as DOT text. A bidirectional association is one line
/// with two arrowheads, a unidirectional one is dashed. Classes outside the chosen part are drawn
/// if an association leads to them. One thread.
class ClassGraph {
public:
    /// Draws the classes from \p from (empty: from the top level) and \p depth levels below it. \p
    /// classes are those of \p model; all arguments are borrowed and must outlive the graph.
    ClassGraph(const Model& model, const std::vector<ClassDescription>& classes,
               const std::string& from, std::uint64_t depth);

    std::size_t classes() const { return mChosen.size(); }
    /// The number of lines that show associations.
    std::size_t associations() const { return mAssociations; }
    /// "4 classes, 1 association".
    std::string summary() const;
    const std::string& dot() const { return mDot; }

private:
    /// Owner, attribute, target.
    using Direction = std::tuple<std::string, std::string, std::string>;

    void choose(const std::string& from, std::uint64_t depth);
    std::string draw();
    void drawContainment(DotText& dot, const ClassDescription& moc);
    void drawAssociation(DotText& dot, const ReferenceDescription& reference);
    const ReferenceDescription* oppositeOf(const ReferenceDescription& reference) const;
    /// The node of a class; draws the class if it is not drawn yet.
    std::string nodeOf(DotText& dot, const std::string& name);

    const Model& mModel;
    const std::vector<ClassDescription>& mClasses;
    std::vector<const ClassDescription*> mChosen; ///< parents first
    std::map<std::string, std::string> mNodes;
    std::set<Direction> mDone;
    std::size_t mAssociations = 0;
    std::string mDot;
};

}

#endif
