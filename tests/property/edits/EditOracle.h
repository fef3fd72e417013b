// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_PROPERTY_EDITS_EDITORACLE_H
#define ORV_TESTS_PROPERTY_EDITS_EDITORACLE_H

#include "EditWorld.h"
#include "client/edits/EditProblem.h"
#include "client/edits/Wish.h"

#include <set>
#include <string>
#include <tuple>

namespace EditTests {

using Problem = std::tuple<EditProblem::Kind, std::string, std::string>;

/// What must come of a wish: a refusal, or a state.
struct Expected {
    std::set<Problem> problems;
    /// Values of reference attributes that the wish does not name are sorted.
    State state;
    /// The reference attributes whose order the wish gives.
    std::set<std::pair<std::string, std::string>> ordered;
};

/// Works out what must come of a wish in the plainest way: each pair of objects is looked at by
/// itself, and nothing is known of calls, their order, and what they do to far sides.
Expected expect(const Model& model, const State& before, const Wish& wish);

/// The state as Expected has it: reference attributes of associations whose order was not given
/// sorted.
State normalised(const Model& model, State state, const Expected& expected);

}

#endif
