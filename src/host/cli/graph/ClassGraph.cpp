// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ClassGraph.h"

#include "GraphLook.h"
#include "base/Counted.h"

#include <algorithm>

namespace OrvHost {

namespace {

std::string endText(const ReferenceDescription& reference) {
    return reference.attribute + " " + toText(reference.cardinality);
}

}

ClassGraph::ClassGraph(const Model& model, const std::vector<ClassDescription>& classes,
                       const std::string& from, std::uint64_t depth)
    : mModel(model), mClasses(classes) {
    choose(from, depth);
    mDot = draw();
}

// Level by level; a class that appears at several places is chosen once.
void ClassGraph::choose(const std::string& from, std::uint64_t depth) {
    std::vector<std::string> level =
        from.empty() ? topLevelClasses(mModel) : std::vector<std::string>{from};
    std::set<std::string> known(level.begin(), level.end());
    // For the top level itself no class is drawn, so one level less is needed. Otherwise one is
    // added, except to the largest number, which means "no limit".
    std::uint64_t below = from.empty() ? depth : std::max(depth, depth + 1);
    for (; below > 0 && !level.empty(); --below) {
        std::vector<std::string> next;
        for (const std::string& name : level) {
            const ClassDescription* moc = findDescription(mClasses, name);
            mChosen.push_back(moc);
            std::copy_if(moc->children.begin(), moc->children.end(), std::back_inserter(next),
                         [&](const std::string& child) { return known.insert(child).second; });
        }
        level = std::move(next);
    }
}

std::string ClassGraph::draw() {
    DotText dot;
    setLook(dot);
    for (const ClassDescription* moc : mChosen) {
        const std::string node = "c" + std::to_string(mNodes.size());
        mNodes.emplace(moc->name, node);
        dot.node(node, {{"label", moc->name}});
    }
    for (const ClassDescription* moc : mChosen) {
        drawContainment(dot, *moc);
    }
    for (const ClassDescription* moc : mChosen) {
        for (const ReferenceDescription& reference : moc->references) {
            drawAssociation(dot, reference);
        }
    }
    setCaption(dot, summary());
    return dot.text();
}

std::string ClassGraph::summary() const {
    return (classes() == 1 ? "1 class" : std::to_string(classes()) + " classes") + ", " +
           counted(mAssociations, "association");
}

void ClassGraph::drawContainment(DotText& dot, const ClassDescription& moc) {
    for (const std::string& child : moc.children) {
        const auto node = mNodes.find(child);
        if (node == mNodes.end()) {
            continue;
        }
        const Bounds& instances = mModel.classes[mModel.findClass(child).value()].instances;
        dot.edge(
            mNodes.at(moc.name), node->second,
            {{"arrowhead", "none"}, {"label", instances.containAll() ? "" : toText(instances)}});
    }
}

void ClassGraph::drawAssociation(DotText& dot, const ReferenceDescription& reference) {
    if (!mDone.insert({reference.owner, reference.attribute, reference.target}).second) {
        return;
    }
    std::string label = endText(reference);
    const ReferenceDescription* opposite = oppositeOf(reference);
    if (opposite != nullptr &&
        mDone.insert({opposite->owner, opposite->attribute, opposite->target}).second) {
        label += "\n" + endText(*opposite);
    }
    ++mAssociations;
    const std::string from = nodeOf(dot, reference.owner);
    const std::string to = nodeOf(dot, reference.target);
    dot.edge(from, to,
             {{"label", label},
              {"dir", opposite != nullptr ? "both" : ""},
              {"style", opposite != nullptr ? "" : "dashed"},
              {"constraint", "false"},
              {"color", kReferenceColour},
              {"fontcolor", kReferenceColour}});
}

const ReferenceDescription* ClassGraph::oppositeOf(const ReferenceDescription& reference) const {
    const ClassDescription* target = findDescription(mClasses, reference.target);
    if (target == nullptr || reference.opposite.empty()) {
        return nullptr;
    }
    const auto found = std::find_if(target->references.begin(), target->references.end(),
                                    [&](const ReferenceDescription& other) {
                                        return other.attribute == reference.opposite &&
                                               other.target == reference.owner;
                                    });
    return found == target->references.end() ? nullptr : &*found;
}

std::string ClassGraph::nodeOf(DotText& dot, const std::string& name) {
    const auto [known, isNew] = mNodes.emplace(name, "c" + std::to_string(mNodes.size()));
    if (isNew) {
        dot.node(known->second, {{"label", name}, {"style", "dashed"}, {"color", kOutsideColour}});
    }
    return known->second;
}

}
