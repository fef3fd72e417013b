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

namespace {

/// The objects of a picture in an order in which each one is followed by all that are below it.
class Subtrees {
public:
    explicit Subtrees(const TreePicture& picture) : mPlaces(picture.objects.size()) {
        const std::vector<PicturedObject>& objects = picture.objects;
        for (std::size_t at = objects.size(); at-- > 0;) {
            picture.throwIfCancelled();
            Place& place = mPlaces[at];
            place.size += 1;
            place.isWhole = place.isWhole && objects[at].hiddenBelow == 0;
            if (objects[at].parent) {
                mPlaces[*objects[at].parent].size += place.size;
                mPlaces[*objects[at].parent].isWhole &= place.isWhole;
            }
        }
        mOrder.resize(objects.size());
        std::size_t nextTop = 0;
        std::vector<std::size_t> next(objects.size());
        for (std::size_t at = 0; at < objects.size(); ++at) {
            picture.throwIfCancelled();
            std::size_t& free = objects[at].parent ? next[*objects[at].parent] : nextTop;
            mPlaces[at].first = free;
            mOrder[free] = at;
            free += mPlaces[at].size;
            next[at] = mPlaces[at].first + 1;
        }
    }

    /// The number of objects that \p top and those below it are.
    std::size_t sizeOf(std::size_t top) const { return mPlaces[top].size; }
    /// Whether everything below \p top is in the picture.
    bool isWhole(std::size_t top) const { return mPlaces[top].isWhole; }
    bool contains(std::size_t top, std::size_t position) const {
        const std::size_t place = mPlaces[position].first;
        return place >= mPlaces[top].first && place < mPlaces[top].first + mPlaces[top].size;
    }
    /// The position of the object with that \p number, from 0, in the part below and with \p top.
    std::size_t member(std::size_t top, std::size_t number) const {
        return mOrder[mPlaces[top].first + number];
    }

private:
    struct Place {
        std::size_t first = 0; ///< in mOrder
        std::size_t size = 0;
        bool isWhole = true;
    };

    std::vector<Place> mPlaces;
    std::vector<std::size_t> mOrder;
};

/// What the references of a picture lead to, each target with a number: that of an object is its
/// position, all others follow.
class Targets {
public:
    explicit Targets(const TreePicture& picture) {
        std::unordered_map<std::string_view, std::size_t> numbers;
        numbers.reserve(picture.objects.size());
        for (const PicturedObject& object : picture.objects) {
            picture.throwIfCancelled();
            numbers.emplace(object.dn, numbers.size());
        }
        for (const PicturedObject& object : picture.objects) {
            picture.throwIfCancelled();
            std::vector<std::size_t>& targets = mTargets.emplace_back();
            for (const PicturedLink& link : object.links) {
                targets.push_back(numbers.emplace(link.target, numbers.size()).first->second);
            }
        }
    }

    const std::vector<std::size_t>& of(std::size_t position) const { return mTargets[position]; }
    bool isObject(std::size_t target) const { return target < mTargets.size(); }

private:
    std::vector<std::vector<std::size_t>> mTargets;
};

/// Whether a picture of \p top and of what is below it has at most \p most boxes: those of the
/// objects, and those of what they refer to outside.
bool fits(const Subtrees& subtrees, const Targets& targets, std::size_t top, std::size_t most) {
    const std::size_t size = subtrees.sizeOf(top);
    std::unordered_set<std::size_t> outside;
    for (std::size_t number = 0; number < size && size + outside.size() <= most; ++number) {
        for (const std::size_t target : targets.of(subtrees.member(top, number))) {
            if (!targets.isObject(target) || !subtrees.contains(top, target)) {
                outside.insert(target);
            }
        }
    }
    return size + outside.size() <= most;
}

/// The largest object of which that is true; one with nothing below it is no help.
const std::string* largestPart(const TreePicture& picture, std::size_t most) {
    const std::vector<PicturedObject>& objects = picture.objects;
    const Subtrees subtrees(picture);
    std::vector<std::size_t> candidates;
    for (std::size_t at = 0; at < objects.size(); ++at) {
        picture.throwIfCancelled();
        const std::size_t size = subtrees.sizeOf(at);
        if (size > 1 && size <= most && subtrees.isWhole(at)) {
            candidates.push_back(at);
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(), [&](std::size_t one, std::size_t two) {
        picture.throwIfCancelled();
        return subtrees.sizeOf(one) > subtrees.sizeOf(two);
    });
    const Targets targets(picture);
    const auto found = std::find_if(candidates.begin(), candidates.end(), [&](std::size_t top) {
        picture.throwIfCancelled();
        return fits(subtrees, targets, top, most);
    });
    return found == candidates.end() ? nullptr : &objects[*found].dn;
}

}

PictureBoxes::PictureBoxes(const TreePicture& picture, const ReferenceLines& lines,
                           std::size_t most)
    : mPicture(picture) {
    collect(lines);
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
        mPart = largestPart(picture, most);
    }
}

std::optional<std::size_t> PictureBoxes::find(const std::string& dn) const {
    const auto found = mPositions.find(dn);
    return found == mPositions.end() ? std::nullopt : std::optional(found->second);
}

void PictureBoxes::collect(const ReferenceLines& lines) {
    std::unordered_set<std::string> known;
    for (const PicturedObject& object : mPicture.objects) {
        mPicture.throwIfCancelled();
        known.insert(object.dn);
        mObjects.push_back({BoxPlace::Inside, &object.dn, object.parent, object.hiddenBelow});
    }
    std::unordered_set<std::string> outside;
    for (const PicturedObject& object : mPicture.outside) {
        mPicture.throwIfCancelled();
        outside.insert(object.dn);
    }
    for (const ReferenceLine& line : lines.all()) {
        mPicture.throwIfCancelled();
        for (const std::string* dn : {&line.from, &line.to}) {
            if (known.insert(*dn).second) {
                const bool isThere = outside.count(*dn) > 0;
                mObjects.push_back(
                    {isThere ? BoxPlace::Outside : BoxPlace::Missing, dn, std::nullopt, 0});
            }
        }
    }
    for (const Object& object : mObjects) {
        mPicture.throwIfCancelled();
        mClassNames.emplace_back(DnView(*object.dn).last().className());
    }
}

void PictureBoxes::countSiblings() {
    std::map<Siblings, std::size_t> counts;
    for (std::size_t at = 0; at < mObjects.size(); ++at) {
        mPicture.throwIfCancelled();
        ++counts[{mObjects[at].place, mObjects[at].parent, mClassNames[at]}];
    }
    for (std::size_t at = 0; at < mObjects.size(); ++at) {
        mPicture.throwIfCancelled();
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
        mPicture.throwIfCancelled();
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
