// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_REPOSITORY_REPOSITORYINDEX_H
#define ORV_HOST_REPOSITORY_REPOSITORYINDEX_H

#include "RepositoryHandle.h"
#include "model/Model.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace OrvHost {

/// A handle as the functions of the repository take and give it. 0 stands for nothing.
using Handle = unsigned long long;

/// The repository's answers, made once from a Model: a row for each object that a handle can name,
/// found by the positions in the handle. Immutable: any number of threads.
class RepositoryIndex {
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
    struct EndRow {
        const char* name;
        const char* role;
        Handle moc;
        Handle attribute;   ///< that is named after this end, in the class at the other end
        Bounds cardinality; ///< 0 as its lower bound if the attribute depends on a condition
        bool keepAtDelete;
    };
    struct BiDirRow {
        std::array<EndRow, 2> ends;
        /// next[n] is the association of the class at ends[n] with the next higher position.
        std::array<Handle, 2> next;
    };
    struct UniDirRow {
        Handle next;
    };

    /// `model` must outlive the index and must not move.
    explicit RepositoryIndex(const Model& model);

    const Model& model() const { return mModel; }
    /// Different for each index that this process has made; not 0.
    std::uint64_t number() const { return mNumber; }

    // The row that a handle names; null if the handle is of another kind or not of this model.

    const MocRow* moc(Handle handle) const {
        if (handle == encode({HandleKind::Moc, kAnyClassPosition})) {
            return &mAnyMoc;
        }
        return rowAt(mMocs, handle, HandleKind::Moc);
    }
    const AttributeRow* attribute(Handle handle) const {
        return rowAt(mAttributes, handle, HandleKind::Attribute);
    }
    /// The type of an attribute has the row of the attribute.
    const AttributeRow* type(Handle handle) const {
        return rowAt(mAttributes, handle, HandleKind::Type);
    }
    const ContainmentRow* containment(Handle handle) const {
        return rowAt(mContainments, handle, HandleKind::Containment);
    }
    /// An end of an association of either kind.
    const EndRow* end(Handle handle) const {
        const Handle second = handle & 1U;
        if (const BiDirRow* const row = rowAt(mBiDirs, handle - second, HandleKind::BiDirEnd)) {
            return &row->ends[second];
        }
        return rowAt(mUniDirEnds, handle, HandleKind::UniDirEnd);
    }
    const BiDirRow* biDir(Handle handle) const { return rowAt(mBiDirs, handle, HandleKind::BiDir); }
    const UniDirRow* uniDir(Handle handle) const {
        return rowAt(mUniDirs, handle, HandleKind::UniDir);
    }
    /// The name of what owns a block of general properties, or null.
    const char* nameOfOwner(Handle properties) const {
        // Without the bit it makes a number that no handle has.
        const Handle owner = properties - kPropertiesBit;
        // Attributes first: they are asked for most, and a row is found in a few steps.
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
    /// An array whose end is known without a division by the size of a row.
    template <class Row>
    class Rows {
    public:
        Rows() = default;
        Rows(const Rows&) = delete;
        Rows& operator=(const Rows&) = delete;

        Row& operator[](std::size_t position) { return mFirst[position]; }
        const Row& operator[](std::size_t position) const { return mFirst[position]; }
        const Row* at(std::uint64_t position) const {
            return position < mSize ? mFirst + position : nullptr;
        }
        std::size_t size() const { return mSize; }
        void add(const Row& row) {
            mAll.push_back(row);
            mFirst = mAll.data();
            mSize = mAll.size();
        }
        void resize(std::size_t size) {
            mAll.resize(size);
            mFirst = mAll.data();
            mSize = size;
        }

    private:
        std::vector<Row> mAll;
        Row* mFirst = nullptr;
        std::size_t mSize = 0;
    };

    /// The row at the position `first` of the handle, whose `second` must be 0.
    template <class Row>
    static const Row* rowAt(const Rows<Row>& rows, Handle handle, HandleKind kind) {
        // What does not belong there makes a number that is too large: the bits of another kind,
        // and those of `second`, which move to the top.
        const std::uint64_t position = std::rotr(std::uint64_t{handle} - encode({kind}), 28);
        return rows.at(position);
    }

    void addClass(ClassIndex index);
    void addBiDir(std::uint32_t index);
    void addUniDir(std::uint32_t index);
    EndRow rowOf(const AssociationEnd& end, ClassIndex owner) const;

    const Model& mModel;
    std::uint64_t mNumber;
    Rows<MocRow> mMocs; ///< by class
    MocRow mAnyMoc{kAnyClassName.data(), 0, 0, 0, 0};
    Rows<AttributeRow> mAttributes;
    Rows<ContainmentRow> mContainments;
    Rows<BiDirRow> mBiDirs;
    Rows<UniDirRow> mUniDirs;
    Rows<EndRow> mUniDirEnds;
};

}

#endif
