// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The host throws an exception: in one run for each call that an operation makes. The client gets
// OrvFailure, read results are given back, no lock stays held, and the component goes on serving.

#include "Operations.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Scripted {
namespace {

/// What a host may throw, distinguished from what the component throws.
struct HostsException : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Nothing: the exception has come out of the component.
std::optional<OrvReturnT> answerOf(const Operation& operation, Scene& scene) {
    try {
        return operation.when(scene);
    } catch (const HostsException&) {
        return std::nullopt;
    }
}

/// Entry and end of the component let exceptions through. When the walk over a subtree ends its
/// iterator, the outcome of that call is ignored.
std::optional<OrvReturnT> expected(const Operation& operation, const Place& place) {
    if (operation.name.rfind("orvLCM", 0) == 0) {
        return std::nullopt;
    }
    const bool endsAWalk =
        operation.name.rfind("deleteMo", 0) == 0 && place.name == "VekRouter3.finalizeMoIterator";
    return endsAWalk ? operation.ordinarily : OrvFailure;
}

std::vector<Place> placesOf(const Operation& operation) {
    Scene scene(operation.stage);
    operation.given(scene);
    scene.host.forget();
    const OrvReturnT code = operation.when(scene);
    std::vector<Place> places = placesIn(scene.host.callRecords());
    scene.giveBack(code);
    return places;
}

class ThrowingHost : public testing::TestWithParam<Operation> {};

TEST_P(ThrowingHost, EachCall_AnswersFailureAndServesOn) {
    const Operation& operation = GetParam();
    for (const Place& place : placesOf(operation)) {
        SCOPED_TRACE(operation.name + ": " + place.text);
        Scene scene(operation.stage);
        operation.given(scene);
        scene.host.forget();
        scene.host.when(place.name).nth(place.number).throws(HostsException("host"));
        const std::optional<OrvReturnT> answer = answerOf(operation, scene);
        EXPECT_EQ(answer, expected(operation, place));
        scene.giveBack(answer.value_or(OrvFailure));
        EXPECT_EQ(scene.host.results().outstanding(), 0U) << "read and not given back";
        expectServes(scene, operation);
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, ThrowingHost, testing::ValuesIn(operations()),
                         [](const auto& tested) { return plainName(tested.param); });

}
}
