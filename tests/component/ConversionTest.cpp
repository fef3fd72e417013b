// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What a value looks like on its way out to a client, and who releases what.

#include "Host.h"
#include "Records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Scripted;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const std::string kUnit = "ManagedElement=paris,Unit=7";
const std::string kUnitInside = "ManagedElement=1,Unit=7";
const std::string kOther = "ManagedElement=paris,Unit=8";
const std::string kOtherInside = "ManagedElement=1,Unit=8";
const std::string kForeign = "ManagedElement=2,Unit=9"; ///< has no external form

#ifdef ORV_SANITIZED
constexpr std::size_t kDepth = 1000; // instrumented frames are large
#else
constexpr std::size_t kDepth = 10000;
#endif

}

class Conversion : public testing::Test {
protected:
    Conversion() { host.start(); }

    /// What a client reads if the router has \p value.
    Read read(const Value& value) {
        host.mo(kUnitInside).with("attribute", value);
        Read made = host.client().get(1, kUnit, "attribute");
        EXPECT_EQ(made.code, OrvOk);
        return made;
    }

    Read readOf(const std::string& dn, const std::string& attribute) {
        Read made = host.client().get(1, dn, attribute);
        EXPECT_EQ(made.code, OrvOk);
        return made;
    }

    /// The router answers with \p container, and without a release function.
    void answer(OrvMoAttributeValueContainer_3* container) {
        host.when("Router3.getMoAttribute")
            .answers<OrvMoAttributeValueResult_3>([container](OrvMoAttributeValueResult_3& out) {
                out = {nullptr, container};
                return OrvOk;
            });
    }

    Host host;
    Records records;
};

TEST_F(Conversion, References_BecomeExternal) {
    EXPECT_EQ(read(refs({kUnitInside, kOtherInside})).value(), refs({kUnit, kOther}));
}

TEST_F(Conversion, ReferenceOfAnotherRoot_StaysAsItIs) {
    EXPECT_EQ(read(refs({"Plant=1,Unit=7"})).value(), refs({"Plant=1,Unit=7"}));
}

TEST_F(Conversion, MiddleReferenceUntranslatable_ProducersOwnTextStandsBetweenFreshCopies) {
    auto* container = records.container(refs({kUnitInside, kForeign, kOtherInside}));
    answer(container);
    const Read got = readOf(kUnit, "attribute");
    EXPECT_EQ(got.value(), refs({kUnit, kForeign, kOther}));
    const OrvMoAttributeValue_3* slots = got.record.container->values;
    EXPECT_NE(slots, container->values);
    EXPECT_EQ(slots[1].moRef, container->values[1].moRef);
    EXPECT_NE(slots[0].moRef, container->values[0].moRef);
    EXPECT_NE(slots[2].moRef, container->values[2].moRef);
}

TEST_F(Conversion, EveryReferenceUntranslatable_StillYieldsANewArray) {
    auto* container = records.container(refs({kForeign}));
    answer(container);
    const Read got = readOf(kUnit, "attribute");
    EXPECT_NE(got.record.container->values, container->values);
    EXPECT_EQ(got.record.container->values[0].moRef, container->values[0].moRef);
}

TEST_F(Conversion, EmptyReference_KeepsTheProducersText) {
    auto* container = records.container(refs({""}));
    answer(container);
    const Read got = readOf(kUnit, "attribute");
    EXPECT_EQ(got.record.container->values[0].moRef, container->values[0].moRef);
}

TEST_F(Conversion, ProducersRecord_IsNotWrittenTo) {
    auto* container =
        records.container(structs({{member("to", refs({kUnitInside})), member("n", refs({}))}}));
    answer(container);
    const auto* slots = container->values;
    const auto* head = container->values[0].structValue;
    { const Read got = readOf(kUnit, "attribute"); }
    EXPECT_EQ(container->values, slots);
    EXPECT_EQ(container->values[0].structValue, head);
    EXPECT_EQ(readValue(container),
              structs({{member("to", refs({kUnitInside})), member("n", refs({}))}}));
}

class WithoutDns : public Conversion, public testing::WithParamInterface<Value> {};

TEST_P(WithoutDns, TheViewSharesTheProducersArray) {
    auto* container = records.container(GetParam());
    answer(container);
    const Read got = readOf(kUnit, "attribute");
    EXPECT_NE(got.record.container, container);
    EXPECT_EQ(got.record.container->type, container->type);
    EXPECT_EQ(got.record.container->count, container->count);
    EXPECT_EQ(got.record.container->values, container->values);
}

INSTANTIATE_TEST_SUITE_P(
    Values, WithoutDns,
    testing::Values(strings({"a", "b"}), strings({kUnitInside}), opaque(1, {1}),
                    opaque(200, {1, 2, 3}), opaque(0, {7}), opaque(-1, {7}),
                    none(OrvMoAttributeTypeMoRef_3), none(OrvMoAttributeTypeStruct_3),
                    none(OrvMoAttributeTypeString_3), none(200),
                    none(OrvMoAttributeTypeMoRef_3).withArray(),
                    none(OrvMoAttributeTypeStruct_3).withArray(), refs({kUnitInside}).counting(0),
                    nullText(OrvMoAttributeTypeString_3),
                    andEmptyStruct(none(OrvMoAttributeTypeStruct_3)),
                    structs({{member("name", strings({kUnitInside}))}}),
                    structs({{member("in", structs({{member("to", refs({kUnitInside}))}}))}})));

TEST_F(Conversion, FirstStructWithoutReference_LeavesTheLaterOnesUnconverted) {
    const Value value =
        structs({{member("name", strings({"x"}))}, {member("to", refs({kUnitInside}))}});
    auto* container = records.container(value);
    answer(container);
    const Read got = readOf(kUnit, "attribute");
    EXPECT_EQ(got.value(), value);
    EXPECT_EQ(got.record.container->values, container->values);
}

TEST_F(Conversion, FirstStructEmpty_LeavesTheLaterOnesUnconverted) {
    std::vector<Slot> slots = andEmptyStruct(none(OrvMoAttributeTypeStruct_3)).slots();
    slots.push_back(structs({{member("to", refs({kUnitInside}))}}).slots().front());
    const Value value(OrvMoAttributeTypeStruct_3, slots);
    EXPECT_EQ(read(value).value(), value);
}

TEST_F(Conversion, FirstStructWithReference_EveryStructAndMemberIsRebuilt) {
    auto* container = records.container(
        structs({{member("name", strings({"x"})), member("to", refs({kUnitInside, kForeign}))},
                 {member("name", strings({"y"}))},
                 {member("to", refs({kOtherInside}))}}));
    answer(container);
    const Read got = readOf(kUnit, "attribute");
    EXPECT_EQ(got.value(),
              structs({{member("name", strings({"x"})), member("to", refs({kUnit, kForeign}))},
                       {member("name", strings({"y"}))},
                       {member("to", refs({kOther}))}}));
    for (std::uint32_t i = 0; i < 3; ++i) {
        const OrvMoStructMember_3* ours = got.record.container->values[i].structValue;
        const OrvMoStructMember_3* theirs = container->values[i].structValue;
        EXPECT_NE(ours, theirs);
        EXPECT_NE(ours->name, theirs->name);
        EXPECT_NE(ours->value, theirs->value);
    }
}

TEST_F(Conversion, MemberWithoutDn_SharesTheProducersSlots) {
    auto* container = records.container(
        structs({{member("to", refs({kUnitInside})), member("name", strings({"x"}))}}));
    answer(container);
    const Read got = readOf(kUnit, "attribute");
    const auto* ours = got.record.container->values[0].structValue->next->value;
    EXPECT_EQ(ours->values, container->values[0].structValue->next->value->values);
}

TEST_F(Conversion, EmptyStructAfterAConvertedOne_StaysANullPointer) {
    const Value value = andEmptyStruct(structs({{member("to", refs({kUnitInside}))}}));
    EXPECT_EQ(read(value).value(), andEmptyStruct(structs({{member("to", refs({kUnit}))}})));
}

TEST_F(Conversion, MemberWithoutValueAfterTheReference_BecomesAnEmptyViewOfType0) {
    const Read got = read(structs({{member("to", refs({kUnitInside})), bareMember("bare")}}));
    EXPECT_EQ(got.value(), structs({{member("to", refs({kUnit})), member("bare", none(0))}}));
    const auto* bare = got.record.container->values[0].structValue->next->value;
    ASSERT_NE(bare, nullptr);
    EXPECT_EQ(bare->values, nullptr);
}

TEST_F(Conversion, InnerStructWithReferenceOfItsOwn_IsConvertedToo) {
    EXPECT_EQ(read(structs({{member("to", refs({kUnitInside})),
                             member("in", structs({{member("at", refs({kOtherInside}))}}))}}))
                  .value(),
              structs({{member("to", refs({kUnit})),
                        member("in", structs({{member("at", refs({kOther}))}}))}}));
}

TEST_F(Conversion, InnerStructWhoseFirstValueHasNoReference_StaysUnconverted) {
    const Value inner =
        structs({{member("n", strings({"x"}))}, {member("at", refs({kOtherInside}))}});
    EXPECT_EQ(read(structs({{member("to", refs({kUnitInside})), member("in", inner)}})).value(),
              structs({{member("to", refs({kUnit})), member("in", inner)}}));
}

TEST_F(Conversion, ReferenceMemberWithoutValues_IsAReferenceAllTheSame) {
    EXPECT_EQ(
        read(structs({{member("none", refs({}))}, {member("to", refs({kUnitInside}))}})).value(),
        structs({{member("none", refs({}))}, {member("to", refs({kUnit}))}}));
}

TEST_F(Conversion, WideStruct_EveryMemberArrivesInOrder) {
    constexpr std::size_t kWidth = 100000;
    Members inside;
    Members outside;
    for (std::size_t i = 0; i < kWidth; ++i) {
        const bool reference = i % 100 == 99;
        const std::string name = "m" + std::to_string(i);
        inside.push_back(member(name, reference ? refs({kUnitInside}) : strings({"x"})));
        outside.push_back(member(name, reference ? refs({kUnit}) : strings({"x"})));
    }
    const Read got = read(structs({inside}));
    EXPECT_TRUE(got.value() == structs({outside}));
}

TEST_F(Conversion, ManyValues_AreAllConverted) {
    EXPECT_TRUE(read(refs(std::vector<std::string>(100000, kUnitInside))).value() ==
                refs(std::vector<std::string>(100000, kUnit)));
}

namespace {

/// A struct in a struct in a struct: each level has a reference and, but for the last, the next
/// level. Built flat, so that the depth costs the test no stack.
class DeepStruct {
public:
    explicit DeepStruct(std::size_t depth, const char* dn)
        : mLevels(depth),
          mReferenceSlot{.moRef = dn},
          mReference{OrvMoAttributeTypeMoRef_3, 1, &mReferenceSlot} {
        for (std::size_t i = 0; i < depth; ++i) {
            Level& level = mLevels[i];
            level.slot.structValue = &level.to;
            level.container = {OrvMoAttributeTypeStruct_3, 1, &level.slot};
            level.to = {"to", &mReference, i + 1 < depth ? &level.in : nullptr};
            level.in = {"in", i + 1 < depth ? &mLevels[i + 1].container : nullptr, nullptr};
        }
    }

    OrvMoAttributeValueContainer_3* container() { return &mLevels.front().container; }

private:
    struct Level {
        OrvMoAttributeValueContainer_3 container = {};
        OrvMoAttributeValue_3 slot = {};
        OrvMoStructMember_3 to = {};
        OrvMoStructMember_3 in = {};
    };

    std::vector<Level> mLevels;
    OrvMoAttributeValue_3 mReferenceSlot;
    OrvMoAttributeValueContainer_3 mReference;
};

/// The references of all levels of what was a DeepStruct.
std::vector<std::string> referencesIn(const OrvMoAttributeValueContainer_3* container) {
    std::vector<std::string> dns;
    while (container != nullptr) {
        const OrvMoStructMember_3* to = container->values[0].structValue;
        dns.emplace_back(to->value->values[0].moRef);
        container = to->next == nullptr ? nullptr : to->next->value;
    }
    return dns;
}

}

TEST_F(Conversion, DeepStruct_IsConvertedAtEveryLevel) {
    DeepStruct deep(kDepth, kUnitInside.c_str());
    answer(deep.container());
    const Read got = readOf(kUnit, "attribute");
    EXPECT_EQ(referencesIn(got.record.container), std::vector<std::string>(kDepth, kUnit));
}

// Who releases what.

TEST_F(Conversion, ProducersRelease_GetsItsOwnContainerWhenTheClientReleases) {
    {
        const Read got = read(refs({kUnitInside}));
        EXPECT_THAT(host.calls("Producer."), IsEmpty());
    }
    EXPECT_THAT(host.calls("Producer."),
                ElementsAre("Producer.release('ManagedElement=1,Unit=7.attribute')"));
}

TEST_F(Conversion, TwoReads_AreReleasedApart) {
    Read first = read(refs({kUnitInside}));
    const Read second = read(refs({kOtherInside}));
    first.release();
    EXPECT_EQ(second.value(), refs({kOther}));
    EXPECT_EQ(host.results().outstanding(), 1U);
}

TEST_F(Conversion, ProducerWithoutRelease_TheClientStillReleasesTheWrapper) {
    answer(records.container(refs({kUnitInside})));
    const Read got = readOf(kUnit, "attribute");
    EXPECT_NE(got.record.release, nullptr);
    EXPECT_EQ(got.value(), refs({kUnit}));
}

TEST_F(Conversion, ProducerWithoutContainer_TheClientGetsAnEmptyViewOfType0) {
    answer(nullptr);
    const Read got = readOf(kUnit, "attribute");
    EXPECT_NE(got.record.release, nullptr);
    ASSERT_NE(got.record.container, nullptr);
    EXPECT_EQ(got.value(), none(0));
    EXPECT_EQ(got.record.container->values, nullptr);
}

TEST_F(Conversion, ProducerWithReleaseButNoContainer_ReleaseIsNotCalled) {
    static int released = 0;
    released = 0;
    host.when("Router3.getMoAttribute")
        .answers<OrvMoAttributeValueResult_3>([](OrvMoAttributeValueResult_3& out) {
            out = {[](OrvMoAttributeValueContainer_3*) { ++released; }, nullptr};
            return OrvOk;
        });
    { const Read got = readOf(kUnit, "attribute"); }
    EXPECT_EQ(released, 0);
}

// Many values at a time.

TEST_F(Conversion, Many_EachIsConvertedAndTheProducersReleaseIsCalledOnce) {
    host.mo(kUnitInside)
        .with("a", strings({"x"}))
        .with("b", refs({kUnitInside}))
        .with("c", refs({}));
    {
        const ReadMany got = host.client().getMany(1, kUnit, {"a", "b", "c", "b"});
        EXPECT_THAT(got.values(),
                    ElementsAre(strings({"x"}), refs({kUnit}), refs({}), refs({kUnit})));
        EXPECT_THAT(host.calls("Producer."), IsEmpty());
    }
    EXPECT_THAT(host.calls("Producer."),
                ElementsAre("Producer.releaseAll('ManagedElement=1,Unit=7')"));
}

TEST_F(Conversion, Many_One_IsWrappedAndReleased) {
    host.mo(kUnitInside).with("b", refs({kUnitInside}));
    const ReadMany got = host.client().getMany(1, kUnit, {"b"});
    EXPECT_THAT(got.values(), ElementsAre(refs({kUnit})));
}

TEST_F(Conversion, Many_NoNames_KeepsTheProducersArrayAndRelease) {
    host.mo(kUnitInside);
    OrvMoAttributeValueContainer_3* none[] = {nullptr};
    const auto release = [](OrvMoAttributeValueContainer_3**) {};
    host.when("Router3.getMoAttributes")
        .answers<OrvMoAttributeValuesResult_3>([&](OrvMoAttributeValuesResult_3& out) {
            out = {release, none};
            return OrvOk;
        });
    const ReadMany got = host.client().getMany(1, kUnit, {});
    EXPECT_EQ(got.code, OrvOk);
    EXPECT_EQ(got.record.containers, none);
    EXPECT_EQ(got.record.release, static_cast<decltype(got.record.release)>(release));
}

TEST_F(Conversion, Many_NullArray_StaysAsTheProducerLeftIt) {
    host.when("Router3.getMoAttributes")
        .answers<OrvMoAttributeValuesResult_3>([&](OrvMoAttributeValuesResult_3& out) {
            out = {nullptr, nullptr};
            return OrvOk;
        });
    const ReadMany got = host.client().getMany(1, kUnit, {"a"});
    EXPECT_EQ(got.code, OrvOk);
    EXPECT_EQ(got.record.containers, nullptr);
    EXPECT_EQ(got.record.release, nullptr);
}

TEST_F(Conversion, Many_ProducerWithoutRelease_TheClientStillReleasesTheWrappers) {
    auto** containers = records.array({refs({kUnitInside}), strings({"x"})});
    host.when("Router3.getMoAttributes")
        .answers<OrvMoAttributeValuesResult_3>([&](OrvMoAttributeValuesResult_3& out) {
            out = {nullptr, containers};
            return OrvOk;
        });
    const ReadMany got = host.client().getMany(1, kUnit, {"a", "b"});
    EXPECT_NE(got.record.release, nullptr);
    EXPECT_NE(got.record.containers, containers);
    EXPECT_THAT(got.values(), ElementsAre(refs({kUnit}), strings({"x"})));
}

TEST_F(Conversion, Many_FewerContainersThanNames_TheContainersDecide) {
    host.when("Router3.getMoAttributes")
        .answers<OrvMoAttributeValuesResult_3>([&](OrvMoAttributeValuesResult_3& out) {
            out = {nullptr, records.array({refs({kUnitInside})})};
            return OrvOk;
        });
    const ReadMany got = host.client().getMany(1, kUnit, {"a", "b", "c"});
    EXPECT_THAT(got.values(), ElementsAre(refs({kUnit})));
}

TEST_F(Conversion, Many_Thousands_AreReleasedOnce) {
    std::vector<std::string> names;
    auto mo = host.mo(kUnitInside);
    for (int i = 0; i < 3000; ++i) {
        names.push_back("a" + std::to_string(i));
        mo.with(names.back(), refs({kUnitInside}));
    }
    EXPECT_THAT(host.client().getMany(1, kUnit, names).values(), SizeIs(3000));
    EXPECT_THAT(host.calls("Producer."), SizeIs(1));
}

// The id of the root is read in its external form.

class RootId : public Conversion {
protected:
    Read readId(const std::string& dn, const std::string& inside, const Value& value,
                const std::string& attribute = "managedElementId") {
        host.mo(inside).with(attribute, value);
        return readOf(dn, attribute);
    }
};

TEST_F(RootId, OfTheRoot_IsTheExternalIdentity) {
    EXPECT_EQ(readId("ManagedElement=paris", "ManagedElement=1", strings({"1"})).value(),
              strings({"paris"}));
}

TEST_F(RootId, NoPreferredIdentity_IsTheFallback) {
    host.identity("", "lyon");
    EXPECT_EQ(readId("ManagedElement=lyon", "ManagedElement=1", strings({"1"})).value(),
              strings({"lyon"}));
}

TEST_F(RootId, ClassThatOnlyBeginsLikeTheRoot_TakesTheSamePath) {
    EXPECT_EQ(readId("ManagedElementExtra=1", "ManagedElementExtra=1", strings({"1"})).value(),
              strings({"paris"}));
}

TEST_F(RootId, ValueThatHasNoExternalForm_IsTheEmptyText) {
    EXPECT_EQ(readId("ManagedElement=paris", "ManagedElement=1", strings({"2"})).value(),
              strings({""}));
}

TEST_F(RootId, ChildOfTheRoot_StaysAsTheProducerGaveIt) {
    EXPECT_EQ(
        readId("ManagedElement=paris,Sub=2", "ManagedElement=1,Sub=2", strings({"1"})).value(),
        strings({"1"}));
}

TEST_F(RootId, OtherRootClass_StaysAsTheProducerGaveIt) {
    EXPECT_EQ(readId("Managed=1", "Managed=1", strings({"1"})).value(), strings({"1"}));
    EXPECT_EQ(readId("managedElement=1", "managedElement=1", strings({"1"})).value(),
              strings({"1"}));
}

TEST_F(RootId, TwoValues_StayAsTheProducerGaveThem) {
    EXPECT_EQ(readId("ManagedElement=paris", "ManagedElement=1", strings({"1", "1"})).value(),
              strings({"1", "1"}));
}

TEST_F(RootId, NoValue_StaysEmpty) {
    EXPECT_EQ(readId("ManagedElement=paris", "ManagedElement=1", strings({})).value(), strings({}));
}

TEST_F(RootId, NotAString_TakesTheGeneralPath) {
    EXPECT_EQ(readId("ManagedElement=paris", "ManagedElement=1", opaque(2, {1})).value(),
              opaque(2, {1}));
    EXPECT_EQ(readId("ManagedElement=paris", "ManagedElement=1", refs({kUnitInside})).value(),
              refs({kUnit}));
}

TEST_F(RootId, OtherAttribute_StaysAsTheProducerGaveIt) {
    for (const std::string attribute :
         {"ManagedElementId", "managedElementI", "managedElementIdX", "networkManagedElementId"}) {
        EXPECT_EQ(
            readId("ManagedElement=paris", "ManagedElement=1", strings({"1"}), attribute).value(),
            strings({"1"}));
    }
}

TEST_F(RootId, AmongMany_IsTheExternalIdentity) {
    host.mo("ManagedElement=1").with("managedElementId", strings({"1"})).with("a", strings({"1"}));
    EXPECT_THAT(
        host.client().getMany(1, "ManagedElement=paris", {"a", "managedElementId", "a"}).values(),
        ElementsAre(strings({"1"}), strings({"paris"}), strings({"1"})));
}

TEST_F(RootId, FirstAmongMany_TheProducersReleaseIsStillCalledOnce) {
    host.mo("ManagedElement=1").with("managedElementId", strings({"1"}));
    {
        const ReadMany got = host.client().getMany(1, "ManagedElement=paris",
                                                   {"managedElementId", "managedElementId"});
        EXPECT_THAT(got.values(), ElementsAre(strings({"paris"}), strings({"paris"})));
    }
    EXPECT_THAT(host.calls("Producer."), ElementsAre("Producer.releaseAll('ManagedElement=1')"));
}

TEST_F(RootId, IdentityWithAnEqualsSign_IsWhole) {
    host.identity("a=b", "");
    EXPECT_EQ(readId("ManagedElement=a=b", "ManagedElement=1", strings({"1"})).value(),
              strings({"a=b"}));
}

// Only the root's id must come with a container.
TEST_F(RootId, NoContainer_OfAnotherAttributeOrMo_IsAnEmptyView) {
    answer(nullptr);
    EXPECT_EQ(readOf("ManagedElement=paris", "label").value(), none(0));
    EXPECT_EQ(readOf(kUnit, "managedElementId").value(), none(0));
    EXPECT_EQ(readOf("Plant=1", "managedElementId").value(), none(0));
}
