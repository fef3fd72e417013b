// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "PictureBoxes.h"

#include "base/DnView.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_set>
#include <utility>

namespace OrvHost {

PictureBoxes::PictureBoxes(const TreePicture& picture, const ReferenceLines& lines,
                           std::size_t most) {
    collect(picture, lines);
    countSiblings();
    if (most == 0 || mObjects.size() <= most) {
        makeBoxes(mObjects.size());
        return;
    }
    mFoldedAbove = largestFoldThatFits(most);
    makeBoxes(*mFoldedAbove);
    if (mBoxes.size() == mObjects.size()) {
        mFoldedAbove.reset();
    }
}

std::optional<std::size_t> PictureBoxes::find(const std::string& dn) const {
    const auto found = mPositions.find(dn);
    return found == mPositions.end() ? std::nullopt : std::optional(found->second);
}

void PictureBoxes::collect(const TreePicture& picture, const ReferenceLines& lines) {
    std::unordered_set<std::string> known;
    for (const PicturedObject& object : picture.objects) {
        known.insert(object.dn);
        mObjects.push_back({BoxPlace::Inside, &object.dn, object.parent, object.hiddenBelow});
    }
    std::unordered_set<std::string> outside;
    for (const PicturedObject& object : picture.outside) {
        outside.insert(object.dn);
    }
    for (const ReferenceLine& line : lines.all()) {
        for (const std::string* dn : {&line.from, &line.to}) {
            if (known.insert(*dn).second) {
                const bool isThere = outside.count(*dn) > 0;
                mObjects.push_back(
                    {isThere ? BoxPlace::Outside : BoxPlace::Missing, dn, std::nullopt, 0});
            }
        }
    }
    for (const Object& object : mObjects) {
        mClassNames.emplace_back(DnView(*object.dn).last().className());
    }
}

void PictureBoxes::countSiblings() {
    std::map<Siblings, std::size_t> counts;
    for (std::size_t at = 0; at < mObjects.size(); ++at) {
        ++counts[{mObjects[at].place, mObjects[at].parent, mClassNames[at]}];
    }
    for (std::size_t at = 0; at < mObjects.size(); ++at) {
        mSiblings.push_back(counts.at({mObjects[at].place, mObjects[at].parent, mClassNames[at]}));
    }
}

// The more siblings may stay apart, the more boxes there are.
std::size_t PictureBoxes::largestFoldThatFits(std::size_t most) {
    const std::set<std::size_t> counts(mSiblings.begin(), mSiblings.end());
    std::vector<std::size_t> candidates{1};
    std::copy_if(counts.begin(), counts.end(), std::back_inserter(candidates),
                 [](std::size_t count) { return count > 1; });
    const auto tooMany =
        std::partition_point(candidates.begin() + 1, candidates.end(), [&](std::size_t foldAbove) {
            makeBoxes(foldAbove);
            return mBoxes.size() <= most;
        });
    return *(tooMany - 1);
}

void PictureBoxes::makeBoxes(std::size_t foldAbove) {
    mBoxes.clear();
    mPositions.clear();
    std::map<Siblings, std::size_t> folded; // by the position of the box above
    std::vector<std::size_t> boxOf;
    for (std::size_t at = 0; at < mObjects.size(); ++at) {
        const Object& object = mObjects[at];
        std::optional<std::size_t> parent;
        if (object.parent) {
            parent = boxOf[*object.parent];
        }
        const bool isFolded = mSiblings[at] > foldAbove || (parent && mBoxes[*parent].isFolded);
        std::size_t position = mBoxes.size();
        if (isFolded) {
            position =
                folded.try_emplace({object.place, parent, mClassNames[at]}, position).first->second;
        }
        if (position == mBoxes.size()) {
            mBoxes.push_back(
                {object.place, *object.dn, mClassNames[at], parent, isFolded, 0, 0, {}});
            if (parent) {
                mBoxes[*parent].children.push_back(position);
            }
        }
        ++mBoxes[position].objects;
        mBoxes[position].hiddenBelow += object.hiddenBelow;
        boxOf.push_back(position);
        mPositions.emplace(*object.dn, position);
    }
}

}
