// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Null pointers in the place of arguments. What the component itself reads or writes through must
// be there: without it the answer is OrvFailure, and nothing has been translated, joined or asked.
// What it merely hands on is the router's to judge.

#include "Network.h"
#include "Operations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace Scripted {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

constexpr unsigned long kTx = kFaultTx;
constexpr const char* kUnit = "ManagedElement=paris,Unit=7";
constexpr const char* kForeign = "ManagedElement=rome,Unit=7"; ///< cannot be translated
constexpr OrvReturnT kHostsOwnCode = -42;

OrvOamSpiManagedObject_3 v3(const Scene& scene) {
    return *scene.host.client().table;
}
VekOamSpiManagedObject_3_1 v3_1(const Scene& scene) {
    return *scene.host.client3_1().table;
}
OrvOamSpiManagedObject_1 v1(const Scene& scene) {
    return *scene.host.client1().table;
}

OrvMoNamedAttributeValueContainer_3** named(Scene& scene, const NamedValues& attributes) {
    return scene.records.named(attributes);
}

OrvMoNamedAttributeValueContainer_3** label(Scene& scene) {
    return named(scene, {{"label", strings({"x"})}});
}

/// The second of two attributes has no name; the first would be work for the bookkeeping.
OrvMoNamedAttributeValueContainer_3** withoutName(Scene& scene, const Value& value) {
    return named(scene, {{"cells", refs({cell("1")})}, {kNoName, value}});
}

const OrvMoAttributeValueContainer_3* someValue(Scene& scene) {
    return scene.records.container(strings({"x"}));
}
const OrvMoAttributeValueContainer* someValue1(Scene& scene) {
    return scene.records1.container(strings({"x"}));
}

void bringsToServe(Scene& scene) {
    expectServes(scene, {"a call with a null pointer", nullptr, nullptr});
}

// -------------------------------------------------------------------------------------------------
// What must be there

/// One call without one argument that must be there. The DN is the caller's to choose, unless it is
/// the argument that is missing.
struct Refused {
    std::string name;
    std::function<OrvReturnT(Scene& scene, const char* dn)> run;
    OrvReturnT whenStopped = OrvNotActive;
};

void PrintTo(const Refused& refused, std::ostream* out) {
    *out << refused.name;
}

std::vector<Refused> refusedReads() {
    static const char* names[] = {"label", nullptr};
    return {
        {"ExistsWithoutDn",
         [](Scene& s, const char*) { return v3(s).existsMo(kTx, nullptr, &s.flag); }},
        {"CountWithoutDn",
         [](Scene& s, const char*) {
             return v3(s).countMoChildren(kTx, nullptr, "Unit", &s.count);
         }},
        {"GetWithoutDn",
         [](Scene& s, const char*) { return v3(s).getMoAttribute(kTx, nullptr, "label", &s.read); },
         OrvFailure},
        {"GetWithoutAttribute",
         [](Scene& s, const char* dn) { return v3(s).getMoAttribute(kTx, dn, nullptr, &s.read); },
         OrvFailure},
        {"GetWithoutResult",
         [](Scene& s, const char* dn) { return v3(s).getMoAttribute(kTx, dn, "label", nullptr); },
         OrvFailure},
        {"GetManyWithoutDn",
         [](Scene& s, const char*) {
             return v3(s).getMoAttributes(kTx, nullptr, names, &s.readMany);
         }},
        {"GetManyWithoutNames",
         [](Scene& s, const char* dn) {
             return v3(s).getMoAttributes(kTx, dn, nullptr, &s.readMany);
         }},
        {"GetManyWithoutResult",
         [](Scene& s, const char* dn) { return v3(s).getMoAttributes(kTx, dn, names, nullptr); }},
        {"OpenWithoutDn",
         [](Scene& s, const char*) {
             return v3(s).newMoIterator(kTx, nullptr, "Unit", &s.iterator);
         },
         OrvFailure},
        {"OpenWithoutIterator",
         [](Scene& s, const char* dn) { return v3(s).newMoIterator(kTx, dn, "Unit", nullptr); },
         OrvFailure},
    };
}

std::vector<Refused> refusedWrites() {
    return {
        {"CreateWithoutDn",
         [](Scene& s, const char*) {
             return v3(s).createMo(kTx, nullptr, "Cell", "cellId", "9", label(s));
         }},
        {"CreateWithoutClass",
         [](Scene& s, const char* dn) {
             return v3(s).createMo(kTx, dn, nullptr, "cellId", "9", label(s));
         }},
        {"CreateWithoutNamingAttribute",
         [](Scene& s, const char* dn) {
             return v3(s).createMo(kTx, dn, "Cell", nullptr, "9", label(s));
         }},
        {"CreateWithoutNamingValue",
         [](Scene& s, const char* dn) {
             return v3(s).createMo(kTx, dn, "Cell", "cellId", nullptr, label(s));
         }},
        {"CreateWithoutNameOfAReference",
         [](Scene& s, const char* dn) {
             return v3(s).createMo(kTx, dn, "Unit", "unitId", "9",
                                   withoutName(s, refs({cell("2")})));
         }},
        {"CreateWithoutNameOfAnEmptyReference",
         [](Scene& s, const char* dn) {
             return v3(s).createMo(kTx, dn, "Unit", "unitId", "9", withoutName(s, refs({})));
         }},
        {"SetWithoutDn",
         [](Scene& s, const char*) {
             return v3(s).setMoAttribute(kTx, nullptr, "label", someValue(s));
         }},
        {"SetWithoutAttribute",
         [](Scene& s, const char* dn) {
             return v3(s).setMoAttribute(kTx, dn, nullptr, someValue(s));
         }},
        {"SetWithoutAttributeAndValue",
         [](Scene& s, const char* dn) { return v3(s).setMoAttribute(kTx, dn, nullptr, nullptr); }},
        {"DeleteWithoutDn", [](Scene& s, const char*) { return v3(s).deleteMo(kTx, nullptr); }},
        {"ActionWithoutDn",
         [](Scene& s, const char*) { return v3(s).action(kTx, nullptr, "go", label(s), &s.read); }},
        {"ActionWithoutParameters",
         [](Scene& s, const char* dn) { return v3(s).action(kTx, dn, "go", nullptr, &s.read); }},
        {"ActionWithoutResult",
         [](Scene& s, const char* dn) { return v3(s).action(kTx, dn, "go", label(s), nullptr); }},
        {"SetManyWithoutDn",
         [](Scene& s, const char*) { return v3_1(s).setMoAttributes(kTx, nullptr, label(s)); }},
        {"SetManyWithoutAttributes",
         [](Scene& s, const char* dn) { return v3_1(s).setMoAttributes(kTx, dn, nullptr); }},
        {"SetManyWithoutNameOfAReference",
         [](Scene& s, const char* dn) {
             return v3_1(s).setMoAttributes(kTx, dn, withoutName(s, refs({cell("2")})));
         }},
        {"SetManyWithoutNameOfAText",
         [](Scene& s, const char* dn) {
             return v3_1(s).setMoAttributes(kTx, dn, withoutName(s, strings({"x"})));
         }},
    };
}

std::vector<Refused> refusedInVersion1() {
    return {
        {"Version1SetWithoutDn",
         [](Scene& s, const char*) {
             return v1(s).setMoAttribute(kTx, nullptr, "label", someValue1(s));
         }},
        {"Version1SetWithoutAttribute",
         [](Scene& s, const char* dn) {
             return v1(s).setMoAttribute(kTx, dn, nullptr, someValue1(s));
         }},
        {"Version1SetWithoutValue",
         [](Scene& s, const char* dn) { return v1(s).setMoAttribute(kTx, dn, "label", nullptr); }},
        {"Version1SetWithoutAttributeAndValue",
         [](Scene& s, const char* dn) { return v1(s).setMoAttribute(kTx, dn, nullptr, nullptr); }},
        {"Version1GetWithoutDn",
         [](Scene& s, const char*) {
             return v1(s).getMoAttribute(kTx, nullptr, "label", &s.read1);
         }},
        {"Version1GetWithoutAttribute",
         [](Scene& s, const char* dn) { return v1(s).getMoAttribute(kTx, dn, nullptr, &s.read1); }},
        {"Version1GetWithoutResult",
         [](Scene& s, const char* dn) { return v1(s).getMoAttribute(kTx, dn, "label", nullptr); }},
        {"Version1OpenWithoutDn",
         [](Scene& s, const char*) {
             return v1(s).newMoIterator(kTx, nullptr, "Unit", &s.iterator1);
         },
         OrvFailure},
        {"Version1OpenWithoutIterator",
         [](Scene& s, const char* dn) { return v1(s).newMoIterator(kTx, dn, "Unit", nullptr); },
         OrvFailure},
        {"Version1CreateWithoutDn",
         [](Scene& s, const char*) { return v1(s).createMo(kTx, nullptr, "Cell", "cellId", "9"); }},
        {"Version1DeleteWithoutDn",
         [](Scene& s, const char*) { return v1(s).deleteMo(kTx, nullptr); }},
        {"Version1ActionWithoutDn",
         [](Scene& s, const char*) {
             return v1(s).action(kTx, nullptr, "go", s.records1.array({}), &s.read1);
         }},
        {"Version1ActionWithoutParameters",
         [](Scene& s, const char* dn) { return v1(s).action(kTx, dn, "go", nullptr, &s.read1); }},
        {"Version1ActionWithoutResult",
         [](Scene& s, const char* dn) {
             return v1(s).action(kTx, dn, "go", s.records1.array({}), nullptr);
         }},
    };
}

std::vector<Refused> refusedCalls() {
    std::vector<Refused> all;
    for (const auto& some : {refusedReads(), refusedWrites(), refusedInVersion1()}) {
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

class NullArgument : public testing::TestWithParam<Refused> {
protected:
    /// The call answers \p code, and nobody has been asked anything.
    void expectNothingButTheCode(const char* dn, OrvReturnT code) {
        scene.host.forget();
        EXPECT_EQ(GetParam().run(scene, dn), code);
        EXPECT_THAT(scene.host.calls(), IsEmpty());
        EXPECT_EQ(scene.read.container, nullptr);
        EXPECT_EQ(scene.readMany.containers, nullptr);
        EXPECT_EQ(scene.read1, nullptr);
        EXPECT_EQ(scene.iterator, 0U);
        EXPECT_EQ(scene.iterator1, nullptr);
    }

    Scene scene{Life::Started};
};

TEST_P(NullArgument, Started_FailureAndNothingHasHappened) {
    scene.host.logLevel(0);
    expectNothingButTheCode(kUnit, OrvFailure);
    EXPECT_THAT(scene.host.logs(), IsEmpty());
    scene.host.logLevel(8);
    expectNothingButTheCode(kUnit, OrvFailure);
    EXPECT_THAT(scene.host.logs().back(), EndsWith(":  << ret: OrvFailure"));
    scene.host.logLevel(0);
    bringsToServe(scene);
}

TEST_P(NullArgument, DnThatCannotBeTranslated_IsNotReached) {
    expectNothingButTheCode(kForeign, OrvFailure);
}

TEST_P(NullArgument, Stopped_TheGateComesFirst) {
    ASSERT_EQ(scene.host.stopComponent(), OrvOk);
    expectNothingButTheCode(kUnit, GetParam().whenStopped);
}

TEST_P(NullArgument, TransactionThatIsKnown_GoesOnAsItWas) {
    ASSERT_EQ(scene.host.client().set(kTx, kUnit, "cells", refs({cell("1"), cell("2")})), OrvOk);
    expectNothingButTheCode(kUnit, OrvFailure);
    bool valid = false;
    EXPECT_EQ(scene.host.resource().validate(kTx, &valid), OrvOk);
    EXPECT_TRUE(valid);
    EXPECT_THAT(scene.host.world().references(cellInside("1"), "unit"),
                ElementsAre(unitInside("7")));
    bringsToServe(scene);
}

INSTANTIATE_TEST_SUITE_P(Calls, NullArgument, testing::ValuesIn(refusedCalls()),
                         [](const auto& tested) { return tested.param.name; });

// -------------------------------------------------------------------------------------------------
// What is handed on

/// One call without an argument that the component does not read, and what the router gets of it.
struct HandedOn {
    std::string name;
    std::function<OrvReturnT(Scene& scene)> run;
    std::string call; ///< as the journal shows it
    bool outIsNull = false;
};

void PrintTo(const HandedOn& handedOn, std::ostream* out) {
    *out << handedOn.name;
}

std::vector<HandedOn> handedOnCalls() {
    return {
        {"ExistsWithoutFlag", [](Scene& s) { return v3(s).existsMo(kTx, kUnit, nullptr); },
         "Router3.existsMo(1, 'ManagedElement=1,Unit=7')", true},
        {"CountWithoutClass",
         [](Scene& s) { return v3(s).countMoChildren(kTx, kUnit, nullptr, &s.count); },
         "Router3.countMoChildren(1, 'ManagedElement=1,Unit=7', null)"},
        {"CountWithoutCount",
         [](Scene& s) { return v3(s).countMoChildren(kTx, kUnit, "Part", nullptr); },
         "Router3.countMoChildren(1, 'ManagedElement=1,Unit=7', 'Part')", true},
        {"OpenWithoutClass",
         [](Scene& s) { return v3(s).newMoIterator(kTx, kUnit, nullptr, &s.iterator); },
         "Router3.newMoIterator(1, 'ManagedElement=1,Unit=7', null)"},
        {"CreateWithoutAttributes",
         [](Scene& s) { return v3(s).createMo(kTx, kUnit, "Part", "partId", "1", nullptr); },
         "Router3.createMo(1, 'ManagedElement=1,Unit=7', 'Part', 'partId', '1', {})"},
        {"CreateWithoutNameOfAText",
         [](Scene& s) {
             return v3(s).createMo(kTx, kUnit, "Part", "partId", "1",
                                   named(s, {{kNoName, strings({"x"})}}));
         },
         "Router3.createMo(1, 'ManagedElement=1,Unit=7', 'Part', 'partId', '1', {(null): "
         "String['x']})"},
        {"SetWithoutValue",
         [](Scene& s) { return v3(s).setMoAttribute(kTx, kUnit, "cells", nullptr); },
         "Router3.setMoAttribute(1, 'ManagedElement=1,Unit=7', 'cells', Type0[])"},
        {"SetOfTheIdWithoutValue",
         [](Scene& s) {
             return v3(s).setMoAttribute(kTx, kUnit, "networkManagedElementId", nullptr);
         },
         "Router3.setMoAttribute(1, 'ManagedElement=1,Unit=7', 'networkManagedElementId', "
         "Type0[])"},
        {"ActionWithoutName",
         [](Scene& s) { return v3(s).action(kTx, kUnit, nullptr, label(s), &s.read); },
         "Router3.action(1, 'ManagedElement=1,Unit=7', null, {label: String['x']})"},
        {"ActionWithoutNamesOfParameters",
         [](Scene& s) {
             return v3(s).action(
                 kTx, kUnit, "go",
                 named(s, {{kNoName, refs({cell("1")})}, {kNoName, strings({"x"})}}), &s.read);
         },
         "Router3.action(1, 'ManagedElement=1,Unit=7', 'go', {(null): "
         "MoRef['ManagedElement=1,Cell=1'], (null): String['x']})"},
        {"Version1OpenWithoutClass",
         [](Scene& s) { return v1(s).newMoIterator(kTx, kUnit, nullptr, &s.iterator1); },
         "Router1.newMoIterator(1, 'ManagedElement=1,Unit=7', null)"},
        {"Version1CreateWithoutClass",
         [](Scene& s) { return v1(s).createMo(kTx, kUnit, nullptr, "partId", "1"); },
         "Router1.createMo(1, 'ManagedElement=1,Unit=7', null, 'partId', '1')"},
        {"Version1CreateWithoutNamingAttribute",
         [](Scene& s) { return v1(s).createMo(kTx, kUnit, "Part", nullptr, "1"); },
         "Router1.createMo(1, 'ManagedElement=1,Unit=7', 'Part', null, '1')"},
        {"Version1CreateWithoutNamingValue",
         [](Scene& s) { return v1(s).createMo(kTx, kUnit, "Part", "partId", nullptr); },
         "Router1.createMo(1, 'ManagedElement=1,Unit=7', 'Part', 'partId', null)"},
        {"Version1ActionWithoutName",
         [](Scene& s) { return v1(s).action(kTx, kUnit, nullptr, s.records1.array({}), &s.read1); },
         "Router1.action(1, 'ManagedElement=1,Unit=7', null, [])"},
    };
}

class NullHandedOn : public testing::TestWithParam<HandedOn> {
protected:
    /// The router is given the null and judges it: the ordinary scripted one would follow it.
    void expectTheRoutersAnswer() {
        const std::string& text = GetParam().call;
        const std::string function = text.substr(0, text.find('('));
        scene.host.when(function).fails(kHostsOwnCode);
        scene.host.forget();
        EXPECT_EQ(GetParam().run(scene), kHostsOwnCode);
        const std::vector<Call> calls = scene.host.callRecords(function);
        ASSERT_EQ(calls.size(), 1U);
        EXPECT_EQ(calls.at(0).text(), text);
        if (GetParam().outIsNull) {
            EXPECT_EQ(calls.at(0).out, nullptr);
        }
        scene.host.when(function).returns(OrvOk);
    }

    Scene scene{Life::Started};
};

TEST_P(NullHandedOn, Router_SeesItAndAnswers) {
    expectTheRoutersAnswer();
    bringsToServe(scene);
}

TEST_P(NullHandedOn, Traced_TheSame) {
    scene.host.logLevel(8);
    expectTheRoutersAnswer();
}

INSTANTIATE_TEST_SUITE_P(Calls, NullHandedOn, testing::ValuesIn(handedOnCalls()),
                         [](const auto& tested) { return tested.param.name; });

class NullsBeside : public testing::Test {
protected:
    NullsBeside() { scene.host.forget(); }

    Scene scene{Life::Started};
    const Client3 client = scene.host.client();
    const Client1 client1 = scene.host.client1();
};

// The id without a value is special in version 1: it is reported after the translation, with -8.
TEST_F(NullsBeside, Version1IdWithoutValue_IsRefusedAsAnId) {
    EXPECT_EQ(client1.set(kTx, kUnit, "networkManagedElementId"), OrvInvalidArgument);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("Translator.toInternalDn('ManagedElement=paris,Unit=7')"));
    EXPECT_EQ(client1.set(kTx, kForeign, "networkManagedElementId"), OrvNotExist);
}

// -------------------------------------------------------------------------------------------------
// Iterators

template <class Handle>
struct NextCall {
    Handle handle;
    OrvReturnT (*next)(Handle, char**);
};

template <class Handle>
void expectUnknownFirst(const NextCall<Handle>& call) {
    EXPECT_EQ(call.next(call.handle, nullptr), OrvNotActive);
    char mine[] = "mine";
    char* name = mine;
    EXPECT_EQ(call.next(call.handle, &name), OrvNotActive);
    EXPECT_EQ(name, mine);
}

TEST_F(NullsBeside, NextOfAnUnknownHandle_IsReportedBeforeTheMissingResult) {
    expectUnknownFirst<unsigned long long>({4711, client.table->nextMo});
    expectUnknownFirst<unsigned long long>({0, client.table->nextMo});
    expectUnknownFirst<void*>({this, client1.table->nextMo});
    expectUnknownFirst<void*>({nullptr, client1.table->nextMo});
    EXPECT_THAT(scene.host.calls(), IsEmpty());
}

TEST_F(NullsBeside, NextWithoutResult_FailsAndTheIteratorStaysWhereItIs) {
    const auto iterator = client.open(kTx, kRoot, "Cell");
    const auto iterator1 = client1.open(kTx, kRoot, "Cell");
    for (const unsigned int level : {0U, 8U}) {
        scene.host.logLevel(level).forget();
        EXPECT_EQ(client.table->nextMo(iterator.thing, nullptr), OrvFailure);
        EXPECT_EQ(client1.table->nextMo(iterator1.thing, nullptr), OrvFailure);
        EXPECT_THAT(scene.host.calls(), IsEmpty());
    }
    scene.host.logLevel(0);
    EXPECT_EQ(client.next(iterator.thing).thing, "1");
    EXPECT_EQ(client1.next(iterator1.thing).thing, "1");
    bringsToServe(scene);
}

TEST_F(NullsBeside, FinalizeOfAnyHandle_IsOk) {
    for (const unsigned long long handle : {0ULL, 1ULL, 4711ULL, ~0ULL}) {
        EXPECT_EQ(client.finalize(handle), OrvOk);
    }
    EXPECT_THAT(scene.host.calls(), IsEmpty());
}

TEST_F(NullsBeside, OpenOfAStoppedService_TranslatesAndFindsNoRouter) {
    ASSERT_EQ(scene.host.stopComponent(), OrvOk);
    scene.host.forget();
    EXPECT_EQ(client.open(kTx, kForeign, "Cell").code, OrvNotExist);
    EXPECT_EQ(client1.open(kTx, kForeign, "Cell").code, OrvNotExist);
    EXPECT_EQ(client.open(kTx, kRoot, "Cell").code, OrvNotActive);
    EXPECT_EQ(client1.open(kTx, kRoot, "Cell").code, OrvNotActive);
    EXPECT_EQ(client.open(kTx, "", "ManagedElement").code, OrvNotActive);
    EXPECT_EQ(client1.open(kTx, "", "ManagedElement").code, OrvNotActive);
    EXPECT_THAT(scene.host.calls("Router"), IsEmpty());
    EXPECT_THAT(scene.host.calls("Transaction"), IsEmpty());
    ASSERT_EQ(scene.host.startComponent(), OrvOk);
    EXPECT_EQ(client.open(kTx, kRoot, "Cell").code, OrvOk);
    EXPECT_EQ(scene.host.calls("Transaction").size(), 1U) << "nothing was entered before";
}

TEST_F(NullsBeside, NextAfterAStop_KnowsNoHandle) {
    const auto iterator = client.open(kTx, kRoot, "Cell");
    const auto iterator1 = client1.open(kTx, kRoot, "Cell");
    ASSERT_EQ(scene.host.stopComponent(), OrvOk);
    scene.host.forget();
    expectUnknownFirst<unsigned long long>({iterator.thing, client.table->nextMo});
    expectUnknownFirst<void*>({iterator1.thing, client1.table->nextMo});
    EXPECT_EQ(client.finalize(iterator.thing), OrvOk);
    EXPECT_THAT(scene.host.calls(), IsEmpty());
}

// -------------------------------------------------------------------------------------------------
// The verdict

TEST_F(NullsBeside, ValidateWithoutResult_RunsNoValidator) {
    ASSERT_EQ(client.set(kTx, kUnit, "cells", refs({cell("1")})), OrvOk);
    ASSERT_EQ(client.set(kTx, kUnit, "site", refs({cell("1")})), OrvOk);
    for (const unsigned int level : {0U, 8U}) {
        scene.host.logLevel(level).forget();
        EXPECT_EQ(scene.host.resource().validate(kTx, nullptr), OrvFailure);
        EXPECT_THAT(scene.host.calls(), IsEmpty());
        EXPECT_THAT(scene.host.messages(), IsEmpty());
    }
    bool valid = true;
    EXPECT_EQ(scene.host.resource().validate(kTx, &valid), OrvOk);
    EXPECT_FALSE(valid) << "what was recorded is still there";
    EXPECT_EQ(scene.host.resource().finish(kTx), OrvOk);
    scene.host.logLevel(0);
    bringsToServe(scene);
}

TEST_F(NullsBeside, ValidateWithoutResultOfAStoppedService_TheSame) {
    ASSERT_EQ(scene.host.stopComponent(), OrvOk);
    EXPECT_EQ(scene.host.resource().validate(kTx, nullptr), OrvFailure);
}

}
}
