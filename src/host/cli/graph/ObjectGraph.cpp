// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ObjectGraph.h"

#include "GraphLook.h"
#include "base/Counted.h"
#include "base/DnView.h"

namespace OrvHost {

namespace {

constexpr std::size_t kMaxListedViolations = 20;

/// The text of a problem without the name of its object, which is already in the node.
std::string withoutDn(const InstanceProblem& problem) {
    const std::string head = problem.dn + ": ";
    return problem.text.rfind(head, 0) == 0 ? problem.text.substr(head.size()) : problem.text;
}

const char* styleOf(LineKind kind) {
    switch (kind) {
    case LineKind::BothWays:
        return "solid";
    case LineKind::OneWay:
        return "dashed";
    case LineKind::Plain:
        return "dotted";
    }
    return "";
}

}

ObjectGraph::ObjectGraph(const TreePicture& picture, const ReferenceLines& lines,
                         const std::vector<InstanceProblem>& violations)
    : mPicture(picture), mLines(lines), mViolations(violations) {
    for (const PicturedObject& object : picture.outside) {
        mOutside.insert(object.dn);
    }
    mDot = draw();
}

std::string ObjectGraph::draw() {
    DotText dot;
    setLook(dot);
    setCaption(dot, caption(), mViolations.empty() ? "" : kViolationColour);
    drawObjects(dot);
    for (const ReferenceLine& line : mLines.all()) {
        drawLine(dot, line);
    }
    return dot.text();
}

std::string ObjectGraph::caption() const {
    std::string text = mPicture.title + ": " + counted(mPicture.objects.size(), "object") + ", " +
                       counted(mLines.all().size(), "line") + " of references, " +
                       counted(mViolations.size(), "violation");
    if (mLines.unread() > 0) {
        text += "\n" + std::to_string(mLines.unread()) +
                " references to further objects outside are not drawn";
    }
    for (std::size_t number = 0; number < mViolations.size(); ++number) {
        if (number == kMaxListedViolations) {
            return text + "\n...";
        }
        text += "\n" + mViolations[number].text;
    }
    return text;
}

void ObjectGraph::drawObjects(DotText& dot) {
    std::unordered_map<std::string, std::string> wrongCounts;
    for (const InstanceProblem& problem : mViolations) {
        if (problem.kind == InstanceProblemKind::NoReference ||
            problem.kind == InstanceProblemKind::WrongCardinality) {
            wrongCounts[problem.dn] += "\n" + withoutDn(problem);
        }
    }
    for (const PicturedObject& object : mPicture.objects) {
        const std::string node = "n" + std::to_string(mNodes.size());
        mNodes.emplace(object.dn, node);
        const auto wrong = wrongCounts.find(object.dn);
        const bool isWrong = wrong != wrongCounts.end();
        const std::string below =
            object.hiddenBelow > 0 ? "\n(" + std::to_string(object.hiddenBelow) + " below)" : "";
        dot.node(node, {{"label", std::string(DnView(object.dn).last().text()) + below +
                                      (isWrong ? wrong->second : "")},
                        {"tooltip", object.dn},
                        {"color", isWrong ? kViolationColour : ""},
                        {"fontcolor", isWrong ? kViolationColour : ""}});
        if (object.parent) {
            dot.edge(mNodes.at(mPicture.objects[*object.parent].dn), node, {{"arrowhead", "none"}});
        }
    }
}

// Lines of references must not change the layout of the tree.
void ObjectGraph::drawLine(DotText& dot, const ReferenceLine& line) {
    const bool isWrong = !line.violation.empty();
    const char* colour = isWrong ? kViolationColour : kReferenceColour;
    const std::string from = nodeOf(dot, line.from, isWrong);
    const std::string to = nodeOf(dot, line.to, isWrong);
    dot.edge(from, to,
             {{"label", line.label},
              {"tooltip", line.violation},
              {"style", styleOf(line.kind)},
              {"dir", line.kind == LineKind::BothWays ? "both" : ""},
              {"constraint", "false"},
              {"color", colour},
              {"fontcolor", colour}});
}

std::string ObjectGraph::nodeOf(DotText& dot, const std::string& dn, bool isWrong) {
    const auto [known, isNew] = mNodes.emplace(dn, "n" + std::to_string(mNodes.size()));
    if (isNew) {
        const bool isThere = mOutside.count(dn) > 0;
        const char* colour = isWrong && !isThere ? kViolationColour : kOutsideColour;
        dot.node(known->second, {{"label", (dn.empty() ? "(no name)" : dn) +
                                               std::string(isThere ? "" : "\nis not there")},
                                 {"style", "dashed"},
                                 {"color", colour},
                                 {"fontcolor", colour}});
    }
    return known->second;
}

}
