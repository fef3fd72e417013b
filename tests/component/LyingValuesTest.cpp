// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Values of clients that are not what they say: arrays that are not there, references without a
// text, members without a name or value. What the component has to read is checked before anything
// happens; what it does not read goes on as it came.

#include "Network.h"
#include "Operations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace Scripted {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr unsigned long kTx = kFaultTx;
constexpr std::int32_t kString = OrvMoAttributeTypeString_3;
constexpr std::int32_t kMoRef = OrvMoAttributeTypeMoRef_3;
constexpr std::int32_t kStruct = OrvMoAttributeTypeStruct_3;
constexpr std::uint64_t kGarbage = 1; ///< as a pointer: must not be followed
const std::string kNetworkId = "networkManagedElementId";
const std::string kJoin = "Transaction.join(1, OrvOamSpiTransactionalResource)";

using MembersList = std::vector<Members>;

Value asStruct(const Members& members) {
    return structs(MembersList{members});
}

Member toCell() {
    return member("near", refs({cell("1")}));
}

/// A reference to a cell, and one without a text.
Value referenceAndNone() {
    std::vector<Slot> slots(2);
    slots[0].text = cell("1");
    return Value(kMoRef, slots);
}

/// The slots of \p value with \p first before them.
Value precededBy(const Slot& first, const Value& value) {
    std::vector<Slot> slots = value.slots();
    slots.insert(slots.begin(), first);
    return Value(value.type(), slots);
}

// -------------------------------------------------------------------------------------------------
// The lies

/// What becomes of a value: refused, or handed on in this form.
constexpr char kRefused[] = "";

struct Lie {
    std::string name;
    Value value;
    std::string inside;  ///< what the router sees in versions 3 and 3_1
    std::string inside1; ///< the same in version 1
};

void PrintTo(const Lie& lie, std::ostream* out) {
    *out << lie.name;
}

Lie refused(const std::string& name, const Value& value) {
    return {name, value, kRefused, kRefused};
}

Lie handedOn(const std::string& name, const Value& value, const std::string& inside) {
    return {name, value, inside, inside};
}

Lie untouched(const std::string& name, const Value& value) {
    return handedOn(name, value, value.text());
}

std::vector<Lie> liesOfReferences() {
    return {refused("ReferencesWithoutArray", none(kMoRef).counting(2)),
            refused("ManyReferencesWithoutArray",
                    none(kMoRef).counting(std::numeric_limits<std::uint32_t>::max())),
            refused("ReferenceWithoutText", nullText(kMoRef)),
            refused("SecondReferenceWithoutText", referenceAndNone()),
            untouched("NoReferencesAndNoArray", none(kMoRef)),
            untouched("NoReferencesInAnArray", none(kMoRef).withArray())};
}

std::vector<Lie> liesOfStructs() {
    const std::string near = "near: MoRef['ManagedElement=1,Cell=1']";
    const Member text = member("text", strings({"x"}));
    const Member bare = bareMember("bare");
    const Member nameless = member(kNoName, strings({"x"}));
    return {
        refused("StructsWithoutArray", none(kStruct).counting(2)),
        untouched("NoStructsAndNoArray", none(kStruct)),
        untouched("StructWithoutMembers", andEmptyStruct(none(kStruct))),

        refused("MemberWithoutValueBeforeAReference", asStruct({text, bare, toCell()})),
        refused("MemberWithoutValueAndNoReference", asStruct({text, bare})),
        {"MemberWithoutValueAfterAReference", asStruct({toCell(), bare}),
         "Struct[{" + near + ", bare: Type0[]}]", kRefused},
        {"MemberWithoutValueInTheSecondStruct", structs(MembersList{{toCell()}, {bare, text}}),
         "Struct[{" + near + "}, {bare: Type0[], text: String['x']}]", kRefused},
        untouched("MemberWithoutValueInTheSecondStructAndNoReference",
                  structs(MembersList{{text}, {bare, toCell()}})),

        refused("ReferenceWithoutName", asStruct({member(kNoName, refs({cell("1")}))})),
        refused("MemberWithoutNameBeforeAReference", asStruct({nameless, toCell()})),
        refused("MemberWithoutNameAfterAReference", asStruct({toCell(), nameless})),
        refused("MemberWithoutNameInTheSecondStruct", structs(MembersList{{toCell()}, {nameless}})),
        refused("MemberWithoutNameAndValue", asStruct({toCell(), bareMember(kNoName)})),
        untouched("MemberWithoutNameAndNoReference", asStruct({nameless})),

        refused("MembersReferencesWithoutArray",
                asStruct({member("refs", none(kMoRef).counting(1))})),
        refused("MembersReferenceWithoutText", asStruct({member("ref", nullText(kMoRef))})),
        refused("MembersReferenceWithoutTextAfterAReference",
                asStruct({toCell(), text, member("ref", nullText(kMoRef))})),
        refused("MembersReferenceWithoutTextInTheSecondStruct",
                structs(MembersList{{toCell()}, {member("ref", referenceAndNone())}})),

        untouched("FirstStructEmptyAndTheSecondLies",
                  precededBy(Slot{}, asStruct({bare, member("ref", nullText(kMoRef))}))),
        untouched("FirstStructWithoutReferenceAndTheSecondNoPointer",
                  precededBy(asStruct({text}).slots().front(), opaque(kStruct, {kGarbage}))),
        handedOn("TextWithoutTextBesideAReference",
                 asStruct({toCell(), member("text", nullText(kString))}),
                 "Struct[{" + near + ", text: String[null]}]"),
    };
}

std::vector<Lie> liesOfNestedStructs() {
    const Member bare = bareMember("bare");
    const auto beside = [](const Value& inner) {
        return asStruct({toCell(), member("inner", inner)});
    };
    const auto besideInside = [](const std::string& inner) {
        return "Struct[{near: MoRef['ManagedElement=1,Cell=1'], inner: " + inner + "}]";
    };
    const Value lyingReference = asStruct({member("ref", nullText(kMoRef))});
    return {
        refused("InnerStructsWithoutArray", beside(none(kStruct).counting(1))),
        refused("InnerReferenceWithoutText", beside(lyingReference)),
        refused("InnerReferencesWithoutArray",
                beside(asStruct({member("refs", none(kMoRef).counting(3))}))),
        refused("InnerMemberWithoutValueBeforeAReference", beside(asStruct({bare, toCell()}))),
        {"InnerMemberWithoutValueAfterAReference", beside(asStruct({toCell(), bare})),
         besideInside("Struct[{near: MoRef['ManagedElement=1,Cell=1'], bare: Type0[]}]"), kRefused},
        refused("InnerMemberWithoutName",
                beside(asStruct({toCell(), member(kNoName, strings({"x"}))}))),
        refused("InnermostReferenceWithoutText", beside(beside(beside(lyingReference)))),
        handedOn("InnerStructWithoutReference", beside(asStruct({member(kNoName, strings({"x"}))})),
                 besideInside("Struct[{(null): String['x']}]")),
        untouched("InnerLieBesideNoReference", asStruct({member("inner", lyingReference)})),
        refused("InnerStructBeforeTheReference",
                asStruct({member("inner", lyingReference), toCell()})),
    };
}

std::vector<Lie> liesOfOtherTypes() {
    std::vector<Lie> lies = {
        untouched("TextWithoutText", nullText(kString)),
        untouched("TextsWithoutArray", none(kString).counting(2)),
        untouched("TextThatIsNoPointer", opaque(kString, {kGarbage})),
        untouched("EnumerationThatIsNoPointer",
                  opaque(OrvMoAttributeTypeEnumeration_3, {kGarbage})),
    };
    const std::vector<std::pair<std::string, std::int32_t>> types = {
        {"Zero", 0},
        {"Int64", 2},
        {"Ten", 10},
        {"Thirteen", 13},
        {"Fifteen", 15},
        {"Host", 200},
        {"Negative", -11},
        {"Least", std::numeric_limits<std::int32_t>::min()},
        {"Most", std::numeric_limits<std::int32_t>::max()}};
    for (const auto& [name, type] : types) {
        lies.push_back(untouched("Type" + name + "WithoutArray", none(type).counting(3)));
        lies.push_back(untouched("Type" + name + "ThatIsNoPointer", opaque(type, {kGarbage, 42})));
    }
    return lies;
}

std::vector<Lie> allLies() {
    std::vector<Lie> all;
    for (const auto& some :
         {liesOfReferences(), liesOfStructs(), liesOfNestedStructs(), liesOfOtherTypes()}) {
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

// -------------------------------------------------------------------------------------------------
// The operations that take values

/// One operation with \p value; where there can be several values it follows a reference that
/// would be work for the bookkeeping.
struct Taker {
    std::string name;
    bool ofVersion1;
    std::function<OrvReturnT(Scene& scene, const std::string& dn, const Value& value)> run;
    std::string routerCall;
};

NamedValues afterAReference(const Value& value) {
    return {{"cells", refs({cell("1")})}, {"attribute", value}};
}

const std::vector<Taker>& takers() {
    static const std::vector<Taker> all = {
        {"set", false,
         [](Scene& s, const std::string& dn, const Value& value) {
             return s.host.client().set(kTx, dn, "attribute", value);
         },
         "Router3.setMoAttribute"},
        {"create", false,
         [](Scene& s, const std::string& dn, const Value& value) {
             return s.host.client().create(kTx, dn, "Unit", "unitId", "new",
                                           afterAReference(value));
         },
         "Router3.createMo"},
        {"action", false,
         [](Scene& s, const std::string& dn, const Value& value) {
             return s.host.client().action(kTx, dn, "go", afterAReference(value)).code;
         },
         "Router3.action"},
        {"setMany", false,
         [](Scene& s, const std::string& dn, const Value& value) {
             return s.host.client3_1().set(kTx, dn, afterAReference(value));
         },
         "Router3_1.setMoAttributes"},
        {"set of version 1", true,
         [](Scene& s, const std::string& dn, const Value& value) {
             return s.host.client1().set(kTx, dn, "attribute", value);
         },
         "Router1.setMoAttribute"},
        {"action of version 1", true,
         [](Scene& s, const std::string& dn, const Value& value) {
             return s.host.client1().action(kTx, dn, "go", {refs({cell("1")}), value}).code;
         },
         "Router1.action"}};
    return all;
}

class LyingValue : public testing::TestWithParam<Lie> {
protected:
    void expectFate(Scene& scene, const Taker& taker, const std::string& inside) {
        SCOPED_TRACE(taker.name);
        // The ordinary action of version 1 hands its first parameter back.
        scene.host.when("Router1.action").fails(OrvOk);
        scene.host.forget();
        if (inside == kRefused) {
            EXPECT_EQ(taker.run(scene, unit("7"), GetParam().value), OrvFailure);
            EXPECT_EQ(taker.run(scene, kForeignDn, GetParam().value), OrvFailure);
            EXPECT_THAT(scene.host.calls(), IsEmpty());
            return;
        }
        EXPECT_EQ(taker.run(scene, kForeignDn, GetParam().value), OrvNotExist);
        EXPECT_EQ(taker.run(scene, unit("7"), GetParam().value), OrvOk);
        EXPECT_THAT(scene.host.calls(taker.routerCall), ElementsAre(HasSubstr(inside)));
    }
};

TEST_P(LyingValue, EachOperation_RefusesItUntouchedOrHandsItOn) {
    for (const unsigned int level : {0U, 8U}) {
        for (const Taker& taker : takers()) {
            Scene scene(Life::Started);
            scene.host.logLevel(level);
            expectFate(scene, taker, taker.ofVersion1 ? GetParam().inside1 : GetParam().inside);
            scene.host.logLevel(0);
            expectServes(scene, {taker.name, nullptr, nullptr});
        }
    }
}

TEST_P(LyingValue, Stopped_IsNotLookedAt) {
    Scene scene(Life::Started);
    ASSERT_EQ(scene.host.stopComponent(), OrvOk);
    scene.host.forget();
    for (const Taker& taker : takers()) {
        EXPECT_EQ(taker.run(scene, unit("7"), GetParam().value), OrvNotActive) << taker.name;
    }
    EXPECT_THAT(scene.host.calls(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Lies, LyingValue, testing::ValuesIn(allLies()),
                         [](const auto& tested) { return tested.param.name; });

// -------------------------------------------------------------------------------------------------
// Lists that lead back into themselves

/// A struct of three members, the last of which is followed by the first again.
template <class Version>
struct Ring {
    explicit Ring(const Value& value) {
        for (typename Version::MemberRecord& each : members) {
            each = {"ring", records.container(value), &each + 1};
        }
        members[2].next = &members[0];
        slot.structValue = &members[0];
    }

    BasicRecords<Version> records;
    typename Version::MemberRecord members[3];
    typename Version::SlotRecord slot;
    typename Version::Container container = {kStruct, 1, &slot};
};

class RingOfMembers : public testing::TestWithParam<Value> {
protected:
    RingOfMembers() { scene.host.forget(); }

    Scene scene{Life::Started};
    Ring<RecordsOfVersion3> ring{GetParam()};
    Ring<RecordsOfVersion1> ring1{GetParam()};
};

TEST_P(RingOfMembers, EachOperation_Refuses) {
    const char* const dn = "ManagedElement=paris,Unit=7";
    OrvMoNamedAttributeValueContainer_3 named = {"attribute", ring.container};
    OrvMoNamedAttributeValueContainer_3* attributes[] = {&named, nullptr};
    OrvMoAttributeValueContainer* parameters[] = {&ring1.container, nullptr};
    const OrvOamSpiManagedObject_3& v3 = *scene.host.client().table;
    const OrvOamSpiManagedObject_1& v1 = *scene.host.client1().table;
    EXPECT_EQ(v3.setMoAttribute(kTx, dn, "attribute", &ring.container), OrvFailure);
    EXPECT_EQ(v3.createMo(kTx, dn, "Part", "partId", "1", attributes), OrvFailure);
    EXPECT_EQ(v3.action(kTx, dn, "go", attributes, &scene.read), OrvFailure);
    EXPECT_EQ(scene.host.client3_1().table->setMoAttributes(kTx, dn, attributes), OrvFailure);
    EXPECT_EQ(v1.setMoAttribute(kTx, dn, "attribute", &ring1.container), OrvFailure);
    EXPECT_EQ(v1.action(kTx, dn, "go", parameters, &scene.read1), OrvFailure);
    EXPECT_THAT(scene.host.calls(), IsEmpty());
    expectServes(scene, {"a ring", nullptr, nullptr});
}

INSTANTIATE_TEST_SUITE_P(Values, RingOfMembers,
                         testing::Values(refs({cell("1")}), strings({"x"}), none(kMoRef)),
                         [](const auto& tested) {
                             return tested.param == strings({"x"}) ? "OfTexts"
                                    : tested.param.slots().empty() ? "OfNoReferences"
                                                                   : "OfReferences";
                         });

// A member's struct is the struct itself, again and again.
TEST(RingOfStructs, EachOperation_Refuses) {
    Scene scene(Life::Started);
    scene.host.forget();
    Records records;
    OrvMoAttributeValue_3 slot = {};
    OrvMoAttributeValueContainer_3 container = {kStruct, 1, &slot};
    OrvMoStructMember_3 inner = {"inner", &container, nullptr};
    OrvMoStructMember_3 near = {"near", records.container(refs({cell("1")})), &inner};
    slot.structValue = &near;
    EXPECT_EQ(scene.host.client().table->setMoAttribute(kTx, "ManagedElement=paris,Unit=7",
                                                        "attribute", &container),
              OrvFailure);
    EXPECT_THAT(scene.host.calls(), IsEmpty());
    expectServes(scene, {"a ring", nullptr, nullptr});
}

// -------------------------------------------------------------------------------------------------
// The id

/// A value of the id, and what each way to set it answers.
struct IdValue {
    std::string name;
    Value value;
    OrvReturnT set;
    OrvReturnT setMany;
    OrvReturnT set1;
};

/// Ids of one kind, each tried on its own.
struct IdKind {
    std::string name;
    std::vector<IdValue> ids;
};

void PrintTo(const IdKind& kind, std::ostream* out) {
    *out << kind.name;
}

/// Where the code is not that of a text, the slot is looked at and not what it points at.
std::vector<IdValue> idsOfType(std::int32_t type) {
    const Value zeroFirst =
        type == kStruct ? andEmptyStruct(andEmptyStruct(none(type))) : opaque(type, {0, 42});
    return {{"42", opaque(type, {42}), OrvValidationFailed, OrvInvalidArgument, OrvInvalidArgument},
            {"no pointer", opaque(type, {kGarbage, kGarbage}), OrvValidationFailed,
             OrvInvalidArgument, OrvInvalidArgument},
            {"the highest bit", opaque(type, {0x8000'0000'0000'0000ULL}), OrvValidationFailed,
             OrvInvalidArgument, OrvInvalidArgument},
            {"42, not counted", opaque(type, {42}).counting(0), OrvValidationFailed, OrvOk,
             OrvInvalidArgument},
            {"zero", opaque(type, {0}), OrvOk, OrvOk, OrvInvalidArgument},
            {"zero before another", zeroFirst, OrvOk, OrvOk, OrvInvalidArgument},
            {"no slots", none(type), OrvOk, OrvOk, OrvInvalidArgument}};
}

std::vector<IdValue> idsThatLie() {
    return {
        {"texts, no array", none(kString).counting(1), OrvOk, OrvOk, OrvInvalidArgument},
        {"no text", nullText(kString), OrvOk, OrvOk, OrvInvalidArgument},
        {"references, no array", none(kMoRef).counting(1), OrvFailure, OrvFailure,
         OrvInvalidArgument},
        {"reference, no text", nullText(kMoRef), OrvFailure, OrvFailure, OrvInvalidArgument},
        {"second reference, no text", referenceAndNone(), OrvFailure, OrvFailure, OrvFailure},
        {"numbers, no array", none(2).counting(3), OrvOk, OrvOk, OrvInvalidArgument},
        {"host's type, no array", none(200).counting(3), OrvOk, OrvOk, OrvInvalidArgument},
        {"structs, no array", none(kStruct).counting(1), OrvFailure, OrvFailure,
         OrvInvalidArgument},
        {"struct with a lie", asStruct({bareMember("bare")}), OrvValidationFailed,
         OrvInvalidArgument, OrvInvalidArgument},
        {"good struct", asStruct({toCell()}), OrvValidationFailed, OrvInvalidArgument,
         OrvInvalidArgument},
    };
}

std::vector<IdValue> idsOfTexts() {
    return {
        {"good text", strings({"paris"}), OrvOk, OrvOk, OrvOk},
        {"bad text", strings({"a,b"}), OrvValidationFailed, OrvInvalidArgument, OrvInvalidArgument},
        {"empty text", strings({""}), OrvOk, OrvOk, OrvOk},
        {"good reference", refs({"paris"}), OrvOk, OrvOk, OrvOk},
        {"bad reference", refs({"a,b"}), OrvValidationFailed, OrvInvalidArgument,
         OrvInvalidArgument},
        {"bad text, not counted", strings({"a,b"}).counting(0), OrvValidationFailed, OrvOk,
         OrvInvalidArgument},
    };
}

std::vector<IdKind> idKinds() {
    return {{"OfType0", idsOfType(0)},          {"OfType1", idsOfType(1)},
            {"OfType2", idsOfType(2)},          {"OfType5", idsOfType(5)},
            {"OfType10", idsOfType(10)},        {"OfType12", idsOfType(12)},
            {"OfType14", idsOfType(14)},        {"OfType200", idsOfType(200)},
            {"OfANegativeType", idsOfType(-9)}, {"ThatLie", idsThatLie()},
            {"OfTexts", idsOfTexts()}};
}

class LyingId : public testing::TestWithParam<IdKind> {
protected:
    LyingId() { scene.host.forget(); }

    /// What has been asked for an id that is refused with \p code: nothing before a value that
    /// cannot be read, otherwise \p before.
    void expectRefusedAfter(OrvReturnT code, const std::vector<std::string>& before) {
        if (code == OrvFailure) {
            EXPECT_THAT(scene.host.calls(), IsEmpty());
        } else if (code != OrvOk) {
            EXPECT_EQ(scene.host.calls(), before);
        }
        EXPECT_EQ(scene.host.resource().finish(kTx), OrvOk);
        scene.host.forget();
    }

    void expectServesOn() {
        scene.host.logLevel(0);
        expectServes(scene, {"an id", nullptr, nullptr});
    }

    const std::string translated = "Translator.toInternalDn('ManagedElement=paris,Unit=7')";
    Scene scene{Life::Started};
};

TEST_P(LyingId, Set_ReadsATextOnlyWhereOneMustBe) {
    for (const IdValue& id : GetParam().ids) {
        for (const unsigned int level : {0U, 8U}) {
            SCOPED_TRACE(id.name);
            scene.host.logLevel(level);
            EXPECT_EQ(scene.host.client().set(kTx, unit("7"), kNetworkId, id.value), id.set);
            expectRefusedAfter(id.set, {translated, kJoin});
        }
    }
    expectServesOn();
}

TEST_P(LyingId, SetMany_TheSameOfEachOfMany) {
    for (const IdValue& id : GetParam().ids) {
        SCOPED_TRACE(id.name);
        const std::pair<std::string, Value> other = {"cells", refs({cell("1")})};
        for (const NamedValues& attributes : {NamedValues{other, {kNetworkId, id.value}},
                                              NamedValues{{kNetworkId, id.value}, other}}) {
            scene.host.logLevel(8);
            EXPECT_EQ(scene.host.client3_1().set(kTx, unit("7"), attributes), id.setMany);
            expectRefusedAfter(id.setMany, {translated, kJoin});
        }
    }
    expectServesOn();
}

TEST_P(LyingId, Version1_TheSameAndMustHaveAValue) {
    for (const IdValue& id : GetParam().ids) {
        for (const unsigned int level : {0U, 8U}) {
            SCOPED_TRACE(id.name);
            scene.host.logLevel(level);
            EXPECT_EQ(scene.host.client1().set(kTx, unit("7"), kNetworkId, id.value), id.set1);
            expectRefusedAfter(id.set1, {translated});
        }
    }
    expectServesOn();
}

// A DN that cannot be translated is reported before the id, a value that cannot be read before the
// DN.
TEST_P(LyingId, OtherAnswers_HaveTheirPlaces) {
    const auto onForeign = [](OrvReturnT code) {
        return code == OrvFailure ? OrvFailure : OrvNotExist;
    };
    for (const IdValue& id : GetParam().ids) {
        SCOPED_TRACE(id.name);
        EXPECT_EQ(scene.host.client().set(kTx, kForeignDn, kNetworkId, id.value),
                  onForeign(id.set));
        EXPECT_EQ(scene.host.client3_1().set(kTx, kForeignDn, {{kNetworkId, id.value}}),
                  onForeign(id.setMany));
        EXPECT_EQ(scene.host.client1().set(kTx, kForeignDn, kNetworkId, id.value),
                  onForeign(id.set1));
    }
    EXPECT_THAT(scene.host.calls("Transaction."), IsEmpty());
    ASSERT_EQ(scene.host.stopComponent(), OrvOk);
    for (const IdValue& id : GetParam().ids) {
        SCOPED_TRACE(id.name);
        EXPECT_EQ(scene.host.client().set(kTx, unit("7"), kNetworkId, id.value), OrvNotActive);
        EXPECT_EQ(scene.host.client3_1().set(kTx, unit("7"), {{kNetworkId, id.value}}),
                  OrvNotActive);
        EXPECT_EQ(scene.host.client1().set(kTx, unit("7"), kNetworkId, id.value), OrvNotActive);
    }
}

INSTANTIATE_TEST_SUITE_P(Ids, LyingId, testing::ValuesIn(idKinds()),
                         [](const auto& tested) { return tested.param.name; });

class LyingIdElsewhere : public testing::Test {
protected:
    LyingIdElsewhere() { scene.host.forget(); }

    Scene scene{Life::Started};
};

TEST_F(LyingIdElsewhere, CreateAndAction_DoNotLookAtIt) {
    for (const Value& value : {opaque(2, {42}), opaque(0, {kGarbage}), opaque(200, {kGarbage})}) {
        EXPECT_EQ(scene.host.client().create(kTx, unit("7"), "Part", "partId",
                                             std::to_string(value.type()), {{kNetworkId, value}}),
                  OrvOk);
        EXPECT_EQ(scene.host.client().action(kTx, unit("7"), "go", {{kNetworkId, value}}).code,
                  OrvOk);
        EXPECT_THAT(scene.host.calls().back(), HasSubstr(value.text()));
    }
}

TEST_F(LyingIdElsewhere, RefusedIdBesideALie_IsTheLie) {
    const Value bad = strings({"a,b"});
    const Value lie = nullText(kMoRef);
    EXPECT_EQ(scene.host.client3_1().set(kTx, unit("7"), {{kNetworkId, bad}, {"cells", lie}}),
              OrvFailure);
    EXPECT_EQ(scene.host.client3_1().set(kTx, unit("7"), {{"cells", lie}, {kNetworkId, bad}}),
              OrvFailure);
    EXPECT_THAT(scene.host.calls(), IsEmpty());
}

}
}
