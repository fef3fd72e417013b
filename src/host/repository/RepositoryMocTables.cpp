// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RepositoryTables.h"

#include "RepositoryAnswer.h"

namespace OrvHost {

namespace {

bool hasName(HandleKind kind) {
    return kind == HandleKind::Moc || kind == HandleKind::Attribute || isEnd(kind);
}

/// Returns nothing for the class that means "any class", since it is not in the model.
const ClassDef* classAt(const RepositoryIndex& index, RepositoryHandle moc) {
    const bool isAny = moc.first == kAnyClassPosition;
    return isAny ? nullptr : &index.model().classes[moc.first];
}

std::optional<const char*> nameOf(const RepositoryIndex& index, RepositoryHandle owner) {
    if (owner.kind == HandleKind::Attribute) {
        return index.attribute(owner).name.c_str();
    }
    if (isEnd(owner.kind)) {
        return index.end(owner).name.c_str();
    }
    const ClassDef* moc = classAt(index, owner);
    return moc ? moc->name.c_str() : kAnyClassName.data();
}

/// The flag has no meaning in this host.
OrvReturnT getMocFromDn(const char* dn, int /*flag*/, Handle* moc) {
    if (!currentRepositoryIndex) {
        return OrvNotActive;
    }
    if (!dn || !moc) {
        return OrvInvalidArgument;
    }
    const auto found = currentRepositoryIndex->model().findClassOfDn(dn);
    if (!found) {
        return OrvNotExist;
    }
    *moc = encode({HandleKind::Moc, *found});
    return OrvOk;
}

OrvReturnT getGeneralStringProperty(Handle properties, int identifier, const char** text) {
    if (properties != 0 && !(properties & kPropertiesBit)) {
        return currentRepositoryIndex ? OrvInvalidArgument : OrvNotActive;
    }
    return answerProperty(properties & ~kPropertiesBit, &hasName, text,
                          [identifier](const RepositoryIndex& index, RepositoryHandle owner) {
                              return identifier == VekOamSpiMrGeneralName_4 ? nameOf(index, owner)
                                                                            : std::nullopt;
                          });
}

OrvReturnT getMocGeneralProperties(Handle moc, Handle* properties) {
    return propertiesOf(moc, &isOne<HandleKind::Moc>, properties);
}

OrvReturnT getFirstAttribute(Handle moc, Handle* attribute) {
    return answer(moc, &isOne<HandleKind::Moc>, attribute,
                  [](const RepositoryIndex& index, RepositoryHandle parts) {
                      const ClassDef* owner = classAt(index, parts);
                      return elementAt(HandleKind::Attribute, parts.first, 0,
                                       owner ? owner->attributes.size() : 0);
                  });
}

OrvReturnT getFirstContainment(Handle moc, Handle* containment) {
    return answer(moc, &isOne<HandleKind::Moc>, containment,
                  [](const RepositoryIndex& index, RepositoryHandle parts) {
                      const ClassDef* parent = classAt(index, parts);
                      return elementAt(HandleKind::Containment, parts.first, 0,
                                       parent ? parent->children.size() : 0);
                  });
}

OrvReturnT getFirstBiDirAssociation(Handle moc, Handle* association) {
    return answer(moc, &isOne<HandleKind::Moc>, association,
                  [](const RepositoryIndex& index, RepositoryHandle parts) {
                      return handleAt(HandleKind::BiDir, index.firstBiDir(parts.first));
                  });
}

OrvReturnT getFirstUniDirAssociation(Handle moc, Handle* association) {
    return answer(moc, &isOne<HandleKind::Moc>, association,
                  [](const RepositoryIndex& index, RepositoryHandle parts) {
                      return handleAt(HandleKind::UniDir, index.firstUniDir(parts.first));
                  });
}

OrvReturnT getContainedMoc(Handle containment, Handle* moc) {
    return answer(containment, &isOne<HandleKind::Containment>, moc,
                  [](const RepositoryIndex& index, RepositoryHandle parts) {
                      const ClassDef& parent = index.model().classes[parts.first];
                      return handleAt(HandleKind::Moc, parent.children[parts.second]);
                  });
}

OrvReturnT getNextContainment(Handle containment, Handle* next) {
    return answer(containment, &isOne<HandleKind::Containment>, next,
                  [](const RepositoryIndex& index, RepositoryHandle parts) {
                      return elementAt(HandleKind::Containment, parts.first, parts.second + 1,
                                       index.model().classes[parts.first].children.size());
                  });
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
