// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_REFERENCELINES_H
#define ORV_HOST_CLI_GRAPH_REFERENCELINES_H

#include "TreePicture.h"
#include "audit/InstanceReport.h"
#include "model/Model.h"
#include "repository/ModelDescription.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace OrvHost {

enum class LineKind {
    BothWays, ///< a bidirectional association, with references on both sides
    OneWay,   ///< a unidirectional association, or only one side of a bidirectional one
    Plain     ///< a reference without an association
};

/// The references of an attribute of one object to another object, and of one of that object back.
struct ReferenceLine {
    std::string from;          ///< external DN
    std::string to;            ///< external DN; empty: a target that clients cannot name
    std::string attribute;     ///< of `from`
    std::size_t count = 0;     ///< how often `attribute` names `to`
    std::string back;          ///< the attribute of `to`, if it has references of its own; or empty
    std::size_t backCount = 0; ///< how often `back` names `from`
    LineKind kind = LineKind::Plain;
    std::string violation; ///< what is wrong; empty: nothing
};

/// The references of a picture as lines to be drawn. Immutable.
class ReferenceLines {
public:
    /// Throws CancelledError, see TreePicture::token.
    ReferenceLines(const std::vector<ClassDescription>& classes, const TreePicture& picture,
                   const std::vector<InstanceProblem>& violations);

    const std::vector<ReferenceLine>& all() const { return mLines; }
    /// The number of references that the lines stand for.
    std::size_t references() const;
    /// The number of references to objects that were not read; no lines are drawn for them.
    std::size_t unread() const { return mUnread; }

private:
    struct Link {
        std::string holder;
        std::string attribute;
        std::string target;
        bool operator<(const Link& other) const {
            return std::tie(holder, attribute, target) <
                   std::tie(other.holder, other.attribute, other.target);
        }
    };

    std::vector<Link> linksOf(const TreePicture& picture,
                              const std::vector<PicturedObject>& objects);
    void draw(const std::vector<ClassDescription>& classes, const Link& link);
    std::string violationOf(const Link& link) const;

    std::map<Link, std::size_t> mLinks; ///< all that are known, with how often each is there
    std::set<Link> mDone;
    std::map<Link, std::string> mWrong;
    std::vector<ReferenceLine> mLines;
    std::size_t mUnread = 0;
};

/// The violations of associations at the objects that \p picture draws, recomputed from the values
/// that were read; not those at the objects that they refer to. Throws CancelledError, see
/// TreePicture::token.
std::vector<InstanceProblem> violationsIn(const Model& model, const TreePicture& picture);

}

#endif
