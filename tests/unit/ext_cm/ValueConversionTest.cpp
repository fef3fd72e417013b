// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "values/ValueConversion.h"

#include "Records.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

using OrvExtCmRouterService::ConvertedResultData;
using OrvExtCmRouterService::IdMappings;
using OrvExtCmRouterService::ValueConversion;

using namespace Scripted;

namespace {

constexpr char kRoot[] = "ManagedElement=1";
constexpr char kRootOutside[] = "ManagedElement=paris";
constexpr char kForeign[] = "ManagedElement=london"; // translates in neither direction

class ValueConversionTest : public testing::Test {
protected:
    ValueConversionTest() { Orv::MeIdTranslator::instance()->configure("paris", ""); }
    ~ValueConversionTest() override { Orv::MeIdTranslator::instance()->configure("", ""); }

    Value converted(const Value& value, IdMappings::DnConversion direction) {
        OrvMoAttributeValueContainer_3* const original = records.container(value);
        ConvertedResultData view(nullptr, original);
        conversion.transformContainer(view, direction);
        EXPECT_EQ(readValue(original), value) << "the original was written to";
        return *readValue(&view);
    }
    Value inward(const Value& value) { return converted(value, IdMappings::ToInternal); }
    Value outward(const Value& value) { return converted(value, IdMappings::ToExternal); }

    // True if the view still reads the producer's slots after a conversion.
    bool shares(const Value& value) {
        OrvMoAttributeValueContainer_3* const original = records.container(value);
        ConvertedResultData view(nullptr, original);
        conversion.transformContainer(view, IdMappings::ToExternal);
        return view.values == original->values;
    }

    Records records;
    IdMappings mappings{Orv::MeIdTranslator::instance()};
    ValueConversion conversion{mappings};
};

Value refOf(const char* dn) {
    return refs({dn});
}

}

TEST_F(ValueConversionTest, MoRef_GoesBothWays) {
    EXPECT_EQ(inward(refs({kRootOutside, "Other=1"})), refs({kRoot, "Other=1"}));
    EXPECT_EQ(outward(refs({kRoot, "Other=1"})), refs({kRootOutside, "Other=1"}));
}

TEST_F(ValueConversionTest, MoRef_WithoutValues_SharesTheSlots) {
    EXPECT_TRUE(shares(refs({})));
    EXPECT_TRUE(shares(refs({}).withArray()));
    EXPECT_TRUE(shares(refs({kRoot}).counting(0)));
}

TEST_F(ValueConversionTest, MoRef_SecondCannotBeTranslated_KeepsTheProducersOwnText) {
    OrvMoAttributeValueContainer_3* const original =
        records.container(refs({"A=1", kForeign, "B=2"}));
    ConvertedResultData view(nullptr, original);
    conversion.transformContainer(view, IdMappings::ToExternal);
    ASSERT_NE(view.values, original->values);
    EXPECT_EQ(view.values[1].moRef, original->values[1].moRef);
    for (const int copied : {0, 2}) {
        EXPECT_NE(view.values[copied].moRef, original->values[copied].moRef);
        EXPECT_STREQ(view.values[copied].moRef, original->values[copied].moRef);
    }
}

TEST_F(ValueConversionTest, MoRef_NothingCanBeTranslated_StillGetsAnArrayOfItsOwn) {
    EXPECT_FALSE(shares(refs({kForeign})));
    EXPECT_EQ(outward(refs({kForeign})), refs({kForeign}));
}

TEST_F(ValueConversionTest, OtherTypes_ShareTheSlotsWhateverTheirCode) {
    EXPECT_TRUE(shares(strings({kRoot})));
    EXPECT_TRUE(shares(opaque(1, {1, 2})));
    EXPECT_TRUE(shares(opaque(200, {0xffffffffffffffffULL})));
    EXPECT_TRUE(shares(opaque(-3, {1})));
    EXPECT_TRUE(shares(none(200)));
}

TEST_F(ValueConversionTest, Struct_WithADirectReference_IsRebuiltInItsOrder) {
    const auto value = [](const char* dn) {
        return structs(
            {{member("b", strings({"x"})), member("to", refOf(dn)), member("a", opaque(2, {7}))}});
    };
    EXPECT_EQ(outward(value(kRoot)), value(kRootOutside));
    EXPECT_EQ(inward(value(kRootOutside)), value(kRoot));
    EXPECT_FALSE(shares(value(kRoot)));
}

TEST_F(ValueConversionTest, Struct_NamesAreCopies) {
    OrvMoAttributeValueContainer_3* const original =
        records.container(structs({{member("to", refOf(kRoot))}}));
    ConvertedResultData view(nullptr, original);
    conversion.transformContainer(view, IdMappings::ToExternal);
    EXPECT_NE(view.values[0].structValue->name, original->values[0].structValue->name);
    EXPECT_STREQ(view.values[0].structValue->name, "to");
}

TEST_F(ValueConversionTest, Struct_WithoutReferences_SharesTheSlots) {
    EXPECT_TRUE(shares(structs({{member("a", strings({kRoot}))}})));
    EXPECT_TRUE(shares(structs({})));
    EXPECT_TRUE(shares(andEmptyStruct(none(OrvMoAttributeTypeStruct_3))));
}

// The first value alone decides.
TEST_F(ValueConversionTest, Struct_ReferenceInTheSecondValueOnly_StaysAsItIs) {
    const Value value = structs({{member("a", strings({"x"}))}, {member("to", refOf(kRoot))}});
    EXPECT_TRUE(shares(value));
    EXPECT_EQ(outward(value), value);
}

TEST_F(ValueConversionTest, Struct_FirstValueEmpty_StaysAsItIs) {
    OrvMoAttributeValueContainer_3* const original =
        records.container(structs({{member("x", strings({}))}, {member("to", refOf(kRoot))}}));
    original->values[0].structValue = nullptr;
    ConvertedResultData view(nullptr, original);
    conversion.transformContainer(view, IdMappings::ToExternal);
    EXPECT_EQ(view.values, original->values);
}

TEST_F(ValueConversionTest, Struct_ReferenceInANestedStructOnly_StaysAsItIs) {
    const Value value = structs({{member("in", structs({{member("to", refOf(kRoot))}}))}});
    EXPECT_TRUE(shares(value));
}

TEST_F(ValueConversionTest, Struct_FirstValueHasReference_ConvertsAllValues) {
    const auto value = [](const char* dn) {
        return andEmptyStruct(structs(
            {{member("to", refOf(dn))}, {member("a", strings({"x"})), member("to", refOf(dn))}}));
    };
    EXPECT_EQ(outward(value(kRoot)), value(kRootOutside));
}

TEST_F(ValueConversionTest, Struct_EmptyStructAmongOthers_StaysNull) {
    OrvMoAttributeValueContainer_3* const original =
        records.container(andEmptyStruct(structs({{member("to", refOf(kRoot))}})));
    ConvertedResultData view(nullptr, original);
    conversion.transformContainer(view, IdMappings::ToExternal);
    ASSERT_NE(view.values, original->values);
    EXPECT_EQ(view.values[1].structValue, nullptr);
}

TEST_F(ValueConversionTest, Struct_InnerStructWithADirectReference_IsConvertedToo) {
    const auto value = [](const char* dn) {
        return structs(
            {{member("to", refOf(dn)),
              member("in", structs({{member("to", refOf(dn)),
                                     member("in", structs({{member("to", refOf(dn))}}))}}))}});
    };
    EXPECT_EQ(outward(value(kRoot)), value(kRootOutside));
}

TEST_F(ValueConversionTest, Struct_InnerStructShowsNoReferenceFirst_KeepsItsReferences) {
    const auto value = [](const char* dn) {
        return structs(
            {{member("to", refOf(dn)), member("in", structs({{member("a", strings({"x"}))},
                                                             {member("to", refOf(kRoot))}}))}});
    };
    EXPECT_EQ(outward(value(kRoot)), value(kRootOutside));
}

TEST_F(ValueConversionTest, Struct_MemberWithoutValueBehindAReference_BecomesAnEmptyOne) {
    const Value value = structs({{member("to", refOf(kRoot)), bareMember("note")}});
    EXPECT_EQ(outward(value),
              structs({{member("to", refOf(kRootOutside)), member("note", none(0))}}));
}

TEST_F(ValueConversionTest, Struct_DeepAndWide_IsConvertedToTheBottom) {
    const auto deep = [](const char* dn) {
        Value value = structs({{member("to", refOf(dn))}});
        for (int level = 0; level < 500; ++level) {
            value = structs({{member("in", value), member("to", refOf(dn))}});
        }
        return value;
    };
    OrvMoAttributeValueContainer_3* const original = records.container(deep(kRoot));
    ConvertedResultData view(nullptr, original);
    conversion.transformContainer(view, IdMappings::ToExternal);
    const OrvMoAttributeValueContainer_3* at = &view;
    int levels = 0;
    while (std::strcmp(at->values[0].structValue->name, "in") == 0) {
        EXPECT_STREQ(at->values[0].structValue->next->value->values[0].moRef, kRootOutside);
        at = at->values[0].structValue->value;
        ++levels;
    }
    EXPECT_EQ(levels, 500);
    EXPECT_STREQ(at->values[0].structValue->value->values[0].moRef, kRootOutside);

    Members wide;
    Members wideOutside;
    for (int index = 0; index < 2000; ++index) {
        wide.push_back(member("m" + std::to_string(index), refOf(kRoot)));
        wideOutside.push_back(member("m" + std::to_string(index), refOf(kRootOutside)));
    }
    EXPECT_EQ(outward(structs({wide})), structs({wideOutside}));
}

TEST_F(ValueConversionTest, NamedArray_KeepsOrderNamesAndPlainSlots) {
    auto** const attributes = records.named(
        {{"ref", refs({kRootOutside})}, {"text", strings({"x"})}, {"none", refs({})}});
    Orv::AutoMemory memory;
    for (const auto newRecord :
         {&ValueConversion::newOwnedRecord, &ValueConversion::newBlockRecord}) {
        auto** const array = conversion.toInternal(attributes, memory, newRecord);
        EXPECT_EQ(textOf(readNamed(array)),
                  textOf({{"ref", refs({kRoot})}, {"text", strings({"x"})}, {"none", refs({})}}));
        EXPECT_EQ(array[0]->name, attributes[0]->name);
        EXPECT_EQ(array[1]->value.values, attributes[1]->value.values);
        EXPECT_EQ(array[3], nullptr);
        EXPECT_STREQ(attributes[0]->value.values[0].moRef, kRootOutside);
    }
}

TEST_F(ValueConversionTest, NamedArray_Empty_GivesANewEmptyArray) {
    auto** const attributes = records.named({});
    Orv::AutoMemory memory;
    auto** const array =
        conversion.toInternal(attributes, memory, &ValueConversion::newBlockRecord);
    EXPECT_NE(array, attributes);
    EXPECT_EQ(array[0], nullptr);
}
