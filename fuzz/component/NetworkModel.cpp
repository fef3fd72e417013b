// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "NetworkModel.h"

#include "Names.h"

#include <iterator>

namespace Fuzz {

namespace {

constexpr long long kMany = 1000000;

enum ClassNumber : std::size_t { Root, Unit, Cell, Site, Part };

std::size_t makeClassNumber(ByteSource& source) {
    return source.below(std::size(kClasses));
}

const char* makeReferenceName(ByteSource& source) {
    return kReferences[source.below(std::size(kReferences))];
}

}

NetworkModel::NetworkModel(ByteSource& source) {
    mContainments = {{Root, Unit}, {Root, Cell}, {Root, Site},
                     {Root, Part}, {Unit, Cell}, {Part, Part}};
    if (source.below(2) == 0) {
        standard();
    } else {
        custom(source);
    }
}

/// Units use cells, parts use parts, units stand at a site.
void NetworkModel::standard() {
    const std::size_t unitEnd = addEnd("unit", Unit, Cell, false, {0, 1});
    const std::size_t cellEnd = addEnd("cells", Cell, Unit, false, {0, kMany});
    mBiDirs.push_back({unitEnd, cellEnd});
    const std::size_t usedEnd = addEnd("parts", Part, Part, false, {0, kMany});
    const std::size_t userEnd = addEnd("unit", Part, Part, true, {0, kMany});
    mBiDirs.push_back({usedEnd, userEnd});
    mUniDirs.push_back({Unit, addEnd("site", Site, Unit, false, {1, 2})});
    mUniDirs.push_back({Part, addEnd("site", Site, Part, false, {0, 1})});
    mAttributes.push_back({Unit, "label", 9, 0, {0, 1}});
}

void NetworkModel::custom(ByteSource& source) {
    for (std::size_t left = source.below(4); left > 0; --left) {
        const std::size_t one = makeClassNumber(source);
        const std::size_t other = makeClassNumber(source);
        const std::uint8_t flags = source.byte();
        const std::size_t first =
            addEnd(makeReferenceName(source), one, other, flags % 2 == 1, makeBounds(source));
        const std::size_t second =
            addEnd(makeReferenceName(source), other, one, flags / 2 % 2 == 1, makeBounds(source));
        mBiDirs.push_back({first, second});
    }
    for (std::size_t left = source.below(4); left > 0; --left) {
        const std::size_t holder = makeClassNumber(source);
        const std::size_t target = makeClassNumber(source);
        mUniDirs.push_back(
            {holder, addEnd(makeReferenceName(source), target, holder, false, makeBounds(source))});
    }
    for (std::size_t left = source.below(3); left > 0; --left) {
        const std::size_t moc = makeClassNumber(source);
        const char* const name = makeReferenceName(source);
        const int type = source.below(2) == 0 ? VekOamSpiMrTypeMoRef_4 : source.byte();
        mAttributes.push_back({moc, name, type, makeClassNumber(source), makeBounds(source)});
    }
}

NetworkModel::Bounds NetworkModel::makeBounds(ByteSource& source) {
    static constexpr Bounds kBounds[] = {{0, kMany}, {0, 1}, {1, 1}, {2, 3}, {0, -1}, {-1, 0}};
    return kBounds[source.below(std::size(kBounds))];
}

/// The end and its attribute, which lives in the class \p holder.
std::size_t NetworkModel::addEnd(const char* name, std::size_t moc, std::size_t holder, bool keeps,
                                 Bounds bounds) {
    mAttributes.push_back({holder, name, VekOamSpiMrTypeMoRef_4, moc, {0, kMany}});
    mEnds.push_back({name, moc, keeps, bounds, mAttributes.size() - 1});
    return mEnds.size() - 1;
}

std::optional<std::size_t> NetworkModel::indexOf(Kind kind, Handle handle) {
    if (handle >> 16U != kind || (handle & 0xFFFFU) == 0) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(handle & 0xFFFFU) - 1;
}

template <class Thing>
const Thing* NetworkModel::find(const std::vector<Thing>& things, Kind kind, Handle handle) {
    const std::optional<std::size_t> index = indexOf(kind, handle);
    return index && *index < things.size() ? &things[*index] : nullptr;
}

template <class Thing, class Fits>
std::optional<NetworkModel::Handle> NetworkModel::firstFrom(const std::vector<Thing>& things,
                                                            Kind kind, std::size_t start,
                                                            const Fits& fits) {
    for (std::size_t index = start; index < things.size(); ++index) {
        if (fits(things[index])) {
            return handle(kind, index);
        }
    }
    return std::nullopt;
}

std::optional<NetworkModel::Handle> NetworkModel::mocOfDn(const char* dn) const {
    const std::string name = dn != nullptr ? classOf(dn) : "";
    for (std::size_t index = 0; index < std::size(kClasses); ++index) {
        if (name == kClasses[index]) {
            return handle(Moc, index);
        }
    }
    return std::nullopt;
}

// The properties of a thing are named by the thing's own handle.
std::optional<NetworkModel::Handle> NetworkModel::propertiesOf(Handle thing) const {
    return generalName(thing) ? std::optional<Handle>(thing) : std::nullopt;
}

std::optional<const char*> NetworkModel::generalName(Handle properties) const {
    const std::optional<std::size_t> moc = indexOf(Moc, properties);
    if (moc && *moc < std::size(kClasses)) {
        return kClasses[*moc];
    }
    if (const Attribute* const attribute = find(mAttributes, AttributeKind, properties)) {
        return attribute->name;
    }
    const End* const end = find(mEnds, EndKind, properties);
    return end != nullptr ? std::optional<const char*>(end->name) : std::nullopt;
}

std::optional<NetworkModel::Handle> NetworkModel::firstAttribute(Handle moc) const {
    return firstFrom(mAttributes, AttributeKind, 0,
                     [&](const Attribute& attribute) { return handle(Moc, attribute.moc) == moc; });
}

std::optional<NetworkModel::Handle> NetworkModel::nextAttribute(Handle attribute) const {
    const Attribute* const current = find(mAttributes, AttributeKind, attribute);
    if (current == nullptr) {
        return std::nullopt;
    }
    return firstFrom(mAttributes, AttributeKind, *indexOf(AttributeKind, attribute) + 1,
                     [&](const Attribute& other) { return other.moc == current->moc; });
}

std::optional<NetworkModel::Handle> NetworkModel::attributeMoc(Handle attribute) const {
    const Attribute* const found = find(mAttributes, AttributeKind, attribute);
    return found != nullptr ? std::optional<Handle>(handle(Moc, found->moc)) : std::nullopt;
}

std::optional<NetworkModel::Handle> NetworkModel::attributeType(Handle attribute) const {
    const std::optional<std::size_t> index = indexOf(AttributeKind, attribute);
    return index && *index < mAttributes.size() ? std::optional<Handle>(handle(TypeKind, *index))
                                                : std::nullopt;
}

std::optional<int> NetworkModel::typeCode(Handle type) const {
    const Attribute* const found = find(mAttributes, TypeKind, type);
    return found != nullptr ? std::optional<int>(found->type) : std::nullopt;
}

std::optional<long long> NetworkModel::typeBound(Handle type, int identifier) const {
    const Attribute* const found = find(mAttributes, TypeKind, type);
    if (found == nullptr) {
        return std::nullopt;
    }
    return identifier == VekOamSpiMrLowerBound_4 ? found->bounds.lower : found->bounds.upper;
}

std::optional<NetworkModel::Handle> NetworkModel::referencedMoc(Handle type) const {
    const Attribute* const found = find(mAttributes, TypeKind, type);
    return found != nullptr ? std::optional<Handle>(handle(Moc, found->referenced)) : std::nullopt;
}

std::optional<NetworkModel::Handle> NetworkModel::firstContainment(Handle moc) const {
    return firstFrom(mContainments, Contained, 0,
                     [&](const Containment& each) { return handle(Moc, each.parent) == moc; });
}

std::optional<NetworkModel::Handle> NetworkModel::nextContainment(Handle containment) const {
    const Containment* const current = find(mContainments, Contained, containment);
    if (current == nullptr) {
        return std::nullopt;
    }
    return firstFrom(mContainments, Contained, *indexOf(Contained, containment) + 1,
                     [&](const Containment& each) { return each.parent == current->parent; });
}

std::optional<NetworkModel::Handle> NetworkModel::containedMoc(Handle containment) const {
    const Containment* const found = find(mContainments, Contained, containment);
    return found != nullptr ? std::optional<Handle>(handle(Moc, found->child)) : std::nullopt;
}

std::optional<NetworkModel::Handle> NetworkModel::firstBiDir(Handle moc) const {
    return nextBiDir(handle(BiDirKind, 0) - 1, moc);
}

std::optional<NetworkModel::Handle> NetworkModel::nextBiDir(Handle current, Handle moc) const {
    const std::size_t start = static_cast<std::size_t>(current & 0xFFFFU);
    return firstFrom(mBiDirs, BiDirKind, start, [&](const BiDir& each) {
        return handle(Moc, mEnds[each.first].moc) == moc ||
               handle(Moc, mEnds[each.second].moc) == moc;
    });
}

std::optional<NetworkModel::Handle> NetworkModel::firstEnd(Handle association) const {
    const BiDir* const found = find(mBiDirs, BiDirKind, association);
    return found != nullptr ? std::optional<Handle>(handle(EndKind, found->first)) : std::nullopt;
}

std::optional<NetworkModel::Handle> NetworkModel::secondEnd(Handle association) const {
    const BiDir* const found = find(mBiDirs, BiDirKind, association);
    return found != nullptr ? std::optional<Handle>(handle(EndKind, found->second)) : std::nullopt;
}

std::optional<NetworkModel::Handle> NetworkModel::firstUniDir(Handle moc) const {
    return firstFrom(mUniDirs, UniDirKind, 0,
                     [&](const UniDir& each) { return handle(Moc, each.moc) == moc; });
}

std::optional<NetworkModel::Handle> NetworkModel::nextUniDir(Handle current) const {
    const UniDir* const found = find(mUniDirs, UniDirKind, current);
    if (found == nullptr) {
        return std::nullopt;
    }
    return firstFrom(mUniDirs, UniDirKind, *indexOf(UniDirKind, current) + 1,
                     [&](const UniDir& each) { return each.moc == found->moc; });
}

std::optional<NetworkModel::Handle> NetworkModel::uniDirEnd(Handle association) const {
    const UniDir* const found = find(mUniDirs, UniDirKind, association);
    return found != nullptr ? std::optional<Handle>(handle(EndKind, found->end)) : std::nullopt;
}

std::optional<NetworkModel::Handle> NetworkModel::endMoc(Handle end) const {
    const End* const found = find(mEnds, EndKind, end);
    return found != nullptr ? std::optional<Handle>(handle(Moc, found->moc)) : std::nullopt;
}

std::optional<NetworkModel::Handle> NetworkModel::endAttribute(Handle end) const {
    const End* const found = find(mEnds, EndKind, end);
    return found != nullptr ? std::optional<Handle>(handle(AttributeKind, found->attribute))
                            : std::nullopt;
}

std::optional<const char*> NetworkModel::endText(Handle end, int identifier) const {
    const End* const found = find(mEnds, EndKind, end);
    if (found == nullptr) {
        return std::nullopt;
    }
    return identifier == VekOamSpiMrEndName_4 ? found->name : kClasses[found->moc];
}

std::optional<bool> NetworkModel::endFlag(Handle end, int identifier) const {
    const End* const found = find(mEnds, EndKind, end);
    if (found == nullptr || identifier != VekOamSpiMrEndKeepAtDelete_4) {
        return std::nullopt;
    }
    return found->keeps;
}

std::optional<long long> NetworkModel::endBound(Handle end, int identifier) const {
    const End* const found = find(mEnds, EndKind, end);
    if (found == nullptr) {
        return std::nullopt;
    }
    return identifier == VekOamSpiMrLowerBound_4 ? found->bounds.lower : found->bounds.upper;
}

NetworkModel::Handle NetworkModel::anyHandle(ByteSource& source) {
    const Handle kind = source.below(EndKind + 1);
    return kind == 0 ? Handle{0} : (kind << 16U) | source.below(8);
}

}
