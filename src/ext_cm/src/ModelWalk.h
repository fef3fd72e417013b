// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_MODELWALK_H
#define ORV_EXT_CM_MODELWALK_H

#include "OrvReturn.h"

/// \file
/// Walks over the lists of the model repository. A list is read by a first step and then by next
/// steps, each from the handle that the step before gave. Steps are callables that fill in a handle
/// and answer with the repository's code:
///
///     OrvReturnT first(Handle* found)
///     OrvReturnT next(Handle current, Handle* found)
///
/// Every walk ends when its visitor, `WalkOn visit(Handle)`, says so. Otherwise the two kinds
/// differ in what ends them, and the name of the walk says which it is.

namespace OrvExtCmRouterService {

/// A visitor's answer.
enum class WalkOn { Yes, No };

/// Walks until a step answers anything but OrvOk, from \p current on, which is visited first.
/// Returns the code that ended the walk; OrvOk means that the visitor ended it. OrvNotExist is the
/// regular end of a list; whether another code is a failure is for the caller to say.
template <class Handle, class Next, class Visitor>
OrvReturnT walkUntilNonZeroFrom(Handle current, Next&& next, Visitor&& visit) {
    while (visit(current) == WalkOn::Yes) {
        Handle found = 0;
        const OrvReturnT code = next(current, &found);
        if (code != OrvOk) {
            return code;
        }
        current = found;
    }
    return OrvOk;
}

/// The same walk from the head of the list.
template <class Handle, class First, class Next, class Visitor>
OrvReturnT walkUntilNonZero(First&& first, Next&& next, Visitor&& visit) {
    Handle head = 0;
    const OrvReturnT code = first(&head);
    if (code != OrvOk) {
        return code;
    }
    return walkUntilNonZeroFrom(head, next, visit);
}

/// Walks until a step answers OrvNotExist, and past every other code. \p current is where the walk
/// stands: each step leaves in it what the step found, also a failed step and the last one, so that
/// the caller sees where the walk ended.
///
/// A step that fails finds what the step before found. A repository that fails for ever would so
/// be asked for ever; two failing steps in a row that leave \p current where it was end the walk.
template <class Handle, class First, class Next, class Visitor>
void walkUntilNotExist(Handle& current, First&& first, Next&& next, Visitor&& visit) {
    constexpr int tolerated = 2;
    Handle before = current;
    OrvReturnT code = first(&current);
    Handle found = 0;
    int standing = 0;
    while (code != OrvNotExist) {
        standing = (code != OrvOk && current == before) ? standing + 1 : 0;
        if (standing == tolerated || visit(current) == WalkOn::No) {
            return;
        }
        before = current;
        code = next(current, &found);
        current = found;
    }
}

}

#endif
