// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_STATECOMPARISON_H
#define ORV_HOST_CLIENT_STATECOMPARISON_H

#include "ObjectState.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace OrvHost {

/// An attribute that has different values on the two sides.
struct AttributeDifference {
    const AttributeDef* def = nullptr; ///< of the model; borrowed
    AttributeValue before;
    AttributeValue after;
};

/// An object that is not the same on the two sides.
struct ObjectDifference {
    enum class Kind : std::uint8_t { Deleted, Created, Changed };

    Kind kind = Kind::Changed;
    std::string dn; ///< external
    /// In the order of the class, without what the DN gives. Of a deleted or created object all
    /// that have values.
    std::vector<AttributeDifference> attributes;
};

/// Compares two sets of objects, wherever they come from. An attribute that is not set is the same
/// as one that has its default. The order of objects does not count, nor that of a struct's
/// members; the order of an attribute's values does. One thread.
class StateComparison {
public:
    /// Adds an object of one side. Each DN once; all of this side before those of the other.
    void addBefore(ObjectState object);
    void addAfter(const ObjectState& object);

    /// Deleted and changed objects in the order in which they were added before, then created ones
    /// in the order in which they were added after. Call it once, at the end.
    std::vector<ObjectDifference> take();

private:
    struct Entry {
        ObjectState object;
        bool isAfter = false;
        std::vector<AttributeDifference> changes;
    };

    std::vector<Entry> mBefore;
    std::unordered_map<std::string, std::size_t> mByDn;
    std::vector<ObjectDifference> mCreated;
};

}

#endif
