// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_CLASSGRAPH_H
#define ORV_HOST_CLI_GRAPH_CLASSGRAPH_H

#include "DotText.h"
#include "PictureCaption.h"
#include "TableLabel.h"
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

/// Classes with containment and associations as DOT text. A class is a box with a row for each end
/// of an association, which has the attribute and how many values it may have. A class with one
/// parent stands in the frame of that parent; to one with several parents lines lead. A
/// bidirectional association is one line with two arrowheads, a unidirectional one is dashed.
/// Classes outside the chosen part are drawn if an association leads to them. One thread.
class ClassGraph {
public:
    /// Draws the classes from \p from (empty: from the top level) and \p depth levels below it. \p
    /// classes are those of \p model; all arguments are borrowed and must outlive the graph.
    ClassGraph(const Model& model, const std::vector<ClassDescription>& classes,
               const std::string& from, std::uint64_t depth);

    std::size_t classes() const { return mChosen.size(); }
    /// The number of lines that show associations.
    std::size_t associations() const { return mAssociations.size(); }
    /// "4 classes, 1 association".
    std::string summary() const;
    const std::string& dot() const { return mDot; }

private:
    /// Owner, attribute, target.
    using Direction = std::tuple<std::string, std::string, std::string>;
    using Position = std::size_t; ///< in mChosen, and behind it the classes outside

    struct Association {
        std::string from; ///< node and port; empty: a class with itself
        std::string to;
        bool isBothWays;
    };

    void choose(const std::string& from, std::uint64_t depth);
    void arrange();
    void addLabels();
    void addAssociation(const ReferenceDescription& reference);
    const ReferenceDescription* oppositeOf(const ReferenceDescription& reference) const;
    /// The position of a class; adds the class as one outside if it has none yet.
    Position positionOf(const std::string& name);
    void draw();
    void drawBox(DotText& dot, Position position);
    void drawNode(DotText& dot, Position position);
    PictureCaption caption() const;

    const Model& mModel;
    const std::vector<ClassDescription>& mClasses;
    std::vector<const ClassDescription*> mChosen; ///< parents first
    std::map<std::string, Position> mPositions;
    std::vector<TableLabel> mLabels;
    std::vector<std::vector<Position>> mParents; ///< those with lines to each chosen class
    std::vector<std::vector<Position>> mFramed;  ///< those in the frame of each chosen class
    std::set<Position> mIsFramed;
    std::set<Direction> mDone;
    std::vector<Association> mAssociations;
    std::string mDot;
};

}

#endif
