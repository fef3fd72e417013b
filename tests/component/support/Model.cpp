// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Model.h"

#include "World.h"

namespace Scripted {

namespace {

// A handle is the kind of the object in the upper half and its number, from 1, in the lower one, so
// that code that uses half a handle, or one kind as another, finds nothing.
enum Kind : unsigned long long {
    KindMoc = 0x8001,
    KindAttribute,
    KindType,
    KindContainment,
    KindEnd,
    KindBiDir,
    KindUniDir,
    KindProperties = 0x100 ///< added to the kind of the object that the properties belong to
};

Model::Handle handleOf(unsigned long long kind, std::size_t index) {
    return (kind << 32U) | (index + 1);
}

template <class List>
std::optional<std::size_t> indexIn(const List& list, Model::Handle handle,
                                   unsigned long long kind) {
    const std::size_t number = handle & 0xFFFF'FFFFULL;
    return (handle >> 32U) == kind && number > 0 && number <= list.size()
               ? std::optional<std::size_t>(number - 1)
               : std::nullopt;
}

template <class List, class Wanted>
std::optional<std::size_t> findFrom(const List& list, std::size_t start, const Wanted& wanted) {
    for (std::size_t i = start; i < list.size(); ++i) {
        if (wanted(list[i])) {
            return i;
        }
    }
    return std::nullopt;
}

std::optional<Model::Handle> asHandle(unsigned long long kind, std::optional<std::size_t> index) {
    return index ? std::optional<Model::Handle>(handleOf(kind, *index)) : std::nullopt;
}

std::optional<long long> boundOf(const Model::Bounds& bounds, int identifier) {
    switch (identifier) {
    case 0:
        return bounds.first;
    case 1:
        return bounds.second;
    default:
        return std::nullopt;
    }
}

}

Model::MocBuilder& Model::MocBuilder::attribute(const std::string& name, std::int32_t typeCode) {
    mModel.mAttributes.push_back({mMoc, name, typeCode, mMoc, {0, 1}});
    return *this;
}

Model::MocBuilder& Model::MocBuilder::reference(const std::string& name, const std::string& target,
                                                long long lower, long long upper) {
    const std::size_t index = mModel.referenceIndex(mMoc, name, mModel.mocIndex(target));
    mModel.mAttributes[index].bounds = {lower, upper};
    return *this;
}

Model::MocBuilder& Model::MocBuilder::contains(const std::string& child) {
    mModel.mContainments.push_back({mMoc, mModel.mocIndex(child)});
    return *this;
}

Model::MocBuilder Model::moc(const std::string& name) {
    return MocBuilder(*this, mocIndex(name));
}

Model& Model::biDir(const Side& first, const Side& second) {
    const std::size_t firstMoc = mocIndex(first.moc);
    const std::size_t secondMoc = mocIndex(second.moc);
    const std::size_t firstAttribute = referenceIndex(firstMoc, first.attribute, secondMoc);
    const std::size_t secondAttribute = referenceIndex(secondMoc, second.attribute, firstMoc);
    // An end has the name and the bounds of the attribute that points at it.
    mEnds.push_back({firstMoc,
                     second.attribute,
                     secondAttribute,
                     second.role,
                     {second.lower, second.upper},
                     first.keepAtDelete});
    mEnds.push_back({secondMoc,
                     first.attribute,
                     firstAttribute,
                     first.role,
                     {first.lower, first.upper},
                     second.keepAtDelete});
    mBiDirs.push_back({mEnds.size() - 2, mEnds.size() - 1});
    return *this;
}

Model& Model::uniDir(const std::string& moc, const std::string& attribute,
                     const std::string& target, long long lower, long long upper) {
    const std::size_t source = mocIndex(moc);
    const std::size_t targetMoc = mocIndex(target);
    const std::size_t index = referenceIndex(source, attribute, targetMoc);
    mEnds.push_back({targetMoc, attribute, index, "references", {lower, upper}, false});
    mUniDirs.push_back({source, mEnds.size() - 1});
    return *this;
}

std::optional<Value> Model::unset(const std::string& moc, const std::string& attribute) const {
    const std::optional<std::size_t> mocFound = findMoc(moc);
    const std::optional<std::size_t> found =
        mocFound ? findAttribute(*mocFound, attribute) : std::nullopt;
    return found && mAttributes[*found].typeCode == OrvMoAttributeTypeMoRef_3
               ? std::optional<Value>(refs({}))
               : std::nullopt;
}

std::optional<Model::Handle> Model::mocFromDn(const std::string& dn) const {
    return asHandle(KindMoc, findMoc(classOf(dn)));
}

std::optional<const char*> Model::generalName(Handle properties) const {
    if (const auto moc = indexIn(mMocs, properties, KindProperties + KindMoc)) {
        return mMocs[*moc].name.c_str();
    }
    if (const auto attribute = indexIn(mAttributes, properties, KindProperties + KindAttribute)) {
        return mAttributes[*attribute].name.c_str();
    }
    if (const auto end = indexIn(mEnds, properties, KindProperties + KindEnd)) {
        return mEnds[*end].name.c_str();
    }
    return std::nullopt;
}

std::optional<Model::Handle> Model::propertiesOf(Handle object) const {
    const bool known = indexIn(mMocs, object, KindMoc) ||
                       indexIn(mAttributes, object, KindAttribute) ||
                       indexIn(mEnds, object, KindEnd);
    return known ? std::optional<Handle>(object + (static_cast<Handle>(KindProperties) << 32U))
                 : std::nullopt;
}

std::optional<Model::Handle> Model::firstAttribute(Handle moc) const {
    const auto index = indexIn(mMocs, moc, KindMoc);
    return asHandle(KindAttribute, findFrom(mAttributes, 0, [&](const Attribute& each) {
                        return index == each.moc;
                    }));
}

std::optional<Model::Handle> Model::nextAttribute(Handle attribute) const {
    const auto index = indexIn(mAttributes, attribute, KindAttribute);
    if (!index) {
        return std::nullopt;
    }
    return asHandle(KindAttribute, findFrom(mAttributes, *index + 1, [&](const Attribute& each) {
                        return each.moc == mAttributes[*index].moc;
                    }));
}

std::optional<Model::Handle> Model::firstContainment(Handle moc) const {
    const auto index = indexIn(mMocs, moc, KindMoc);
    return asHandle(KindContainment, findFrom(mContainments, 0, [&](const Containment& each) {
                        return index == each.parent;
                    }));
}

std::optional<Model::Handle> Model::nextContainment(Handle containment) const {
    const auto index = indexIn(mContainments, containment, KindContainment);
    if (!index) {
        return std::nullopt;
    }
    return asHandle(KindContainment,
                    findFrom(mContainments, *index + 1, [&](const Containment& each) {
                        return each.parent == mContainments[*index].parent;
                    }));
}

std::optional<Model::Handle> Model::containedMoc(Handle containment) const {
    const auto index = indexIn(mContainments, containment, KindContainment);
    return index ? std::optional<Handle>(handleOf(KindMoc, mContainments[*index].child))
                 : std::nullopt;
}

std::optional<Model::Handle> Model::firstBiDir(Handle moc) const {
    const auto index = indexIn(mMocs, moc, KindMoc);
    return asHandle(KindBiDir, findFrom(mBiDirs, 0, [&](const BiDir& each) {
                        return index && takesPart(*index, each);
                    }));
}

std::optional<Model::Handle> Model::nextBiDir(Handle current, Handle moc) const {
    const auto mocFound = indexIn(mMocs, moc, KindMoc);
    const auto index = indexIn(mBiDirs, current, KindBiDir);
    if (!mocFound || !index) {
        return std::nullopt;
    }
    return asHandle(KindBiDir, findFrom(mBiDirs, *index + 1, [&](const BiDir& each) {
                        return takesPart(*mocFound, each);
                    }));
}

std::optional<Model::Handle> Model::firstUniDir(Handle moc) const {
    const auto index = indexIn(mMocs, moc, KindMoc);
    return asHandle(KindUniDir,
                    findFrom(mUniDirs, 0, [&](const UniDir& each) { return index == each.moc; }));
}

std::optional<Model::Handle> Model::nextUniDir(Handle association) const {
    const auto index = indexIn(mUniDirs, association, KindUniDir);
    if (!index) {
        return std::nullopt;
    }
    return asHandle(KindUniDir, findFrom(mUniDirs, *index + 1, [&](const UniDir& each) {
                        return each.moc == mUniDirs[*index].moc;
                    }));
}

std::optional<Model::Handle> Model::endMoc(Handle end) const {
    const auto index = indexIn(mEnds, end, KindEnd);
    return index ? std::optional<Handle>(handleOf(KindMoc, mEnds[*index].moc)) : std::nullopt;
}

std::optional<Model::Handle> Model::endAttribute(Handle end) const {
    const auto index = indexIn(mEnds, end, KindEnd);
    return index ? std::optional<Handle>(handleOf(KindAttribute, mEnds[*index].attribute))
                 : std::nullopt;
}

std::optional<const char*> Model::endText(Handle end, int identifier) const {
    const auto index = indexIn(mEnds, end, KindEnd);
    if (!index || identifier < 0 || identifier > 1) {
        return std::nullopt;
    }
    return identifier == 0 ? mEnds[*index].name.c_str() : mEnds[*index].role.c_str();
}

std::optional<bool> Model::endFlag(Handle end, int identifier) const {
    const auto index = indexIn(mEnds, end, KindEnd);
    return index && identifier == 0 ? std::optional<bool>(mEnds[*index].keepAtDelete)
                                    : std::nullopt;
}

std::optional<long long> Model::endBound(Handle end, int identifier) const {
    const auto index = indexIn(mEnds, end, KindEnd);
    return index ? boundOf(mEnds[*index].bounds, identifier) : std::nullopt;
}

std::optional<Model::Handle> Model::endOfBiDir(Handle association, bool second) const {
    const auto index = indexIn(mBiDirs, association, KindBiDir);
    if (!index) {
        return std::nullopt;
    }
    return handleOf(KindEnd, second ? mBiDirs[*index].secondEnd : mBiDirs[*index].firstEnd);
}

std::optional<Model::Handle> Model::endOfUniDir(Handle association) const {
    const auto index = indexIn(mUniDirs, association, KindUniDir);
    return index ? std::optional<Handle>(handleOf(KindEnd, mUniDirs[*index].end)) : std::nullopt;
}

std::optional<int> Model::typeCode(Handle type) const {
    const auto index = indexIn(mAttributes, type, KindType);
    return index ? std::optional<int>(mAttributes[*index].typeCode) : std::nullopt;
}

std::optional<long long> Model::typeBound(Handle type, int identifier) const {
    const auto index = indexIn(mAttributes, type, KindType);
    return index ? boundOf(mAttributes[*index].bounds, identifier) : std::nullopt;
}

std::optional<Model::Handle> Model::mocOfAttribute(Handle attribute) const {
    const auto index = indexIn(mAttributes, attribute, KindAttribute);
    return index ? std::optional<Handle>(handleOf(KindMoc, mAttributes[*index].moc)) : std::nullopt;
}

std::optional<Model::Handle> Model::typeOfAttribute(Handle attribute) const {
    return asHandle(KindType, indexIn(mAttributes, attribute, KindAttribute));
}

std::optional<Model::Handle> Model::referencedMoc(Handle type) const {
    const auto index = indexIn(mAttributes, type, KindType);
    return index && mAttributes[*index].typeCode == OrvMoAttributeTypeMoRef_3
               ? std::optional<Handle>(handleOf(KindMoc, mAttributes[*index].target))
               : std::nullopt;
}

std::string Model::nameOf(Handle handle) const {
    const Handle object = handle & ~(static_cast<Handle>(KindProperties) << 32U);
    const std::string prefix = object == handle ? "" : "properties of ";
    const auto attributeName = [&](std::size_t index) {
        return mMocs[mAttributes[index].moc].name + "." + mAttributes[index].name;
    };
    if (const auto moc = indexIn(mMocs, object, KindMoc)) {
        return prefix + mMocs[*moc].name;
    }
    if (const auto attribute = indexIn(mAttributes, object, KindAttribute)) {
        return prefix + attributeName(*attribute);
    }
    if (const auto end = indexIn(mEnds, object, KindEnd)) {
        return prefix + mEnds[*end].name + "@" + mMocs[mEnds[*end].moc].name;
    }
    if (const auto type = indexIn(mAttributes, object, KindType)) {
        return "type of " + attributeName(*type);
    }
    if (const auto containment = indexIn(mContainments, object, KindContainment)) {
        return mMocs[mContainments[*containment].parent].name + ">" +
               mMocs[mContainments[*containment].child].name;
    }
    if (const auto biDir = indexIn(mBiDirs, object, KindBiDir)) {
        return attributeName(mEnds[mBiDirs[*biDir].secondEnd].attribute) + "<->" +
               attributeName(mEnds[mBiDirs[*biDir].firstEnd].attribute);
    }
    if (const auto uniDir = indexIn(mUniDirs, object, KindUniDir)) {
        const End& end = mEnds[mUniDirs[*uniDir].end];
        return attributeName(end.attribute) + "->" + mMocs[end.moc].name;
    }
    return std::to_string(handle);
}

std::size_t Model::mocIndex(const std::string& name) {
    if (const auto found = findMoc(name)) {
        return *found;
    }
    mMocs.push_back({name});
    return mMocs.size() - 1;
}

std::optional<std::size_t> Model::findMoc(const std::string& name) const {
    return findFrom(mMocs, 0, [&](const Moc& each) { return each.name == name; });
}

std::optional<std::size_t> Model::findAttribute(std::size_t moc, const std::string& name) const {
    return findFrom(mAttributes, 0,
                    [&](const Attribute& each) { return each.moc == moc && each.name == name; });
}

std::size_t Model::referenceIndex(std::size_t moc, const std::string& name, std::size_t target) {
    if (const auto found = findAttribute(moc, name)) {
        return *found;
    }
    mAttributes.push_back({moc, name, OrvMoAttributeTypeMoRef_3, target, {0, 1000}});
    return mAttributes.size() - 1;
}

bool Model::takesPart(std::size_t moc, const BiDir& association) const {
    return mEnds[association.firstEnd].moc == moc || mEnds[association.secondEnd].moc == moc;
}

}
