// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_COMPONENT_NETWORKMODEL_H
#define ORV_FUZZ_COMPONENT_NETWORKMODEL_H

#include "VekOamSpiModelRepository_4.h"
#include "support/ByteSource.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace Fuzz {

/// A model repository's contents, made from bytes, and its honest answers. A question that has no
/// answer gives nothing, for any handle.
class NetworkModel {
public:
    using Handle = unsigned long long;

    explicit NetworkModel(ByteSource& source);

    std::optional<Handle> mocOfDn(const char* dn) const;

    std::optional<Handle> propertiesOf(Handle thing) const;
    std::optional<const char*> generalName(Handle properties) const;

    std::optional<Handle> firstAttribute(Handle moc) const;
    std::optional<Handle> nextAttribute(Handle attribute) const;
    std::optional<Handle> attributeMoc(Handle attribute) const;
    std::optional<Handle> attributeType(Handle attribute) const;
    std::optional<int> typeCode(Handle type) const;
    std::optional<long long> typeBound(Handle type, int identifier) const;
    std::optional<Handle> referencedMoc(Handle type) const;

    std::optional<Handle> firstContainment(Handle moc) const;
    std::optional<Handle> nextContainment(Handle containment) const;
    std::optional<Handle> containedMoc(Handle containment) const;

    std::optional<Handle> firstBiDir(Handle moc) const;
    std::optional<Handle> nextBiDir(Handle current, Handle moc) const;
    std::optional<Handle> firstEnd(Handle association) const;
    std::optional<Handle> secondEnd(Handle association) const;

    std::optional<Handle> firstUniDir(Handle moc) const;
    std::optional<Handle> nextUniDir(Handle current) const;
    std::optional<Handle> uniDirEnd(Handle association) const;

    std::optional<Handle> endMoc(Handle end) const;
    std::optional<Handle> endAttribute(Handle end) const;
    std::optional<const char*> endText(Handle end, int identifier) const;
    std::optional<bool> endFlag(Handle end, int identifier) const;
    std::optional<long long> endBound(Handle end, int identifier) const;

    /// A handle of some kind that names something or nothing.
    static Handle anyHandle(ByteSource& source);

private:
    enum Kind : Handle {
        Moc = 1,
        AttributeKind,
        TypeKind,
        Contained,
        BiDirKind,
        UniDirKind,
        EndKind
    };

    struct Bounds {
        long long lower;
        long long upper;
    };
    struct Attribute {
        std::size_t moc;
        const char* name;
        int type;
        std::size_t referenced;
        Bounds bounds;
    };
    struct End {
        const char* name;
        std::size_t moc;
        bool keeps;
        Bounds bounds;
        std::size_t attribute; ///< that realises the end
    };
    struct BiDir {
        std::size_t first;
        std::size_t second;
    };
    struct UniDir {
        std::size_t moc;
        std::size_t end;
    };
    struct Containment {
        std::size_t parent;
        std::size_t child;
    };

    static Handle handle(Kind kind, std::size_t index) { return (kind << 16U) | (index + 1U); }
    static std::optional<std::size_t> indexOf(Kind kind, Handle handle);
    template <class Thing>
    static const Thing* find(const std::vector<Thing>& things, Kind kind, Handle handle);
    template <class Thing, class Fits>
    static std::optional<Handle> firstFrom(const std::vector<Thing>& things, Kind kind,
                                           std::size_t start, const Fits& fits);

    static Bounds makeBounds(ByteSource& source);
    void standard();
    void custom(ByteSource& source);
    std::size_t addEnd(const char* name, std::size_t moc, std::size_t holder, bool keeps,
                       Bounds bounds);

    std::vector<Attribute> mAttributes;
    std::vector<End> mEnds;
    std::vector<BiDir> mBiDirs;
    std::vector<UniDir> mUniDirs;
    std::vector<Containment> mContainments;
};

}

#endif
