// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RepositoryTables.h"

#include "RecentClassPaths.h"
#include "RepositoryAnswer.h"

#include <string_view>

namespace OrvHost {

namespace {

using Rows = RepositoryRows;

Handle mocHandle(ClassIndex moc) {
    return encode({HandleKind::Moc, moc});
}

constinit thread_local RecentClassPaths recentPaths;

// Seldom: not a part of the function below, which would have to keep more.
[[gnu::noinline]] OrvReturnT searchMoc(const char* dn, Handle* moc) {
    const Model* const model = currentRepository.model();
    if (model == nullptr) {
        return OrvNotActive;
    }
    if (dn == nullptr || moc == nullptr) {
        return OrvInvalidArgument;
    }
    const auto found = model->findClassOfDn(dn);
    if (!found) {
        return OrvNotExist;
    }
    const std::string_view path = RecentClassPaths::pathOf(dn);
    if (!path.empty()) {
        recentPaths.note(currentRepository.number(), path, *found);
    }
    *moc = mocHandle(*found);
    return OrvOk;
}

/// The flag has no meaning in this host.
OrvReturnT getMocFromDn(const char* dn, int /*flag*/, Handle* moc) {
    if (dn != nullptr && moc != nullptr) {
        const auto* const known =
            recentPaths.find(currentRepository.number(), RecentClassPaths::pathOf(dn));
        if (known != nullptr) {
            *moc = mocHandle(*known);
            return OrvOk;
        }
    }
    return searchMoc(dn, moc);
}

OrvReturnT getGeneralStringProperty(Handle properties, int identifier, const char** text) {
    const char* const name = currentRepository.nameOfOwner(properties);
    if (name == nullptr || text == nullptr || identifier != VekOamSpiMrGeneralName_4) {
        return refusalOf(properties & ~kPropertiesBit);
    }
    *text = name;
    return OrvOk;
}

OrvReturnT getMocGeneralProperties(Handle moc, Handle* properties) {
    return answerProperties<&Rows::moc>(moc, properties);
}

OrvReturnT getFirstAttribute(Handle moc, Handle* attribute) {
    return answerHandle<&Rows::moc, &Rows::MocRow::firstAttribute>(moc, attribute);
}

OrvReturnT getFirstContainment(Handle moc, Handle* containment) {
    return answerHandle<&Rows::moc, &Rows::MocRow::firstContainment>(moc, containment);
}

OrvReturnT getFirstBiDirAssociation(Handle moc, Handle* association) {
    return answerHandle<&Rows::moc, &Rows::MocRow::firstBiDir>(moc, association);
}

OrvReturnT getFirstUniDirAssociation(Handle moc, Handle* association) {
    return answerHandle<&Rows::moc, &Rows::MocRow::firstUniDir>(moc, association);
}

OrvReturnT getContainedMoc(Handle containment, Handle* moc) {
    return answerHandle<&Rows::containment, &Rows::ContainmentRow::moc>(containment, moc);
}

OrvReturnT getNextContainment(Handle containment, Handle* next) {
    return answerHandle<&Rows::containment, &Rows::ContainmentRow::next>(containment, next);
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
