// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_EDITS_EDITPLANNER_H
#define ORV_HOST_CLIENT_EDITS_EDITPLANNER_H

#include "EditPlan.h"
#include "EditProblem.h"
#include "StateBefore.h"
#include "Wish.h"
#include "client/CancellationToken.h"

namespace OrvHost {

/// Plans the calls that turn the state before into the wished state.
///
/// **Checked whole.** All that is wrong is named in one EditRefusedError, before anything is
/// written: see EditProblem. How many values or objects there must be, and which classes references
/// may have, is left to the transaction's validation; a reference to an object that never existed
/// is no error.
///
/// **Written as** deletes, of the tops of what goes; creates from the top, with all values but
/// references; the values of objects that stay; references of one direction; then bidirectional
/// associations, one attribute a call. An object that stays is never deleted and made again. What
/// has the wished value already is not written.
///
/// **Bidirectional associations.** The component keeps the far side in step: a set of a reference
/// adds and takes away the object's DN in the attribute of each object that came into or went out
/// of the value. It does not look whether the DN is there already, so writes of both sides can
/// leave it twice. The plan therefore decides for each pair of objects whether they are associated,
/// from all that the wish says, and foresees what each of its calls does to the far side:
///
/// - one side is named: it decides, and the other side follows;
/// - both sides are named: they must agree, or the wish is refused. See Wish::Repeated for a side
///   that only repeats what it has;
/// - no side is named: nothing changes ("an unnamed back-pointer is left alone"). Only if both
///   objects stand in replaced subtrees, which then name the pair nowhere, it is taken apart; not
///   if one of the sides is an attribute that only the system sets.
///
/// All objects exist before the first reference is written. If both sides are named, that of the
/// end which the model defines first is written, and the other one only to bring it into the wished
/// order; otherwise the named side. So a file that holds both sides, or one, and the edits of a
/// client that names what it likes, give the same result in any order.
///
/// **Replace** takes away attributes that are not named (to their default, if they have one),
/// except those that only the system sets and, as said, sides of bidirectional associations; and
/// deletes the objects below that the wish names nowhere.
///
/// What is not foreseen: a reference to an object that does not exist, held by an object of which
/// the wish says nothing, stays as it is when that object is created; and what the component keeps
/// pending in the transaction for objects that do not exist yet, which no read shows.
///
/// One thread.
class EditPlanner {
public:
    /// Both are borrowed and must outlive the planner. \p token may be null; it is asked at each
    /// object, and again at each reference of an association.
    explicit EditPlanner(const Model& model, const CancellationToken* token = nullptr)
        : mModel(model), mToken(token) {}

    /// Throws EditRefusedError, CancelledError, what \p before throws, and RequestError if no calls
    /// bring an association into the wished state.
    EditPlan plan(Wish wish, StateBefore& before) const;

private:
    const Model& mModel;
    const CancellationToken* mToken;
};

/// Plans \p wish for what the transaction \p txHandle sees and makes the calls. Returns what was
/// done. Throws what EditPlanner::plan and runPlan throw; if it is not an EditRefusedError, a part
/// may be written: abort the transaction.
EditPlan applyWish(Wish wish, const Model& model, Clients& clients, unsigned long txHandle,
                   const CancellationToken* token = nullptr);

}

#endif
