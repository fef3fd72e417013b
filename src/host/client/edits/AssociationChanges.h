// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_EDITS_ASSOCIATIONCHANGES_H
#define ORV_HOST_CLIENT_EDITS_ASSOCIATIONCHANGES_H

#include "AssociationSides.h"
#include "EditPlan.h"
#include "ObjectChanges.h"
#include "ReferenceList.h"

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// Decides which objects are associated afterwards, and finds the writes that lead there: see
/// EditPlanner. One thread.
class AssociationChanges {
public:
    /// All are borrowed. Problems go to \p problems.
    AssociationChanges(const AssociationSides& sides, const ObjectChanges& objects,
                       KnownState& state, Wish::Repeated repeated,
                       std::vector<EditProblem>& problems);

    /// The writes, one attribute each, in the state after all other calls of the plan. Throws
    /// RequestError if none lead to the wished references, for example because only the system may
    /// set an attribute that lacks one, and CancelledError.
    std::vector<PlannedCall> calls();

private:
    using Dns = std::vector<std::string>;

    /// A reference attribute of an object: its DN and the attribute's name.
    using Slot = std::pair<std::string, std::string>;

    enum class Standing {
        Named,  ///< the wish says what it is
        Silent, ///< the object is replaced and the attribute is not named
        Open    ///< nothing is said
    };

    /// What becomes of a slot.
    struct Future {
        Standing standing = Standing::Open;
        bool isFirst = false;  ///< a side that is written first
        ReferenceList wished;  ///< of an open or silent one the order does not count
        ReferenceList current; ///< as the calls so far leave it
    };

    void collect();
    void collectRevived(const Slot& slot, const ObjectWish& change);
    void enter(const Slot& slot, Standing standing, ReferenceList values);
    Future& future(const Slot& slot);
    Standing standingOf(const Slot& slot);
    Standing findStanding(const Slot& slot);
    const ReferenceList& before(const Slot& slot);
    ReferenceList afterDeletes(const Slot& slot);
    std::size_t cleanedBy(const Slot& slot, const std::string& target);
    bool isFirst(const Slot& slot);
    bool isWritable(const Slot& slot);
    const AssociationSide* sideTo(const Slot& slot, const std::string& target);

    void checkNamed(const Slot& slot, const Dns& values);
    void decideNamed(const Slot& slot);
    void decidePair(const Slot& near, const Slot& far, bool isWished);
    void decideRevived(const Slot& slot, const std::string& target);
    void decideSilent(const Slot& slot);

    void write(const Slot& slot, Future& future);
    void moveFarSides(const Slot& slot, const ReferenceList& from, const ReferenceList& to);
    using Which = std::function<bool(const Slot& slot, const Future& future)>;
    bool writeAll(const Which& which);
    void requireNone(const Which& isOff) const;

    const AssociationSides& mSides;
    const ObjectChanges& mObjects;
    KnownState& mState;
    Wish::Repeated mRepeated;
    std::vector<EditProblem>& mProblems;
    // Asked for once for each reference of the far side.
    std::map<Slot, Standing> mStandings;
    std::map<Slot, ReferenceList> mBefore;
    std::map<Slot, Future> mFutures;
    /// References of slots that are not Named, to objects that the wish creates: they are wished.
    std::set<std::pair<Slot, std::string>> mRevived;
    std::vector<PlannedCall> mCalls;
};

}

#endif
