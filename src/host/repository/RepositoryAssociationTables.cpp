// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RepositoryTables.h"

#include "RepositoryAnswer.h"

namespace OrvHost {

namespace {

OrvReturnT getEndMoc(Handle end, Handle* moc) {
    return answer(end, &isEnd, moc, [](const RepositoryIndex& index, RepositoryHandle parts) {
        return handleAt(HandleKind::Moc, index.end(parts).moc);
    });
}

OrvReturnT getEndAttribute(Handle end, Handle* attribute) {
    return answer(end, &isEnd, attribute, [](const RepositoryIndex& index, RepositoryHandle parts) {
        return Answer(encode(index.attributeOfEnd(parts)));
    });
}

OrvReturnT getEndGeneralProperties(Handle end, Handle* properties) {
    return propertiesOf(end, &isEnd, properties);
}

OrvReturnT getEndStringProperty(Handle end, int identifier, const char** text) {
    return answerProperty(end, &isEnd, text,
                          [identifier](const RepositoryIndex& index,
                                       RepositoryHandle parts) -> std::optional<const char*> {
                              switch (identifier) {
                              case VekOamSpiMrEndName_4:
                                  return index.end(parts).name.c_str();
                              case VekOamSpiMrEndRole_4:
                                  return index.end(parts).role.c_str();
                              default:
                                  return std::nullopt;
                              }
                          });
}

OrvReturnT getEndBoolProperty(Handle end, int identifier, bool* flag) {
    return answerProperty(end, &isEnd, flag,
                          [identifier](const RepositoryIndex& index, RepositoryHandle parts) {
                              return identifier == VekOamSpiMrEndKeepAtDelete_4
                                         ? std::optional(index.end(parts).keepAtDelete)
                                         : std::nullopt;
                          });
}

OrvReturnT getEndIntProperty(Handle end, int identifier, long long* number) {
    return answerProperty(end, &isEnd, number,
                          [identifier](const RepositoryIndex& index, RepositoryHandle parts) {
                              return boundOf(index.attribute(index.attributeOfEnd(parts)),
                                             index.end(parts).cardinality, identifier);
                          });
}

OrvReturnT getEnd(Handle association, std::uint32_t which, Handle* end) {
    return answer(association, &isOne<HandleKind::BiDir>, end,
                  [which](const auto&, RepositoryHandle parts) {
                      return Answer(encode({HandleKind::BiDirEnd, parts.first, which}));
                  });
}

OrvReturnT getFirstEnd(Handle association, Handle* end) {
    return getEnd(association, 0, end);
}

OrvReturnT getSecondEnd(Handle association, Handle* end) {
    return getEnd(association, 1, end);
}

/// The class says whose list is walked: it must have a part in the current association.
OrvReturnT getNextBiDirAssociation(Handle current, Handle moc, Handle* next) {
    const RepositoryHandle walker = decode(moc);
    const OrvReturnT code = judge(moc, &isOne<HandleKind::Moc>);
    if (code != OrvOk) {
        return code;
    }
    const RepositoryHandle walked = decode(current);
    if (walked.kind == HandleKind::BiDir &&
        !currentRepositoryIndex->takesPart(walker.first, walked.first)) {
        return OrvInvalidArgument;
    }
    return answer(current, &isOne<HandleKind::BiDir>, next,
                  [walker](const RepositoryIndex& index, RepositoryHandle parts) {
                      return handleAt(HandleKind::BiDir,
                                      index.nextBiDir(parts.first, walker.first));
                  });
}

OrvReturnT getUniDirEnd(Handle association, Handle* end) {
    return answer(association, &isOne<HandleKind::UniDir>, end,
                  [](const auto&, RepositoryHandle parts) {
                      return Answer(encode({HandleKind::UniDirEnd, parts.first}));
                  });
}

OrvReturnT getNextUniDirAssociation(Handle association, Handle* next) {
    return answer(association, &isOne<HandleKind::UniDir>, next,
                  [](const RepositoryIndex& index, RepositoryHandle parts) {
                      return handleAt(HandleKind::UniDir, index.nextUniDir(parts.first));
                  });
}

}

const VekOamSpiMrAssociationEnd_4 kAssociationEnd{
    &getEndMoc,          &getEndAttribute,  &getEndGeneralProperties, &getEndStringProperty,
    &getEndBoolProperty, &getEndIntProperty};

const VekOamSpiMrBiDirAssociation_4 kBiDirAssociation{nullptr, nullptr, &getFirstEnd, &getSecondEnd,
                                                      &getNextBiDirAssociation};

const VekOamSpiMrUniDirAssociation_4 kUniDirAssociation{nullptr, nullptr, &getUniDirEnd,
                                                        &getNextUniDirAssociation};

}
