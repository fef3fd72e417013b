// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The host fails the component: in one run for each call that an operation makes, this call is
// refused with each of a few codes, or succeeds without a result. Each time the client gets the
// expected answer, no write is lost or made twice, and the component goes on serving.

#include "Operations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace Scripted {
namespace {

using testing::IsSubsetOf;

/// A host's own code: nobody here knows it.
constexpr OrvReturnT kHostsOwnCode = 77;

/// What a client gets when a host call fails.
enum class Effect {
    TheCode, ///< the operation is this call: its code is the answer
    Failure, ///< OrvFailure, whatever the code
    Nothing  ///< the operation goes on as if the call had not failed
};

/// One rule. The first that fits a call holds.
struct Rule {
    std::string operation; ///< begins with this
    std::string call;      ///< its text begins with this
    Effect effect;
};

const std::vector<Rule>& rules() {
    static const std::vector<Rule> all = {
        // The component's life. Routers must be found, all else may be missing; without a portal of
        // version 3 that of version 1 serves.
        {"orvLCMinit", "Accessor.getPortal('1')", Effect::Failure},
        {"orvLCMinit", "Accessor.getPortal('3')", Effect::Nothing},
        {"orvLCMinit", "Portal3.registerComponent", Effect::TheCode},
        {"orvLCMterminate", "Portal3.unregisterComponent", Effect::Nothing},
        {"start", "Portal1.getInterface('OrvOamSpiTransactionService'", Effect::Nothing},
        {"start", "Portal1.getInterface", Effect::Failure},
        {"start", "OrvPortal.lookup", Effect::Nothing},

        // What an interceptor passes on: it finds its router where the bookkeeping has found one.
        {"getMoAttribute, intercepted", "VekRouter3.getMoAttribute", Effect::TheCode},
        {"getMoAttributes, intercepted", "VekRouter3.getMoAttributes", Effect::TheCode},
        {"setMoAttribute, intercepted", "VekRouter3.setMoAttribute(1, 'ManagedElement=1,Unit=7'",
         Effect::TheCode},

        // What is asked beside the operation itself.
        {"", "Transaction.join", Effect::Nothing},
        {"", "Model.", Effect::Nothing},
        {"", "VekRouter3.", Effect::Nothing},
        {"", "ThreadContext.addMessage", Effect::Nothing},
        {"finalizeMoIterator", "Router3.finalizeMoIterator", Effect::Nothing},

        // The one call that the operation stands for.
        {"existsMo", "Router3.existsMo", Effect::TheCode},
        {"countMoChildren", "Router3.countMoChildren", Effect::TheCode},
        {"getMoAttribute", "Interceptor.getMoAttribute", Effect::TheCode},
        {"getMoAttribute", "Router3.getMoAttribute", Effect::TheCode},
        {"newMoIterator", "Router3.newMoIterator", Effect::TheCode},
        {"nextMo", "Router3.nextMo", Effect::TheCode},
        {"createMo", "Router3.createMo", Effect::TheCode},
        {"setMoAttributes", "Interceptor.setMoAttributes", Effect::TheCode},
        {"setMoAttributes", "Router3_1.setMoAttributes", Effect::TheCode},
        {"setMoAttribute", "Interceptor.setMoAttribute", Effect::TheCode},
        {"setMoAttribute", "Router3.setMoAttribute", Effect::TheCode},
        {"deleteMo", "Router3.deleteMo", Effect::TheCode},
        {"action", "Router3.action", Effect::TheCode},
        {"1 ", "Router1.", Effect::TheCode},
    };
    return all;
}

bool beginsWith(const std::string& text, const std::string& prefix) {
    return text.rfind(prefix, 0) == 0;
}

std::optional<Effect> effectOf(const Operation& operation, const std::string& callText) {
    for (const Rule& rule : rules()) {
        if (beginsWith(operation.name, rule.operation) && beginsWith(callText, rule.call)) {
            return rule.effect;
        }
    }
    return std::nullopt;
}

/// A run of an operation, and what came of it.
struct Outcome {
    OrvReturnT code;
    std::vector<Call> calls;
    std::vector<std::string> texts;
};

Outcome ordinaryRun(const Operation& operation) {
    Scene scene(operation.stage);
    operation.given(scene);
    scene.host.forget();
    const OrvReturnT code = operation.when(scene);
    Outcome outcome{code, scene.host.callRecords(), scene.host.calls()};
    scene.giveBack(code);
    expectServes(scene, operation);
    return outcome;
}

Outcome runWithFault(const Operation& operation, const Place& place, OrvReturnT fault) {
    Scene scene(operation.stage);
    operation.given(scene);
    scene.host.forget();
    scene.host.when(place.name).nth(place.number).fails(fault);
    const OrvReturnT code = operation.when(scene);
    Outcome outcome{code, scene.host.callRecords(), scene.host.calls()};
    scene.giveBack(code);
    expectServes(scene, operation);
    return outcome;
}

/// The DN that a call is about.
std::string targetOf(const std::string& callText) {
    const std::size_t quote = callText.find('\'');
    return quote == std::string::npos
               ? ""
               : callText.substr(quote + 1, callText.find('\'', quote + 1) - quote - 1);
}

/// True for calls of the bookkeeping about a far side. Clients write to units here, which refer to
/// cells.
bool isAboutAFarSide(const std::string& callText) {
    return beginsWith(callText, "VekRouter3.") &&
           beginsWith(targetOf(callText), "ManagedElement=1,Cell=");
}

/// The writes to the far sides of references.
std::vector<std::string> backPointersIn(const Outcome& outcome) {
    std::vector<std::string> writes = writesIn(outcome.texts);
    std::erase_if(writes, [](const std::string& text) { return !isAboutAFarSide(text); });
    return writes;
}

/// The client's own write as it was passed on.
std::vector<std::string> ownWritesIn(const Outcome& outcome) {
    std::vector<std::string> writes = writesIn(outcome.texts);
    std::erase_if(writes, isAboutAFarSide);
    return writes;
}

std::vector<std::string> withoutTarget(std::vector<std::string> texts, const std::string& target) {
    std::erase_if(texts, [&](const std::string& text) { return targetOf(text) == target; });
    return texts;
}

/// An operation goes on after the bookkeeping has failed, and the bookkeeping of each far side is
/// apart from the others. It comes before a write is passed on, and after a creation.
void expectNoWriteLostOrMadeTwice(const Operation& operation, const Outcome& ordinary,
                                  const Outcome& faulty, const Place& place, OrvReturnT fault,
                                  Effect effect) {
    if (effect == Effect::Nothing) {
        EXPECT_EQ(ownWritesIn(faulty), ownWritesIn(ordinary));
    } else if (fault != OrvOk) {
        const bool creates = beginsWith(operation.name, "createMo");
        EXPECT_THAT(ownWritesIn(faulty), IsSubsetOf(ownWritesIn(ordinary)));
        EXPECT_EQ(backPointersIn(faulty),
                  creates ? std::vector<std::string>{} : backPointersIn(ordinary));
    }
    const std::vector<std::string> written = backPointersIn(faulty);
    EXPECT_EQ(std::set<std::string>(written.begin(), written.end()).size(), written.size())
        << "nothing is written twice: " << testing::PrintToString(written);
    if (isAboutAFarSide(place.text)) {
        const std::string target = targetOf(place.text);
        EXPECT_EQ(withoutTarget(backPointersIn(faulty), target),
                  withoutTarget(backPointersIn(ordinary), target))
            << "a fault at one far side must not change the others";
    } else if (effect == Effect::Nothing && fault != OrvOk &&
               beginsWith(place.name, "VekRouter3.")) {
        EXPECT_THAT(backPointersIn(faulty), IsSubsetOf(backPointersIn(ordinary)));
    }
}

/// A handle that the model does not know shows as a number.
bool isMadeUpHandle(const std::string& text) {
    return text.size() > 2 && text != "'0'" &&
           text.find_first_not_of("0123456789", 1) == text.size() - 1;
}

/// Where the model has given no handle, it is asked about none, which is 0.
void expectNoHandleMadeUp(const Outcome& outcome) {
    for (const std::string& text : outcome.texts) {
        if (!beginsWith(text, "Model.")) {
            continue;
        }
        const std::size_t begin = text.find('(') + 1;
        for (std::size_t at = begin; at < text.size();) {
            const std::size_t end = std::min(text.find_first_of(",)", at), text.size());
            EXPECT_FALSE(isMadeUpHandle(text.substr(at, end - at))) << text;
            at = end + 2;
        }
    }
}

void failAt(const Operation& operation, const Outcome& ordinary, const Place& place,
            OrvReturnT fault) {
    SCOPED_TRACE(operation.name + ": " + place.text + " answers " + std::to_string(fault));
    const std::optional<Effect> effect = effectOf(operation, place.text);
    ASSERT_TRUE(effect) << "no rule says what the client gets";
    const Outcome faulty = runWithFault(operation, place, fault);
    switch (*effect) {
    case Effect::TheCode:
        EXPECT_EQ(faulty.code, fault);
        break;
    case Effect::Failure:
        EXPECT_EQ(faulty.code, OrvFailure);
        break;
    case Effect::Nothing:
        EXPECT_EQ(faulty.code, ordinary.code);
        break;
    }
    expectNoWriteLostOrMadeTwice(operation, ordinary, faulty, place, fault, *effect);
    expectNoHandleMadeUp(faulty);
}

class HostFaults : public testing::TestWithParam<Operation> {};

TEST_P(HostFaults, EachCallRefused_TellsTheClientAsItShouldAndServesOn) {
    const Operation& operation = GetParam();
    const Outcome ordinary = ordinaryRun(operation);
    ASSERT_EQ(ordinary.code, operation.ordinarily);
    for (const Place& place : placesIn(ordinary.calls)) {
        for (const OrvReturnT fault :
             {OrvOk, OrvFailure, OrvNotExist, OrvAlreadyExist, kHostsOwnCode}) {
            failAt(operation, ordinary, place, fault);
        }
        if (HasFailure()) {
            return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, HostFaults, testing::ValuesIn(operations()),
                         [](const auto& tested) { return plainName(tested.param); });

// The verdict with a host that fails. The code of a validation is OrvOk whatever happens.

const Operation& named(const std::string& name) {
    const auto found =
        std::find_if(operations().begin(), operations().end(),
                     [&](const Operation& operation) { return operation.name == name; });
    return *found;
}

bool verdictWith(const Operation& validation, const Place& place, OrvReturnT fault) {
    Scene scene(validation.stage);
    validation.given(scene);
    scene.host.forget();
    scene.host.when(place.name).nth(place.number).fails(fault);
    scene.flag = true;
    EXPECT_EQ(validation.when(scene), OrvOk);
    return scene.flag;
}

/// The calls of the second validator, which judges unidirectional references: what comes after the
/// last value that the first one has read.
std::vector<Place> ofTheSecondValidator(const Outcome& ordinary) {
    const auto lastRead =
        std::find_if(ordinary.calls.rbegin(), ordinary.calls.rend(),
                     [](const Call& call) { return beginsWith(call.name, "Producer.release"); });
    const auto count = static_cast<std::size_t>(ordinary.calls.rend() - lastRead);
    const std::size_t before =
        placesIn({ordinary.calls.begin(), ordinary.calls.begin() + static_cast<long>(count)})
            .size();
    const std::vector<Place> all = placesIn(ordinary.calls);
    return {all.begin() + static_cast<long>(before), all.end()};
}

struct Verdict {
    std::string call;
    bool valid;
};

void PrintTo(const Verdict& verdict, std::ostream* out) {
    *out << verdict.call;
}

/// The calls of \p name up to the check of the values' classes, which begins with a second lookup
/// of the examined MO's own class. The code of that lookup is ignored, and what fails after it is
/// tried again.
std::vector<Place> countingCalls(const std::vector<Place>& places, const std::string& name) {
    std::vector<Place> counting;
    std::string examined;
    int ownLookups = 0;
    for (const Place& place : places) {
        if (place.name == "VekRouter3.existsMo") {
            examined = targetOf(place.text);
            ownLookups = 0;
        }
        const bool own = place.name == "Model.getMocFromDn" && targetOf(place.text) == examined;
        ownLookups += own ? 1 : 0;
        if (place.name == name && ownLookups < 2) {
            counting.push_back(place);
        }
    }
    return counting;
}

class VerdictOfTheFirstValidator : public testing::TestWithParam<Verdict> {};

TEST_P(VerdictOfTheFirstValidator, CallRefused_IsAsExpected) {
    const Operation& validation = named("validate");
    const std::vector<Place> counting =
        countingCalls(placesIn(ordinaryRun(validation).calls), GetParam().call);
    EXPECT_FALSE(counting.empty());
    for (const Place& place : counting) {
        EXPECT_EQ(verdictWith(validation, place, kHostsOwnCode), GetParam().valid) << place.text;
    }
}

// An MO that may be gone needs no check; what is there must be read and must have a class.
INSTANTIATE_TEST_SUITE_P(Calls, VerdictOfTheFirstValidator,
                         testing::Values(Verdict{"VekRouter3.existsMo", true},
                                         Verdict{"VekRouter3.getMoAttribute", false},
                                         Verdict{"Model.getMocFromDn", false}),
                         [](const auto& tested) {
                             const std::string& call = tested.param.call;
                             return call.substr(call.find('.') + 1);
                         });

TEST(VerdictOfTheSecondValidator, AnyCallRefused_IsFalse) {
    const Operation& validation = named("validate");
    const std::vector<Place> places = ofTheSecondValidator(ordinaryRun(validation));
    EXPECT_FALSE(places.empty());
    for (const Place& place : places) {
        EXPECT_FALSE(verdictWith(validation, place, OrvFailure)) << place.text;
        EXPECT_FALSE(verdictWith(validation, place, kHostsOwnCode)) << place.text;
    }
}

TEST(Verdict, TwoKindsOfViolationAndAnyCallRefused_IsFalse) {
    const Operation& validation = named("validate, with violations");
    for (const Place& place : placesIn(ordinaryRun(validation).calls)) {
        EXPECT_FALSE(verdictWith(validation, place, OrvFailure)) << place.text;
    }
}

// A rule that fits no call says nothing.
TEST(HostFaultRules, EachRuleFitsACall) {
    std::vector<Rule> idle = rules();
    for (const Operation& operation : operations()) {
        for (const std::string& text : ordinaryRun(operation).texts) {
            const auto fits = [&](const Rule& rule) {
                return beginsWith(operation.name, rule.operation) && beginsWith(text, rule.call);
            };
            const auto rule = std::find_if(idle.begin(), idle.end(), fits);
            if (rule != idle.end()) {
                idle.erase(rule);
            }
        }
    }
    for (const Rule& rule : idle) {
        ADD_FAILURE() << rule.operation << ": " << rule.call;
    }
}

}
}
