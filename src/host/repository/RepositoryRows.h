// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_REPOSITORY_REPOSITORYROWS_H
#define ORV_HOST_REPOSITORY_REPOSITORYROWS_H

#include "RepositoryHandle.h"
#include "model/Model.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace OrvHost {

/// A handle as the functions of the repository take and give it. 0 stands for nothing.
using Handle = unsigned long long;

/// A view of the repository's answers: a row for each object that a handle can name, found by the
/// positions in the handle. RepositoryIndex makes and keeps them. A view of no repository finds
/// nothing. Any number of threads.
class RepositoryRows {
public:
    struct MocRow {
        const char* name;
        Handle firstAttribute;
        Handle firstContainment;
        Handle firstBiDir;
        Handle firstUniDir;
    };
    struct alignas(64) AttributeRow { // a size by which positions are multiplied at no cost
        const char* name;
        Handle moc;
        Handle next;
        Handle referencedMoc; ///< 0 unless it is a reference
        Bounds multiplicity;  ///< 0 as its lower bound if the attribute depends on a condition
        int typeCode;
    };
    struct ContainmentRow {
        Handle moc;
        Handle next;
    };
    struct alignas(64) EndRow {
        const char* name;
        const char* role;
        Handle moc;
        Handle attribute;   ///< that is named after this end, in the class at the other end
        Bounds cardinality; ///< 0 as its lower bound if the attribute depends on a condition
        bool keepAtDelete;
    };
    /// ends[n] is the class at that end, next[n] the association of that class with the next higher
    /// position.
    struct BiDirRow {
        std::array<Handle, 2> ends;
        std::array<Handle, 2> next;
    };
    struct UniDirRow {
        Handle next;
    };

    /// Of no repository.
    constexpr RepositoryRows() = default;

    /// Null if there is no repository.
    const Model* model() const { return mModel; }
    /// Different for each index that this process has made; 0 if there is no repository.
    std::uint64_t number() const { return mNumber; }

    // The row that a handle names; null if the handle is of another kind or not of this model.

    const MocRow* moc(Handle handle) const {
        const MocRow* const row = mMocs.at(positionIn(handle, HandleKind::Moc));
        return row == nullptr && handle == encode({HandleKind::Moc, kAnyClassPosition}) ? mAnyMoc
                                                                                        : row;
    }
    const AttributeRow* attribute(Handle handle) const {
        return mAttributes.at(positionIn(handle, HandleKind::Attribute));
    }
    /// The type of an attribute has the row of the attribute.
    const AttributeRow* type(Handle handle) const {
        return mAttributes.at(positionIn(handle, HandleKind::Type));
    }
    const ContainmentRow* containment(Handle handle) const {
        return mContainments.at(positionIn(handle, HandleKind::Containment));
    }
    /// An end of an association of either kind.
    const EndRow* end(Handle handle) const {
        const EndRow* const row = mBiDirEnds.at(positionIn(handle, HandleKind::BiDirEnd));
        return row == nullptr ? mUniDirEnds.at(positionIn(handle, HandleKind::UniDirEnd)) : row;
    }
    const BiDirRow* biDir(Handle handle) const {
        return mBiDirs.at(positionIn(handle, HandleKind::BiDir));
    }
    const UniDirRow* uniDir(Handle handle) const {
        return mUniDirs.at(positionIn(handle, HandleKind::UniDir));
    }
    /// The name of what owns a block of general properties, or null.
    const char* nameOfOwner(Handle properties) const {
        // Without the bit it makes a number that no handle has.
        const Handle owner = properties - kPropertiesBit;
        // Attributes first: they are asked for most.
        if (const AttributeRow* const row = attribute(owner)) {
            return row->name;
        }
        if (const MocRow* const row = moc(owner)) {
            return row->name;
        }
        const EndRow* const row = end(owner);
        return row == nullptr ? nullptr : row->name;
    }

private:
    friend class RepositoryIndex;

    /// A view of an array whose end is known without a division by the size of a row.
    template <class Row>
    class View {
    public:
        constexpr View() = default;
        explicit View(const std::vector<Row>& rows) : mFirst(rows.data()), mSize(rows.size()) {}

        const Row* at(std::uint64_t position) const {
            if (position >= mSize) {
                return nullptr;
            }
            const Row* const row = mFirst + position;
            if (row == nullptr) {
                __builtin_unreachable(); // so callers need not ask again whether it is there
            }
            return row;
        }

    private:
        const Row* mFirst = nullptr;
        std::size_t mSize = 0;
    };

    /// The position `first` of the handle, whose `second` must be 0. What does not belong there
    /// makes a number that is too large: the bits of another kind, and those of `second`, which
    /// move to the top.
    static std::uint64_t positionIn(Handle handle, HandleKind kind) {
        return std::rotr(std::uint64_t{handle} - encode({kind}), 28);
    }

    const Model* mModel = nullptr;
    std::uint64_t mNumber = 0;
    View<MocRow> mMocs; ///< by class
    const MocRow* mAnyMoc = nullptr;
    View<AttributeRow> mAttributes;
    View<ContainmentRow> mContainments;
    View<BiDirRow> mBiDirs;
    View<EndRow> mBiDirEnds; ///< two for each association
    View<UniDirRow> mUniDirs;
    View<EndRow> mUniDirEnds;
};

}

#endif
