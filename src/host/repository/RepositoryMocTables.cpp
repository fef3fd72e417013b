// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RepositoryTables.h"

#include "RecentClassPaths.h"
#include "RepositoryAnswer.h"

#include <string_view>

namespace OrvHost {

namespace {

using Index = RepositoryIndex;

Handle mocHandle(ClassIndex moc) {
    return encode({HandleKind::Moc, moc});
}

constinit thread_local RecentClassPaths recentPaths;

// Seldom: not a part of the function below, which would have to keep more.
[[gnu::noinline]] OrvReturnT searchMoc(std::string_view dn, std::string_view path, Handle& moc) {
    const Index& index = *currentRepositoryIndex;
    const auto found = index.model().findClassOfDn(dn);
    if (!found) {
        return OrvNotExist;
    }
    if (!path.empty()) {
        recentPaths.note(index.number(), path, *found);
    }
    moc = mocHandle(*found);
    return OrvOk;
}

/// The flag has no meaning in this host.
OrvReturnT getMocFromDn(const char* dn, int /*flag*/, Handle* moc) {
    if (!currentRepositoryIndex) {
        return OrvNotActive;
    }
    if (!dn || !moc) {
        return OrvInvalidArgument;
    }
    const std::string_view text = dn;
    const std::string_view path = RecentClassPaths::pathOf(text);
    if (const auto* const known = recentPaths.find(currentRepositoryIndex->number(), path)) {
        *moc = mocHandle(*known);
        return OrvOk;
    }
    return searchMoc(text, path, *moc);
}

OrvReturnT getGeneralStringProperty(Handle properties, int identifier, const char** text) {
    if (currentRepositoryIndex == nullptr) {
        return OrvNotActive;
    }
    const char* const name = currentRepositoryIndex->nameOfOwner(properties);
    if (name == nullptr || text == nullptr || identifier != VekOamSpiMrGeneralName_4) {
        return refusalOf(properties & ~kPropertiesBit);
    }
    *text = name;
    return OrvOk;
}

OrvReturnT getMocGeneralProperties(Handle moc, Handle* properties) {
    return answerProperties<&Index::moc>(moc, properties);
}

OrvReturnT getFirstAttribute(Handle moc, Handle* attribute) {
    return answerHandle<&Index::moc, &Index::MocRow::firstAttribute>(moc, attribute);
}

OrvReturnT getFirstContainment(Handle moc, Handle* containment) {
    return answerHandle<&Index::moc, &Index::MocRow::firstContainment>(moc, containment);
}

OrvReturnT getFirstBiDirAssociation(Handle moc, Handle* association) {
    return answerHandle<&Index::moc, &Index::MocRow::firstBiDir>(moc, association);
}

OrvReturnT getFirstUniDirAssociation(Handle moc, Handle* association) {
    return answerHandle<&Index::moc, &Index::MocRow::firstUniDir>(moc, association);
}

OrvReturnT getContainedMoc(Handle containment, Handle* moc) {
    return answerHandle<&Index::containment, &Index::ContainmentRow::moc>(containment, moc);
}

OrvReturnT getNextContainment(Handle containment, Handle* next) {
    return answerHandle<&Index::containment, &Index::ContainmentRow::next>(containment, next);
}

}

const VekOamSpiMrDnLookup_4 kDnLookup{nullptr, nullptr, &getMocFromDn};

const VekOamSpiMrGeneralProperties_4 kGeneralProperties{&getGeneralStringProperty};

const VekOamSpiMrMocQueries_4 kMocQueries{&getMocGeneralProperties,
                                          nullptr,
                                          nullptr,
                                          nullptr,
                                          nullptr,
                                          &getFirstAttribute,
                                          nullptr,
                                          &getFirstContainment,
                                          nullptr,
                                          &getFirstBiDirAssociation,
                                          &getFirstUniDirAssociation};

const VekOamSpiMrContainment_4 kContainment{nullptr, nullptr, &getContainedMoc,
                                            nullptr, nullptr, &getNextContainment};

}
