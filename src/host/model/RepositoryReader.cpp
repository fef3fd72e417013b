// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RepositoryReader.h"

#include "OrvException.h"

namespace OrvHost {

namespace {

/// A function of the repository, and its name for messages.
template <class Function>
struct Entry {
    const char* name;
    Function function;
};

template <class SubTable, class Function>
Entry<Function> entryOf(const SubTable* subTable, Function SubTable::*member, const char* name) {
    if (!subTable || !(subTable->*member)) {
        throw Orv::OrvException("The model repository has no entry %s.", name);
    }
    return {name, subTable->*member};
}

[[noreturn]] void fail(const char* name, OrvReturnT code) {
    throw Orv::OrvException(code, "The model repository answered %s with code %d.", name, code);
}

/// Calls a function of the table; returns nothing if the code says "not there" or "end of the
/// list".
template <class Result, class Function, class... Arguments>
std::optional<Result> ask(const Entry<Function>& entry, Arguments... arguments) {
    Result result{};
    const OrvReturnT code = entry.function(arguments..., &result);
    if (code == OrvNotExist) {
        return std::nullopt;
    }
    if (code != OrvOk) {
        fail(entry.name, code);
    }
    return result;
}

/// Calls a function of the table that must have a result.
template <class Result, class Function, class... Arguments>
Result get(const Entry<Function>& entry, Arguments... arguments) {
    const std::optional<Result> result = ask<Result>(entry, arguments...);
    if (!result) {
        fail(entry.name, OrvNotExist);
    }
    return *result;
}

template <class Function, class... Arguments>
std::string getText(const Entry<Function>& entry, Arguments... arguments) {
    const char* text = get<const char*>(entry, arguments...);
    return text ? text : "";
}

/// Walks a list: `first` is called with its owner, `next` with the previous handle and `more`.
template <class First, class Next, class... More>
std::vector<unsigned long long> listOf(const Entry<First>& first, const Entry<Next>& next,
                                       unsigned long long owner, More... more) {
    using Handle = unsigned long long;
    std::vector<Handle> all;
    std::optional<Handle> handle = ask<Handle>(first, owner);
    while (handle) {
        all.push_back(*handle);
        handle = ask<Handle>(next, all.back(), more...);
        if (handle == all.back()) {
            throw Orv::OrvException("The model repository stands still in %s.", next.name);
        }
    }
    return all;
}

}

using Moc = RepositoryReader::Moc;
using Attribute = RepositoryReader::Attribute;

std::optional<Moc> RepositoryReader::findClass(const std::string& dn) const {
    constexpr int kFlag = 1;
    return ask<Moc>(entryOf(mTable.dnLookup, &VekOamSpiMrDnLookup_4::getMocFromDn, "getMocFromDn"),
                    dn.c_str(), kFlag);
}

std::string RepositoryReader::nameOf(Properties properties) const {
    return getText(entryOf(mTable.generalProperties,
                           &VekOamSpiMrGeneralProperties_4::getGeneralStringProperty,
                           "getGeneralStringProperty"),
                   properties, VekOamSpiMrGeneralName_4);
}

std::string RepositoryReader::nameOfClass(Moc moc) const {
    return nameOf(get<Properties>(entryOf(mTable.mocQueries,
                                          &VekOamSpiMrMocQueries_4::getMocGeneralProperties,
                                          "getMocGeneralProperties"),
                                  moc));
}

std::vector<Moc> RepositoryReader::childrenOf(Moc moc) const {
    const auto child =
        entryOf(mTable.containment, &VekOamSpiMrContainment_4::getContainedMoc, "getContainedMoc");
    std::vector<Moc> children =
        listOf(entryOf(mTable.mocQueries, &VekOamSpiMrMocQueries_4::getFirstContainment,
                       "getFirstContainment"),
               entryOf(mTable.containment, &VekOamSpiMrContainment_4::getNextContainment,
                       "getNextContainment"),
               moc);
    for (Moc& each : children) {
        each = get<Moc>(child, each);
    }
    return children;
}

std::vector<Attribute> RepositoryReader::attributesOf(Moc moc) const {
    return listOf(
        entryOf(mTable.mocQueries, &VekOamSpiMrMocQueries_4::getFirstAttribute,
                "getFirstAttribute"),
        entryOf(mTable.attribute, &VekOamSpiMrAttribute_4::getNextAttribute, "getNextAttribute"),
        moc);
}

std::vector<RepositoryReader::BiDir> RepositoryReader::biDirsOf(Moc moc) const {
    return listOf(entryOf(mTable.mocQueries, &VekOamSpiMrMocQueries_4::getFirstBiDirAssociation,
                          "getFirstBiDirAssociation"),
                  entryOf(mTable.biDirAssociation,
                          &VekOamSpiMrBiDirAssociation_4::getNextBiDirAssociation,
                          "getNextBiDirAssociation"),
                  moc, moc);
}

std::vector<RepositoryReader::UniDir> RepositoryReader::uniDirsOf(Moc moc) const {
    return listOf(entryOf(mTable.mocQueries, &VekOamSpiMrMocQueries_4::getFirstUniDirAssociation,
                          "getFirstUniDirAssociation"),
                  entryOf(mTable.uniDirAssociation,
                          &VekOamSpiMrUniDirAssociation_4::getNextUniDirAssociation,
                          "getNextUniDirAssociation"),
                  moc);
}

std::string RepositoryReader::nameOfAttribute(Attribute attribute) const {
    return nameOf(get<Properties>(entryOf(mTable.attribute,
                                          &VekOamSpiMrAttribute_4::getAttributeGeneralProperties,
                                          "getAttributeGeneralProperties"),
                                  attribute));
}

Moc RepositoryReader::classOfAttribute(Attribute attribute) const {
    return get<Moc>(
        entryOf(mTable.attribute, &VekOamSpiMrAttribute_4::getAttributeMoc, "getAttributeMoc"),
        attribute);
}

RepositoryReader::Type RepositoryReader::typeOf(Attribute attribute) const {
    return get<Type>(
        entryOf(mTable.attribute, &VekOamSpiMrAttribute_4::getAttributeType, "getAttributeType"),
        attribute);
}

int RepositoryReader::typeCodeOf(Type type) const {
    return get<int>(
        entryOf(mTable.attributeType, &VekOamSpiMrAttributeType_4::getTypeCode, "getTypeCode"),
        type);
}

long long RepositoryReader::boundOfType(Type type, int identifier) const {
    return get<long long>(entryOf(mTable.attributeType,
                                  &VekOamSpiMrAttributeType_4::getTypeIntProperty,
                                  "getTypeIntProperty"),
                          type, identifier);
}

Moc RepositoryReader::referencedClass(Type type) const {
    return get<Moc>(entryOf(mTable.referenceType, &VekOamSpiMrReferenceType_4::getReferencedMoc,
                            "getReferencedMoc"),
                    type);
}

RepositoryReader::End RepositoryReader::firstEnd(BiDir association) const {
    return get<End>(entryOf(mTable.biDirAssociation, &VekOamSpiMrBiDirAssociation_4::getFirstEnd,
                            "getFirstEnd"),
                    association);
}

RepositoryReader::End RepositoryReader::secondEnd(BiDir association) const {
    return get<End>(entryOf(mTable.biDirAssociation, &VekOamSpiMrBiDirAssociation_4::getSecondEnd,
                            "getSecondEnd"),
                    association);
}

RepositoryReader::End RepositoryReader::endOf(UniDir association) const {
    return get<End>(entryOf(mTable.uniDirAssociation, &VekOamSpiMrUniDirAssociation_4::getUniDirEnd,
                            "getUniDirEnd"),
                    association);
}

Moc RepositoryReader::classOfEnd(End end) const {
    return get<Moc>(
        entryOf(mTable.associationEnd, &VekOamSpiMrAssociationEnd_4::getEndMoc, "getEndMoc"), end);
}

Attribute RepositoryReader::attributeOfEnd(End end) const {
    return get<Attribute>(entryOf(mTable.associationEnd,
                                  &VekOamSpiMrAssociationEnd_4::getEndAttribute, "getEndAttribute"),
                          end);
}

std::string RepositoryReader::textOfEnd(End end, int identifier) const {
    return getText(entryOf(mTable.associationEnd,
                           &VekOamSpiMrAssociationEnd_4::getEndStringProperty,
                           "getEndStringProperty"),
                   end, identifier);
}

bool RepositoryReader::isKeptAtDelete(End end) const {
    return get<bool>(entryOf(mTable.associationEnd,
                             &VekOamSpiMrAssociationEnd_4::getEndBoolProperty,
                             "getEndBoolProperty"),
                     end, VekOamSpiMrEndKeepAtDelete_4);
}

long long RepositoryReader::boundOfEnd(End end, int identifier) const {
    return get<long long>(entryOf(mTable.associationEnd,
                                  &VekOamSpiMrAssociationEnd_4::getEndIntProperty,
                                  "getEndIntProperty"),
                          end, identifier);
}

}
