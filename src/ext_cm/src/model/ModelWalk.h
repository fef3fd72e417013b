// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_MODELWALK_H
#define ORV_EXT_CM_MODELWALK_H

#include "ModelReader.h"
#include "OrvReturn.h"
#include "messages/Tracing.h"

#include <list>
#include <set>
#include <utility>

/// \file
/// Walks over the lists of the model repository. A list is read by a first step and then by next
/// steps, each from the handle that the step before found. Steps are callables that fill in a
/// handle and answer with the repository's code:
///
///     OrvReturnT first(Handle* found)
///     OrvReturnT next(Handle current, Handle* found)
///
/// Both kinds of walk are used in the same way, and differ in what ends them:
///
///     auto walk = walkUntilNonZero<Handle>(ORV_TRACE_POINT, first, next);
///     for (; walk.more(); walk.advance()) { ... walk.current() ... }
///
/// No model has lists of a million members. A list that goes on after that leads back into itself:
/// it is cut off there, with a log, and counts as ended. What was gathered from it until then may
/// stand there many times over; withoutRepeats leaves one of each.

namespace OrvExtCmRouterService {

/// The end of a step: what the repository answered goes to \p found. Gives back its code.
template <class Handle>
OrvReturnT stepTo(Handle* found, const Orv::ModelAnswer<Handle>& answer) {
    *found = answer.value;
    return answer.code;
}

/// Counts the steps of one walk for the operation at \p point.
class StepLimit {
public:
    explicit StepLimit(const TracePoint& point) : mPoint(point) {}

    /// \p code, which a step answered; or OrvNotExist after too many steps.
    OrvReturnT cutOff(OrvReturnT code) {
        if (code == OrvNotExist || ++mSteps < mostSteps) {
            return code;
        }
        ORV_LOG_AT(mPoint, 3, "A list of the model repository does not end: cut off after %d steps",
                   mSteps);
        return OrvNotExist;
    }

    bool hasCutOff() const { return mSteps == mostSteps; }

private:
    static constexpr int mostSteps = 1000000;

    TracePoint mPoint;
    int mSteps = 0;
};

/// Ends at the first step that answers anything but OrvOk.
template <class Handle, class Next>
class WalkUntilNonZero {
public:
    /// Stands at \p current, which a step with the answer \p code has found.
    WalkUntilNonZero(const TracePoint& point, Handle current, OrvReturnT code, Next next)
        : mCurrent(current), mCode(code), mNext(std::move(next)), mLimit(point) {}

    bool more() const { return mCode == OrvOk; }

    /// The handle that the last good step found.
    Handle current() const { return mCurrent; }

    void advance() {
        Handle found = 0;
        mCode = mNext(mCurrent, &found);
        if (more()) {
            mCode = mLimit.cutOff(mCode);
        }
        if (more()) {
            mCurrent = found;
        }
    }

    /// True if the walk has ended at its limit.
    bool isCutOff() const { return mLimit.hasCutOff(); }

    /// What the last step answered. OrvNotExist is the regular end of a list; whether another code
    /// is a failure, the user of the walk decides.
    OrvReturnT code() const { return mCode; }

private:
    Handle mCurrent;
    OrvReturnT mCode;
    Next mNext;
    StepLimit mLimit;
};

/// Removes repeated entries from \p gathered and keeps the first of each, in their order.
template <class Entry>
void withoutRepeats(std::list<Entry>& gathered) {
    std::set<Entry> seen;
    gathered.remove_if([&](const Entry& entry) { return !seen.insert(entry).second; });
}

/// A walk from the head of a list, for the operation at \p point.
template <class Handle, class First, class Next>
WalkUntilNonZero<Handle, Next> walkUntilNonZero(const TracePoint& point, const First& first,
                                                Next next) {
    Handle head = 0;
    const OrvReturnT code = first(&head);
    return {point, head, code, std::move(next)};
}

/// A walk from \p current on, which is visited first.
template <class Handle, class Next>
WalkUntilNonZero<Handle, Next> walkUntilNonZeroFrom(const TracePoint& point, Handle current,
                                                    Next next) {
    return {point, current, OrvOk, std::move(next)};
}

/// Ends at the first step that answers OrvNotExist, and goes on after every other code. Each step
/// leaves in current() the handle that it wrote, also a step that failed and the one that ended the
/// walk. A next step that writes no handle leaves there what the next step before it left, or zero
/// if it is the first one.
///
/// A repository that always fails would be asked without end in this way. Two failing steps in a
/// row that leave the handle where it was end the walk.
template <class Handle, class Next>
class WalkUntilNotExist {
public:
    /// Stands at \p current, which a first step with the answer \p code has left there.
    WalkUntilNotExist(const TracePoint& point, Handle current, OrvReturnT code, Next next)
        : mCurrent(current), mNext(std::move(next)), mLimit(point) {
        judge(code, current == 0);
    }

    bool more() const { return mMore; }

    Handle current() const { return mCurrent; }

    void advance() {
        const OrvReturnT code = mLimit.cutOff(mNext(mCurrent, &mFound));
        const bool stands = mFound == mCurrent;
        mCurrent = mFound;
        judge(code, stands);
    }

private:
    void judge(OrvReturnT code, bool stands) {
        mStandingSteps = (code != OrvOk && stands) ? mStandingSteps + 1 : 0;
        mMore = code != OrvNotExist && mStandingSteps < 2;
    }

    Handle mCurrent;
    Handle mFound = 0; ///< never set back
    Next mNext;
    StepLimit mLimit;
    int mStandingSteps = 0;
    bool mMore = false;
};

/// A walk from the head of a list, for the operation at \p point.
template <class Handle, class First, class Next>
WalkUntilNotExist<Handle, Next> walkUntilNotExist(const TracePoint& point, const First& first,
                                                  Next next) {
    Handle head = 0;
    const OrvReturnT code = first(&head);
    return {point, head, code, std::move(next)};
}

}

#endif
