// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_PICTUREBOXES_H
#define ORV_HOST_CLI_GRAPH_PICTUREBOXES_H

#include "ReferenceLines.h"
#include "TreePicture.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace OrvHost {

enum class BoxPlace : std::uint8_t {
    Inside,  ///< of the part of the tree that is drawn
    Outside, ///< referred to
    Missing  ///< referred to, and does not exist, or cannot be named by clients
};

/// An object, or several of one class that are drawn as one.
struct PictureBox {
    BoxPlace place = BoxPlace::Inside;
    std::string dn; ///< external; if folded, of the first object
    std::string className;
    std::optional<std::size_t> parent; ///< position of the box above
    bool isFolded = false;
    std::size_t objects = 0;
    unsigned long long hiddenBelow = 0; ///< objects that are not shown
    std::vector<std::size_t> children;  ///< positions
};

/// The boxes of a picture. If there would be too many, it is folded: where an object has more than
/// a certain number of children of one class, they become one box, and so does what is below them,
/// class by class. The number is the largest with which there are few enough boxes, or 1, and holds
/// in the whole picture. Immutable.
class PictureBoxes {
public:
    /// At most \p most boxes, if folding achieves that; 0: nothing is folded. \p picture is
    /// borrowed. Throws CancelledError, see TreePicture::token.
    PictureBoxes(const TreePicture& picture, const ReferenceLines& lines, std::size_t most);

    const std::vector<PictureBox>& all() const { return mBoxes; } ///< parents first
    /// The position of the box of an object, or nothing if it is not drawn.
    std::optional<std::size_t> find(const std::string& dn) const;
    /// More children of one class than that are one box; nothing: the picture is not folded.
    std::optional<std::size_t> foldedAbove() const { return mFoldedAbove; }
    /// If the picture is folded: the object with the most below it of which, with all that is below
    /// it, a picture is not folded. Null if there is none that has something below it. External,
    /// borrowed from the picture.
    const std::string* largestPartThatFits() const { return mPart; }

private:
    struct Object {
        BoxPlace place;
        const std::string* dn;
        std::optional<std::size_t> parent; ///< position in mObjects
        unsigned long long hiddenBelow;
    };
    using Siblings = std::tuple<BoxPlace, std::optional<std::size_t>, std::string>;

    void collect(const ReferenceLines& lines);
    void countSiblings();
    std::size_t largestFoldThatFits(std::size_t most);
    /// Makes the boxes; more siblings than \p foldAbove are one box.
    void makeBoxes(std::size_t foldAbove);

    const TreePicture& mPicture;
    std::vector<Object> mObjects; ///< parents first
    std::vector<std::string> mClassNames;
    std::vector<std::size_t> mSiblings; ///< of each object, including itself
    std::vector<PictureBox> mBoxes;
    std::unordered_map<std::string, std::size_t> mPositions;
    std::optional<std::size_t> mFoldedAbove;
    const std::string* mPart = nullptr;
};

}

#endif
