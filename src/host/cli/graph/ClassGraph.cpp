// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ClassGraph.h"

#include "GraphLook.h"
#include "base/Counted.h"

#include <algorithm>
#include <iterator>

namespace OrvHost {

namespace {

std::string nodeName(std::size_t position) {
    return "c" + std::to_string(position);
}

std::string endText(const ReferenceDescription& reference) {
    return reference.attribute + " " + toText(reference.cardinality);
}

}

ClassGraph::ClassGraph(const Model& model, const std::vector<ClassDescription>& classes,
                       const std::string& from, std::uint64_t depth)
    : mModel(model), mClasses(classes) {
    choose(from, depth);
    arrange();
    addLabels();
    for (const ClassDescription* moc : mChosen) {
        for (const ReferenceDescription& reference : moc->references) {
            addAssociation(reference);
        }
    }
    draw();
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

// A class with one parent was chosen after it, so that frames cannot contain each other.
void ClassGraph::arrange() {
    for (const ClassDescription* moc : mChosen) {
        mPositions.emplace(moc->name, mPositions.size());
    }
    mParents.resize(mChosen.size());
    mFramed.resize(mChosen.size());
    for (Position parent = 0; parent < mChosen.size(); ++parent) {
        for (const std::string& child : mChosen[parent]->children) {
            const auto position = mPositions.find(child);
            if (position != mPositions.end() && position->second != parent) {
                mParents[position->second].push_back(parent);
            }
        }
    }
    for (Position position = 0; position < mChosen.size(); ++position) {
        if (mParents[position].size() == 1 && mParents[position][0] < position) {
            mFramed[mParents[position][0]].push_back(position);
            mIsFramed.insert(position);
            mParents[position].clear();
        }
    }
}

void ClassGraph::addLabels() {
    for (const ClassDescription* moc : mChosen) {
        mLabels.emplace_back(moc->name);
        const ClassDef& definition = mModel.classes[mModel.findClass(moc->name).value()];
        if (!definition.instances.containAll()) {
            mLabels.back().note(toText(definition.instances) + (definition.parents.empty()
                                                                    ? " at the top level"
                                                                    : " in one parent"),
                                kTextColour);
        }
        if (std::count(moc->children.begin(), moc->children.end(), moc->name) > 0) {
            mLabels.back().note("contains itself", kTextColour);
        }
    }
}

std::string ClassGraph::summary() const {
    return (classes() == 1 ? "1 class" : std::to_string(classes()) + " classes") + ", " +
           counted(associations(), "association");
}

void ClassGraph::addAssociation(const ReferenceDescription& reference) {
    if (!mDone.insert({reference.owner, reference.attribute, reference.target}).second) {
        return;
    }
    const Position from = positionOf(reference.owner);
    const Position to = positionOf(reference.target);
    const ReferenceDescription* opposite = oppositeOf(reference);
    if (opposite != nullptr) {
        mDone.insert({opposite->owner, opposite->attribute, opposite->target});
    }
    if (from == to) {
        mLabels[from].port(
            loopText(endText(reference), opposite == nullptr ? "" : endText(*opposite)),
            kReferenceColour);
        mAssociations.push_back({{}, {}, opposite != nullptr});
        return;
    }
    std::string end = "title";
    if (opposite != nullptr) {
        end = mLabels[to].port(endText(*opposite), kReferenceColour);
    }
    const std::string begin = mLabels[from].port(endText(reference), kReferenceColour);
    mAssociations.push_back(
        {nodeName(from) + ":" + begin, nodeName(to) + ":" + end, opposite != nullptr});
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

ClassGraph::Position ClassGraph::positionOf(const std::string& name) {
    const auto [known, isNew] = mPositions.emplace(name, mPositions.size());
    if (isNew) {
        mLabels.emplace_back(name, kOutsideColour);
    }
    return known->second;
}

void ClassGraph::draw() {
    DotText dot;
    setLook(dot);
    for (Position position = 0; position < mLabels.size(); ++position) {
        if (mIsFramed.count(position) == 0) {
            drawBox(dot, position);
        }
    }
    for (Position child = 0; child < mChosen.size(); ++child) {
        for (const Position parent : mParents[child]) {
            dot.edge(nodeName(parent) + ":title", nodeName(child) + ":title",
                     {{"arrowhead", "none"}, {"color", kContainmentColour}});
        }
    }
    for (const Association& association : mAssociations) {
        if (association.from.empty()) {
            continue;
        }
        const LineKind kind = association.isBothWays ? LineKind::BothWays : LineKind::OneWay;
        dot.edge(association.from, association.to,
                 {{"style", styleOf(kind)}, {"dir", association.isBothWays ? "both" : ""}});
    }
    caption().setIn(dot);
    mDot = dot.text();
}

void ClassGraph::drawBox(DotText& dot, Position position) {
    if (position >= mChosen.size() || mFramed[position].empty()) {
        drawNode(dot, position);
        return;
    }
    openFrameOf(dot, nodeName(position));
    drawNode(dot, position);
    for (const Position child : mFramed[position]) {
        drawBox(dot, child);
        placeInFrame(dot, nodeName(position), nodeName(child));
    }
    dot.closeFrame();
}

void ClassGraph::drawNode(DotText& dot, Position position) {
    TableLabel::Look look;
    if (position >= mChosen.size()) {
        look.border = kOutsideColour;
        look.isDashed = true;
    } else {
        look.isThick = !mFramed[position].empty();
    }
    dot.node(nodeName(position),
             {{"label", mLabels[position].markup(look), DotText::Form::Markup}});
}

PictureCaption ClassGraph::caption() const {
    PictureCaption caption;
    caption.text(summary());
    const auto isNotEmpty = [](const std::vector<Position>& positions) {
        return !positions.empty();
    };
    if (std::any_of(mFramed.begin(), mFramed.end(), isNotEmpty)) {
        caption.frame("a class, with a thick border, and the classes that it contains");
    }
    if (std::any_of(mParents.begin(), mParents.end(), isNotEmpty)) {
        caption.plainLine("the class at the left contains that at the right");
    }
    if (mLabels.size() > mChosen.size()) {
        caption.box(kOutsideColour, kFillColour, true, "a class outside of what is drawn");
    }
    const auto isBothWays = [](const Association& association) { return association.isBothWays; };
    if (std::any_of(mAssociations.begin(), mAssociations.end(), isBothWays)) {
        caption.line(LineKind::BothWays, "a bidirectional association");
    }
    if (!std::all_of(mAssociations.begin(), mAssociations.end(), isBothWays)) {
        caption.line(LineKind::OneWay, "a unidirectional association");
    }
    if (std::any_of(mAssociations.begin(), mAssociations.end(),
                    [](const Association& association) { return association.from.empty(); })) {
        caption.mark("↔ ↺", "an association of the class with itself");
    }
    if (!mAssociations.empty()) {
        caption.mark("name 0..2", "an attribute of the class, and how many values it may have");
    }
    return caption;
}

}
