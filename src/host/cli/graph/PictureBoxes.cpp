// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "PictureBoxes.h"

#include "base/DnView.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace OrvHost {

/// How many objects an object and all below it are, and which.
class PictureBoxes::Subtrees {
public:
    /// Of \p objects, parents first.
    explicit Subtrees(const std::vector<Object>& objects) : mPlaces(objects.size()) {
        for (std::size_t at = objects.size(); at-- > 0;) {
            Place& place = mPlaces[at];
            place.drawn += 1;
            place.all += 1 + objects[at].hiddenBelow;
            if (objects[at].parent) {
                mPlaces[*objects[at].parent].drawn += place.drawn;
                mPlaces[*objects[at].parent].all += place.all;
            }
        }
        std::size_t nextTop = 0;
        std::vector<std::size_t> next(objects.size());
        for (std::size_t at = 0; at < objects.size(); ++at) {
            std::size_t& free = objects[at].parent ? next[*objects[at].parent] : nextTop;
            mPlaces[at].first = free;
            free += mPlaces[at].drawn;
            next[at] = mPlaces[at].first + 1;
        }
    }

    /// With those that are not drawn.
    unsigned long long sizeOf(std::size_t position) const { return mPlaces[position].all; }
    bool contains(std::size_t top, std::size_t position) const {
        const std::size_t number = mPlaces[position].first;
        const Place& place = mPlaces[top];
        return number >= place.first && number < place.first + place.drawn;
    }

private:
    /// The objects are numbered so that those of a subtree have the next numbers.
    struct Place {
        std::size_t first = 0;
        std::size_t drawn = 0;
        unsigned long long all = 0;
    };

    std::vector<Place> mPlaces;
};

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
    } else {
        findPart(lines, most);
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

// A few of the largest are tried: what they refer to outside has boxes, too.
void PictureBoxes::findPart(const ReferenceLines& lines, std::size_t most) {
    constexpr std::size_t kTries = 100;
    const Subtrees subtrees(mObjects);
    std::vector<std::size_t> candidates;
    std::unordered_map<std::string_view, std::size_t> positions;
    positions.reserve(mObjects.size());
    for (std::size_t at = 0; at < mObjects.size(); ++at) {
        positions.emplace(*mObjects[at].dn, at);
        if (mObjects[at].place == BoxPlace::Inside && subtrees.sizeOf(at) <= most) {
            candidates.push_back(at);
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(), [&](std::size_t one, std::size_t two) {
        return subtrees.sizeOf(one) > subtrees.sizeOf(two);
    });
    candidates.resize(std::min(candidates.size(), kTries));
    std::vector<std::pair<std::size_t, std::size_t>> ends;
    ends.reserve(lines.all().size());
    for (const ReferenceLine& line : lines.all()) {
        ends.emplace_back(positions.at(line.from), positions.at(line.to));
    }
    for (const std::size_t top : candidates) {
        std::unordered_set<std::size_t> outside;
        for (const auto& [from, to] : ends) {
            if (subtrees.contains(top, from) != subtrees.contains(top, to)) {
                outside.insert(subtrees.contains(top, from) ? to : from);
            }
        }
        if (subtrees.sizeOf(top) + outside.size() <= most) {
            mPart = mObjects[top].dn;
            return;
        }
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
