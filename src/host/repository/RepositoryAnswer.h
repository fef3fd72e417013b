// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_REPOSITORY_REPOSITORYANSWER_H
#define ORV_HOST_REPOSITORY_REPOSITORYANSWER_H

#include "OrvReturn.h"
#include "RepositoryHandle.h"
#include "RepositoryIndex.h"
#include "VekOamSpiModelRepository_4.h"
#include "model/Model.h"

#include <cstddef>
#include <cstdint>
#include <optional>

/// \file
/// The common frame of the repository's functions: each checks its arguments in the same way and
/// then looks one thing up. The return codes that ModelRepository documents are made here.

namespace OrvHost {

/// The data of the one repository of the process; null if there is none. Only ModelRepository
/// writes it, in its constructor and destructor, while nobody uses the table.
inline const RepositoryIndex* currentRepositoryIndex = nullptr;

using Handle = unsigned long long;
/// A handle as a result; nothing means "not there".
using Answer = std::optional<Handle>;
/// A test that a handle's kind must pass to be accepted by a function.
using KindTest = bool (*)(HandleKind kind);

template <HandleKind Expected>
bool isOne(HandleKind kind) {
    return kind == Expected;
}

inline bool isEnd(HandleKind kind) {
    return kind == HandleKind::BiDirEnd || kind == HandleKind::UniDirEnd;
}

/// OrvOk if there is a repository and `handle` names something in it of an accepted kind.
inline OrvReturnT judge(Handle handle, KindTest isAccepted) {
    if (!currentRepositoryIndex) {
        return OrvNotActive;
    }
    if (handle == 0) {
        return OrvNotExist;
    }
    const RepositoryHandle parts = decode(handle);
    const bool isKnown = isAccepted(parts.kind) && currentRepositoryIndex->exists(parts);
    return isKnown ? OrvOk : OrvInvalidArgument;
}

/// Checks the arguments, then writes the result of `lookUp(index, parts of the handle)` to `out`;
/// if there is no result, returns `otherwise`.
template <class Out, class LookUp>
OrvReturnT answer(Handle handle, KindTest isAccepted, Out* out, LookUp lookUp,
                  OrvReturnT otherwise = OrvNotExist) {
    const OrvReturnT code = judge(handle, isAccepted);
    if (code != OrvOk) {
        return code;
    }
    if (!out) {
        return OrvInvalidArgument;
    }
    const std::optional<Out> found = lookUp(*currentRepositoryIndex, decode(handle));
    if (!found) {
        return otherwise;
    }
    *out = *found;
    return OrvOk;
}

/// The same for properties that every object of that kind has: no result means that there is no
/// such property.
template <class Out, class LookUp>
OrvReturnT answerProperty(Handle handle, KindTest isAccepted, Out* out, LookUp lookUp) {
    return answer(handle, isAccepted, out, lookUp, OrvInvalidArgument);
}

inline Answer handleAt(HandleKind kind, std::optional<std::uint32_t> position) {
    return position ? Answer(encode({kind, *position})) : std::nullopt;
}

/// The list element at position `next` of a list with `size` elements.
inline Answer elementAt(HandleKind kind, std::uint32_t owner, std::uint32_t next,
                        std::size_t size) {
    return next < size ? Answer(encode({kind, owner, next})) : std::nullopt;
}

/// The handle of a block of general properties is the handle of its owner with one bit set.
inline OrvReturnT propertiesOf(Handle owner, KindTest isAccepted, Handle* properties) {
    return answer(owner, isAccepted, properties,
                  [owner](const auto&, auto) { return Answer(owner | kPropertiesBit); });
}

/// A bound of an attribute's values, or of the objects at the end that the attribute is named
/// after, by its property identifier. What depends on a condition has no lower bound here: a reader
/// of the model cannot know whether it is due (see ConditionalReferences.h).
inline std::optional<long long> boundOf(const AttributeDef& attribute, const Bounds& bounds,
                                        int identifier) {
    switch (identifier) {
    case VekOamSpiMrLowerBound_4:
        return attribute.isConditional ? 0 : bounds.lower;
    case VekOamSpiMrUpperBound_4:
        return bounds.upper;
    default:
        return std::nullopt;
    }
}

}

#endif
