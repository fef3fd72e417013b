// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ObjectGraph.h"

#include "GraphLook.h"
#include "base/Counted.h"
#include "base/DnView.h"
#include "cli/input/WordSplitter.h"

#include <algorithm>
#include <utility>

namespace OrvHost {

namespace {

constexpr std::size_t kMaxListedViolations = 20;
constexpr std::size_t kMaxMessages = 3;

std::string nodeName(std::size_t position) {
    return "n" + std::to_string(position);
}

std::string lastStep(const std::string& dn) {
    return std::string(DnView(dn).last().text());
}

/// The text of a problem without the name of its object.
std::string withoutDn(const InstanceProblem& problem) {
    const std::string head = problem.dn + ": ";
    return problem.text.rfind(head, 0) == 0 ? problem.text.substr(head.size()) : problem.text;
}

std::string tooltipOf(const PictureBox& box) {
    return box.isFolded && box.objects > 1
               ? counted(box.objects, "object") + ", the first: " + box.dn
               : box.dn;
}

std::string belowText(unsigned long long objects) {
    return "(" + std::to_string(objects) + " below)";
}

std::string titleOf(const PictureBox& box) {
    std::string title = box.isFolded     ? box.className + " × " + std::to_string(box.objects)
                        : box.dn.empty() ? "(no name)"
                        : box.place == BoxPlace::Inside ? lastStep(box.dn)
                                                        : box.dn;
    if (box.hiddenBelow > 0) {
        title += "\n" + belowText(box.hiddenBelow);
    }
    if (box.place == BoxPlace::Missing) {
        title += box.objects > 1 ? "\nare not there" : "\nis not there";
    }
    return title;
}

}

std::string pictureSummary(const TreePicture& picture, const ReferenceLines& lines,
                           const std::vector<InstanceProblem>& violations) {
    std::string text = counted(picture.objects.size(), "object");
    if (picture.hiddenBelow > 0) {
        text += " " + belowText(picture.hiddenBelow);
    }
    text += ", " + counted(lines.references(), "reference") + ", " +
            counted(violations.size(), "violation");
    if (lines.unread() > 0) {
        text += "; not drawn and not checked: " + counted(lines.unread(), "more reference") +
                ", to outside objects beyond the limit";
    }
    return text;
}

ObjectGraph::ObjectGraph(const TreePicture& picture, const ReferenceLines& lines,
                         const std::vector<InstanceProblem>& violations, GraphOffer offer)
    : mPicture(picture),
      mReferences(lines),
      mViolations(violations),
      mOffer(std::move(offer)),
      mBoxes(picture, lines, mOffer.boxes),
      mLines(joinLines(picture, mBoxes, lines)),
      mProblems(mBoxes.all().size()),
      mIsRed(mBoxes.all().size()) {
    findWhatIsWrong();
    makeLabels();
    addEnds();
    addMessages();
    draw();
}

void ObjectGraph::findWhatIsWrong() {
    for (const InstanceProblem& problem : mViolations) {
        mPicture.throwIfCancelled();
        auto box = mBoxes.find(problem.dn);
        box = box ? box : mBoxes.find(problem.otherDn);
        if (box) {
            mProblems[*box].push_back(&problem);
            mIsRed[*box] = true;
        }
    }
    // What is missing is wrong only if an association needs it.
    for (const JoinedLine& line : mLines) {
        mPicture.throwIfCancelled();
        if (line.isWrong && mBoxes.all()[line.to].place == BoxPlace::Missing) {
            mIsRed[line.to] = true;
        }
    }
}

std::string ObjectGraph::summary() const {
    return pictureSummary(mPicture, mReferences, mViolations);
}

std::string ObjectGraph::foldNote() const {
    const auto above = mBoxes.foldedAbove();
    if (!above) {
        return {};
    }
    std::string note = "folded: more than " +
                       (*above == 1 ? "one object" : std::to_string(*above) + " objects") +
                       " of a class in one frame, and those below them, are one box with their "
                       "number. To see more: ";
    const std::string* const part = mBoxes.largestPartThatFits();
    if (part != nullptr) {
        note +=
            "'" + mOffer.part + " " + quoteForTyping(*part) + "' draws that part without folding; ";
    }
    const std::size_t objects = mPicture.objects.size();
    const bool isWholeUnfolded =
        std::max(objects, mPicture.outside.size()) <= mOffer.mostUnfolded &&
        mPicture.unread.empty();
    if (isWholeUnfolded) {
        note += "'" + mOffer.unfolded + "' draws each object; ";
    }
    return note + "'" + mOffer.page +
           (objects > mOffer.mostOnPage ? " --limit " + std::to_string(objects) : "") +
           "' makes a page to look around in";
}

void ObjectGraph::makeLabels() {
    for (std::size_t position = 0; position < mBoxes.all().size(); ++position) {
        mPicture.throwIfCancelled();
        const PictureBox& box = mBoxes.all()[position];
        mLabels.emplace_back(titleOf(box), mIsRed[position]                ? kViolationColour
                                           : box.place == BoxPlace::Inside ? kTextColour
                                                                           : kOutsideColour);
    }
}

void ObjectGraph::addEnds() {
    for (const JoinedLine& line : mLines) {
        mPicture.throwIfCancelled();
        if (line.from == line.to) {
            const char* colour = line.isWrong ? kViolationColour : kReferenceColour;
            mLabels[line.from].port(loopText(line.fromEnd.text(), line.toEnd.text()), colour);
            mEnds.emplace_back();
            continue;
        }
        const std::string from = rowOf(line.from, line.fromEnd, line.to, line.isWrong);
        const std::string to = line.toEnd.attributes.empty()
                                   ? "title"
                                   : rowOf(line.to, line.toEnd, line.from, line.isWrong);
        mEnds.emplace_back(nodeName(line.from) + ":" + from, nodeName(line.to) + ":" + to);
    }
}

std::string ObjectGraph::rowOf(std::size_t box, const LineEnd& end, std::size_t far, bool isWrong) {
    const bool isRed = isWrong || isWrongCount(box, end, mBoxes.all()[far].className);
    return mLabels[box].port(end.text(), isRed ? kViolationColour : kReferenceColour);
}

// The number of references in an attribute is wrong, and not one of them. References of the same
// attribute to another class belong to another association, which may be in order.
bool ObjectGraph::isWrongCount(std::size_t box, const LineEnd& end,
                               const std::string& farClass) const {
    return std::any_of(
        mProblems[box].begin(), mProblems[box].end(), [&](const InstanceProblem* problem) {
            const auto isMeant = [&](const auto& attribute) {
                return attribute.first == problem->attribute;
            };
            const bool isOfThatClass =
                problem->countedClass.empty() || problem->countedClass == farClass;
            return problem->otherDn.empty() && isOfThatClass && mBoxes.find(problem->dn) == box &&
                   std::any_of(end.attributes.begin(), end.attributes.end(), isMeant);
        });
}

void ObjectGraph::addMessages() {
    for (std::size_t position = 0; position < mBoxes.all().size(); ++position) {
        mPicture.throwIfCancelled();
        const std::vector<const InstanceProblem*>& problems = mProblems[position];
        const bool isFolded = mBoxes.all()[position].isFolded;
        for (std::size_t at = 0; at < std::min(problems.size(), kMaxMessages); ++at) {
            const InstanceProblem& problem = *problems[at];
            mLabels[position].note(isFolded ? problem.text : withoutDn(problem), kViolationColour);
        }
        if (problems.size() > kMaxMessages) {
            mLabels[position].note("and " +
                                       counted(problems.size() - kMaxMessages, "more violation"),
                                   kViolationColour);
        }
    }
}

void ObjectGraph::draw() {
    DotText dot;
    setLook(dot);
    for (std::size_t position = 0; position < mBoxes.all().size(); ++position) {
        if (!mBoxes.all()[position].parent) {
            drawBox(dot, position);
        }
    }
    for (std::size_t number = 0; number < mLines.size(); ++number) {
        mPicture.throwIfCancelled();
        const JoinedLine& line = mLines[number];
        if (line.from == line.to) {
            continue;
        }
        dot.edge(mEnds[number].first, mEnds[number].second,
                 {{"style", styleOf(line.kind)},
                  {"dir", line.kind == LineKind::BothWays ? "both" : ""},
                  {"color", line.isWrong ? kViolationColour : ""}});
    }
    caption().setIn(dot);
    mDot = dot.text();
}

void ObjectGraph::drawBox(DotText& dot, std::size_t position) {
    mPicture.throwIfCancelled();
    const PictureBox& box = mBoxes.all()[position];
    if (box.children.empty()) {
        drawNode(dot, position);
        return;
    }
    openFrameOf(dot, nodeName(position));
    drawNode(dot, position);
    for (const std::size_t child : box.children) {
        drawBox(dot, child);
        placeInFrame(dot, nodeName(position), nodeName(child));
    }
    dot.closeFrame();
}

void ObjectGraph::drawNode(DotText& dot, std::size_t position) {
    const PictureBox& box = mBoxes.all()[position];
    const bool isOutside = box.place != BoxPlace::Inside;
    TableLabel::Look look;
    look.fill = box.isFolded ? kFoldedFillColour : kFillColour;
    look.isDashed = isOutside;
    look.isThick = !box.children.empty();
    look.border = mIsRed[position] ? kViolationColour : isOutside ? kOutsideColour : kBoxColour;
    dot.node(nodeName(position), {{"label", mLabels[position].markup(look), DotText::Form::Markup},
                                  {"tooltip", tooltipOf(box)}});
}

PictureCaption ObjectGraph::caption() const {
    PictureCaption caption;
    caption.text(mPicture.title + ": " + summary());
    if (const std::string note = foldNote(); !note.empty()) {
        caption.text(note);
    }
    for (std::size_t number = 0; number < mViolations.size(); ++number) {
        if (number == kMaxListedViolations) {
            caption.text("and " + counted(mViolations.size() - number, "more violation"),
                         kViolationColour);
            break;
        }
        caption.text(mViolations[number].text, kViolationColour);
    }
    explainBoxes(caption);
    explainLines(caption);
    return caption;
}

void ObjectGraph::explainBoxes(PictureCaption& caption) const {
    const std::vector<PictureBox>& boxes = mBoxes.all();
    const auto has = [&](const auto& isSuch) {
        return std::any_of(boxes.begin(), boxes.end(), isSuch);
    };
    if (has([](const PictureBox& box) { return !box.children.empty(); })) {
        caption.frame("an object, with a thick border, and its children");
    }
    if (has([](const PictureBox& box) { return box.isFolded; })) {
        caption.box(kBoxColour, kFoldedFillColour, false,
                    "folded: Class × N are N objects of the class");
    }
    if (has([](const PictureBox& box) { return box.hiddenBelow > 0; })) {
        caption.mark("(3 below)", "3 objects below it are not drawn");
    }
    if (has([](const PictureBox& box) { return box.place == BoxPlace::Outside; })) {
        caption.box(kOutsideColour, kFillColour, true, "referred to, outside of what is drawn");
    }
    if (has([](const PictureBox& box) { return box.place == BoxPlace::Missing; })) {
        caption.box(kOutsideColour, kFillColour, true,
                    "\"is not there\": referred to, but no such object exists");
    }
}

void ObjectGraph::explainLines(PictureCaption& caption) const {
    const auto has = [&](const auto& isSuch) {
        return std::any_of(mLines.begin(), mLines.end(), isSuch);
    };
    const auto hasRow = [&](const auto& isSuch) {
        return has([&](const JoinedLine& line) {
            return isSuch(line.fromEnd.attributes) || isSuch(line.toEnd.attributes);
        });
    };
    // A reference to an object of the same box is a row, without a line.
    const auto isDrawn = [](const JoinedLine& line) { return line.from != line.to; };
    const auto hasKind = [&](LineKind kind) {
        return has([&](const JoinedLine& line) { return isDrawn(line) && line.kind == kind; });
    };
    if (hasKind(LineKind::BothWays)) {
        caption.line(LineKind::BothWays, "an association with references both ways");
    }
    if (hasKind(LineKind::OneWay)) {
        caption.line(LineKind::OneWay, "a reference of an association, one way");
    }
    if (hasKind(LineKind::Plain)) {
        caption.line(LineKind::Plain, "a reference without an association");
    }
    if (has(isDrawn)) {
        caption.mark("→", "leads from the row of an attribute to the object that it refers to");
    }
    if (hasRow([](const auto& attributes) { return attributes.size() > 1; })) {
        caption.mark("a, b", "references of all these attributes, for each line from this row");
    }
    if (hasRow([](const auto& attributes) {
            return std::any_of(attributes.begin(), attributes.end(),
                               [](const auto& attribute) { return attribute.second > 1; });
        })) {
        caption.mark("×3", "3 references of the attribute, for each line from this row");
    }
    if (!std::all_of(mLines.begin(), mLines.end(), isDrawn)) {
        caption.mark("↔ ↺", "references between the objects of the same box, both ways or one way");
    }
    if (!mViolations.empty()) {
        caption.red("red: a violation of an association");
    }
}

}
