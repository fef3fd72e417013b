// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_CHILDCLASSTABLE_H
#define ORV_HOST_MODEL_CHILDCLASSTABLE_H

#include "base/TextHash.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace OrvHost {

/// Position in the classes of a Model; it never changes.
using ClassIndex = std::uint32_t;

/// Finds a class by its name among those that may stand under one class, or at the top level. One
/// look answers whether there is such a class and whether it may stand there.
///
/// Filled while a model is built, then read by any number of threads.
class ChildClassTable {
public:
    /// Stands for the top level in the place of a parent.
    static constexpr ClassIndex topLevel = UINT32_MAX;

    struct Child {
        std::string name;
        ClassIndex moc;
    };

    /// Enters `child`, whose name is `name`; each pair of parent and child once.
    void add(ClassIndex parent, std::string_view name, ClassIndex child);

    /// The child class with that name, or null. Constant time.
    const Child* find(ClassIndex parent, std::string_view name) const;
    /// The child class whose name stands at the beginning of `text` with a "=" after it, or null.
    /// Constant time, except for finding the "=".
    const Child* findAtStart(ClassIndex parent, std::string_view text) const {
        const Children* const children = childrenOf(parent);
        if (children == nullptr) {
            return nullptr;
        }
        if (children->all.size() > kFew) {
            const std::size_t equals = text.find('=');
            return equals == std::string_view::npos ? nullptr
                                                    : findIn(*children, text.substr(0, equals));
        }
        for (const Child& child : children->all) {
            const std::size_t size = child.name.size();
            if (text.size() > size && text[size] == '=' && text.starts_with(child.name)) {
                return &child;
            }
        }
        return nullptr;
    }

private:
    /// Few children are compared one by one, which is faster than a hash.
    static constexpr std::size_t kFew = 8;

    struct Children {
        std::vector<Child> all;
        /// Positions in `all`; only if they are more than a few.
        std::unordered_map<std::string, std::size_t, TextHash, std::equal_to<>> byName;
    };
    static const Child* findIn(const Children& children, std::string_view name);
    const Children* childrenOf(ClassIndex parent) const {
        const std::size_t place = placeOf(parent);
        return place < mChildren.size() ? &mChildren[place] : nullptr;
    }
    static std::size_t placeOf(ClassIndex parent) {
        return parent == topLevel ? 0 : std::size_t{parent} + 1;
    }

    std::vector<Children> mChildren; ///< of the top level, then by parent
};

}

#endif
