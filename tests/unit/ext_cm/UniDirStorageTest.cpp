// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "UniDirStorage.h"

#include "OrvException.h"
#include "Records.h"
#include "Stage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <list>
#include <locale>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

using OrvExtCmRouterService::UniDirStorage;
using Scripted::none;
using Scripted::refs;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Dn = UniDirStorage::Dn;

std::string failureOf(const std::string& dn) {
    try {
        Dn parsed(dn);
    } catch (const Orv::OrvException& exception) {
        EXPECT_EQ(OrvFailure, exception.returnCode());
        return exception.what();
    }
    return "parsed";
}

TEST(UniDirStorageDn, Steps_AreTakenLeftmostFirst) {
    EXPECT_THAT(Dn("A=1,B=2"), ElementsAre(Pair("A", "1"), Pair("B", "2")));
}

TEST(UniDirStorageDn, EmptyText_GivesNoSteps) {
    EXPECT_THAT(Dn(""), IsEmpty());
}

TEST(UniDirStorageDn, FurtherEqualsSigns_StayInTheValue) {
    EXPECT_THAT(Dn("A=b=c"), ElementsAre(Pair("A", "b=c")));
}

TEST(UniDirStorageDn, NamingAttributeInTheClass_IsDropped) {
    EXPECT_THAT(Dn("Foo.bar=1,Unit.a.b=x.y"), ElementsAre(Pair("Foo", "1"), Pair("Unit", "x.y")));
}

TEST(UniDirStorageDn, Text_IsNeitherTrimmedNorUnescaped) {
    EXPECT_THAT(Dn(" a = b\\,C=1"), ElementsAre(Pair(" a ", " b\\"), Pair("C", "1")));
}

TEST(UniDirStorageDn, CommaAtTheEnd_IsNoError) {
    EXPECT_THAT(Dn("A=1,"), ElementsAre(Pair("A", "1")));
}

TEST(UniDirStorageDn, PartWithoutEquals_IsMalformed) {
    EXPECT_EQ("Dn::Dn: got malformed dnPart [B] dn [A=1,B]", failureOf("A=1,B"));
}

TEST(UniDirStorageDn, EmptyPart_IsMalformed) {
    EXPECT_EQ("Dn::Dn: got malformed dnPart [] dn [,A=1]", failureOf(",A=1"));
    EXPECT_EQ("Dn::Dn: got malformed dnPart [] dn [A=1,,B=2]", failureOf("A=1,,B=2"));
}

TEST(UniDirStorageDn, EmptyClassOrValue_ShowsTheStepAlone) {
    EXPECT_EQ("Dn::Dn: got empty type in dn [A=]", failureOf("A="));
    EXPECT_EQ("Dn::Dn: got empty type in dn [=1]", failureOf("=1"));
    EXPECT_EQ("Dn::Dn: got empty type in dn [.x=1]", failureOf(".x=1"));
    EXPECT_EQ("Dn::Dn: got empty type in dn [=2]", failureOf("A=1,=2,C=3"));
}

/// A storage in front of a scripted model in which Foo.peer may refer to one or two Bar.
class UniDirStorageTest : public testing::Test {
protected:
    static constexpr unsigned long tx = 7;

    UniDirStorageTest() {
        stage.model.uniDir("Foo", "peer", "Bar", 1, 2);
        stage.model.moc("Top").contains("Foo").contains("Bar").contains("Baz").contains("Sub");
        stage.model.moc("Foo").contains("Foo");
    }

    unsigned long long mocOf(const std::string& moc) {
        stage.model.moc(moc);
        return stage.model.mocFromDn("Top=1," + moc + "=1").value();
    }

    void set(const std::string& dn, const std::string& attribute, const Scripted::Value& value,
             const std::string& moc = "Foo", unsigned long txHandle = tx) {
        Scripted::Records records;
        storage.setUniDirRef(txHandle, dn, mocOf(moc), attribute,
                             stage.model.firstUniDir(mocOf(moc)).value_or(0),
                             records.container(value));
    }

    std::list<std::string> dns(unsigned long txHandle = tx) {
        std::list<std::string> found;
        storage.getDns(txHandle, found);
        return found;
    }

    bool validate(unsigned long txHandle = tx) {
        return storage.validate(*Scripted::modelRepositoryTable(), *Scripted::threadContextTable(),
                                txHandle);
    }

    Scripted::Stage stage;
    UniDirStorage storage;
};

TEST_F(UniDirStorageTest, SetUniDirRef_ChildThenParent_ListsTheParentFirst) {
    set("A=1,B=2", "peer", refs({"Bar=1"}));
    set("A=1", "peer", refs({"Bar=1"}));
    EXPECT_THAT(dns(), ElementsAre("A=1", "A=1,B=2"));
}

TEST_F(UniDirStorageTest, GetDns_GoesByByteOrder) {
    for (const char* dn : {"B=1", "A=9", "A=10", "A=10,Z=1", "A=10,Y=1", "a=1"}) {
        set(dn, "peer", refs({}));
    }
    EXPECT_THAT(dns(), ElementsAre("A=10", "A=10,Y=1", "A=10,Z=1", "A=9", "B=1", "a=1"));
}

TEST_F(UniDirStorageTest, GetDns_AppendsAndGivesTheNormalForm) {
    set("A.b=1,C=2", "peer", refs({"Bar=1"}));
    std::list<std::string> found{"first"};
    storage.getDns(tx, found);
    EXPECT_THAT(found, ElementsAre("first", "A=1,C=2"));
}

TEST_F(UniDirStorageTest, GetDns_UnknownTransaction_AppendsNothing) {
    EXPECT_THAT(dns(99), IsEmpty());
}

TEST_F(UniDirStorageTest, SetUniDirRef_Twice_KeepsTheSecondOnly) {
    set("Top=1,Foo=2", "peer", refs({"Top=1,Bar=1", "Top=1,Bar=2", "Top=1,Bar=3"}));
    set("Top=1,Foo=2", "peer", refs({"Top=1,Bar=4"}));
    EXPECT_THAT(dns(), ElementsAre("Top=1,Foo=2"));
    EXPECT_TRUE(validate());
    EXPECT_THAT(stage.messages(), IsEmpty());
}

TEST_F(UniDirStorageTest, SetUniDirRef_NoValues_IsARecord) {
    set("Top=1,Foo=2", "peer", none(OrvMoAttributeTypeMoRef_3));
    EXPECT_THAT(dns(), ElementsAre("Top=1,Foo=2"));
}

TEST_F(UniDirStorageTest, SetUniDirRef_MalformedDn_ThrowsAndRecordsNothing) {
    EXPECT_THROW(set("Top", "peer", refs({"Bar=1"})), Orv::OrvException);
    EXPECT_THAT(dns(), IsEmpty());
    EXPECT_TRUE(validate());
}

TEST_F(UniDirStorageTest, GetValues_AppendsCopiesInOrderWithDuplicates) {
    std::list<std::string> found{"first"};
    {
        Scripted::Records records;
        storage.getValues(records.container(refs({"B=2", "B=1", "B=2"})), &found);
        storage.getValues(records.container(none(OrvMoAttributeTypeMoRef_3)), &found);
    }
    EXPECT_THAT(found, ElementsAre("first", "B=2", "B=1", "B=2"));
}

TEST_F(UniDirStorageTest, DeleteMo_TakesTheSubtree) {
    set("A=1", "peer", refs({}));
    set("A=1,B=2", "peer", refs({}));
    set("A=10", "peer", refs({}));
    storage.deleteMo(tx, "A=1");
    EXPECT_THAT(dns(), ElementsAre("A=10"));
}

TEST_F(UniDirStorageTest, DeleteMo_Child_LeavesTheParent) {
    set("A=1", "peer", refs({}));
    set("A=1,B=2", "peer", refs({}));
    storage.deleteMo(tx, "A=1,B=2");
    EXPECT_THAT(dns(), ElementsAre("A=1"));
    set("A=1,B=2", "peer", refs({}));
    EXPECT_THAT(dns(), ElementsAre("A=1", "A=1,B=2"));
}

TEST_F(UniDirStorageTest, DeleteMo_MissAtAnyStep_ChangesNothing) {
    set("A=1,B=2", "peer", refs({}));
    for (const char* dn : {"X=1", "A=2", "A=2,B=2", "A=1,X=2", "A=1,B=3", "A=1,B=2,C=3", ""}) {
        storage.deleteMo(tx, dn);
        EXPECT_THAT(dns(), ElementsAre("A=1,B=2")) << dn;
    }
}

TEST_F(UniDirStorageTest, DeleteMo_MalformedDn_ThrowsWithoutATransactionToo) {
    EXPECT_THROW(storage.deleteMo(99, "A"), Orv::OrvException);
    set("A=1", "peer", refs({}));
    EXPECT_THROW(storage.deleteMo(tx, "A=1,"
                                      "B"),
                 Orv::OrvException);
    EXPECT_THAT(dns(), ElementsAre("A=1"));
}

TEST_F(UniDirStorageTest, Transactions_DoNotSeeEachOther) {
    set("A=1", "peer", refs({}), "Foo", 1);
    set("A=1", "peer", refs({}), "Foo", 2);
    set("A=2", "peer", refs({}), "Foo", 2);
    storage.deleteMo(2, "A=1");
    EXPECT_THAT(dns(1), ElementsAre("A=1"));
    storage.finish(1);
    EXPECT_THAT(dns(1), IsEmpty());
    EXPECT_THAT(dns(2), ElementsAre("A=2"));
    storage.clear();
    EXPECT_THAT(dns(2), IsEmpty());
}

TEST_F(UniDirStorageTest, Finish_Twice_IsHarmless) {
    set("A=1", "peer", refs({}));
    storage.finish(tx);
    storage.finish(tx);
    EXPECT_THAT(dns(), IsEmpty());
}

TEST_F(UniDirStorageTest, Validate_NothingRecorded_IsValid) {
    EXPECT_TRUE(validate());
    set("Top=1,Foo=1", "peer", refs({}));
    storage.deleteMo(tx, "Top=1");
    EXPECT_TRUE(validate());
    EXPECT_THAT(stage.messages(), IsEmpty());
}

TEST_F(UniDirStorageTest, Validate_BoundsAreInclusive) {
    set("Top=1,Foo=1", "peer", refs({"Top=1,Bar=1"}));
    set("Top=1,Foo=2", "peer", refs({"Top=1,Bar=1", "Top=1,Bar=2"}));
    EXPECT_TRUE(validate());
    EXPECT_THAT(stage.messages(), IsEmpty());
}

TEST_F(UniDirStorageTest, Validate_TooMany_NamesCountAndBounds) {
    set("Top=1,Foo=2", "peer", refs({"Top=1,Bar=1", "Top=1,Bar=2", "Top=1,Bar=2"}));
    EXPECT_FALSE(validate());
    EXPECT_THAT(stage.messages(),
                ElementsAre("Attribute peer in Top=1,Foo=2 contains 3 Bar which is not within "
                            "cardinality range (1..2)."));
}

TEST_F(UniDirStorageTest, Validate_NoValues_NamesTheMissingClass) {
    set("Top=1,Foo=2", "peer", none(OrvMoAttributeTypeMoRef_3));
    EXPECT_FALSE(validate());
    EXPECT_THAT(stage.messages(),
                ElementsAre("Attribute peer in Top=1,Foo=2 contains 0 Bar which is not within "
                            "cardinality range (1..2)."));
}

TEST_F(UniDirStorageTest, Validate_ClassNotPermitted_IsNamedBeforeTheMissingOne) {
    set("Top=1,Foo=2", "peer", refs({"Top=1,Baz.id=1"}));
    EXPECT_FALSE(validate());
    EXPECT_THAT(stage.messages(),
                ElementsAre("Baz is not a valid type for attribute peer in Top=1,Foo=2",
                            "Attribute peer in Top=1,Foo=2 contains 0 Bar which is not within "
                            "cardinality range (1..2)."));
}

TEST_F(UniDirStorageTest, Validate_UnknownClass_ShowsTheWholeReferenceAndCountsTheRest) {
    set("Top=1,Foo=2", "peer",
        refs({"Top=1,Nowhere=1", "Top=1,Bar=1", "Top=1,Bar=2", "Top=1,Bar=3"}));
    EXPECT_FALSE(validate());
    EXPECT_THAT(stage.messages(),
                ElementsAre("Top=1,Nowhere=1 is not a valid type for attribute peer in Top=1,Foo=2",
                            "Attribute peer in Top=1,Foo=2 contains 3 Bar which is not within "
                            "cardinality range (1..2)."));
}

TEST_F(UniDirStorageTest, Validate_BoundsOfZero_RefuseOneReference) {
    stage.model.uniDir("Sub", "none", "Bar", 0, 0);
    set("Top=1,Sub=1", "none", refs({"Top=1,Bar=1"}), "Sub");
    EXPECT_FALSE(validate());
    EXPECT_THAT(stage.messages(),
                ElementsAre("Attribute none in Top=1,Sub=1 contains 1 Bar which is not within "
                            "cardinality range (0..0)."));
}

TEST_F(UniDirStorageTest, Validate_NegativeUpperBound_IsNeverExceeded) {
    stage.model.uniDir("Sub", "any", "Bar", 2, -1);
    set("Top=1,Sub=1", "any", refs({"Top=1,Bar=1", "Top=1,Bar=2", "Top=1,Bar=3"}), "Sub");
    EXPECT_TRUE(validate());
    set("Top=1,Sub=1", "any", refs({"Top=1,Bar=1"}), "Sub");
    EXPECT_FALSE(validate());
    EXPECT_THAT(stage.messages(),
                ElementsAre("Attribute any in Top=1,Sub=1 contains 1 Bar which is not within "
                            "cardinality range (2..18446744073709551615)."));
}

/// Writes a dot between every two digits, as a host's locale may.
class GroupingDigits : public std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\2"; }
};

TEST_F(UniDirStorageTest, Validate_LocaleThatGroupsDigits_DoesNotShowInMessages) {
    stage.model.uniDir("Sub", "any", "Bar", 1000, 2000);
    set("Top=1,Sub=1", "any", refs({"Top=1,Bar=1"}), "Sub");
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new GroupingDigits));
    EXPECT_FALSE(validate());
    std::locale::global(before);
    EXPECT_THAT(stage.messages(),
                ElementsAre("Attribute any in Top=1,Sub=1 contains 1 Bar which is not within "
                            "cardinality range (1000..2000)."));
}

TEST_F(UniDirStorageTest, Validate_SeveralPermittedClasses_AreJudgedEachByItself) {
    stage.model.uniDir("Sub", "other", "Foo")
        .uniDir("Sub", "to", "Bar", 1, 1)
        .uniDir("Sub", "to", "Baz", 1, 1)
        .uniDir("Sub", "to", "Foo", 0, 1);
    set("Top=1,Sub=1", "to", refs({"Top=1,Bar=1", "Top=1,Bar=2"}), "Sub");
    EXPECT_FALSE(validate());
    EXPECT_THAT(stage.messages(),
                ElementsAre("Attribute to in Top=1,Sub=1 contains 2 Bar which is not within "
                            "cardinality range (1..1).",
                            "Attribute to in Top=1,Sub=1 contains 0 Baz which is not within "
                            "cardinality range (1..1)."));
}

TEST_F(UniDirStorageTest, Validate_TwoEndsOnOneClass_KeepTheFirstBounds) {
    stage.model.uniDir("Sub", "to", "Bar", 1, 1).uniDir("Sub", "to", "Bar", 5, 9);
    set("Top=1,Sub=1", "to", refs({"Top=1,Bar=1"}), "Sub");
    EXPECT_TRUE(validate());
}

TEST_F(UniDirStorageTest, Validate_TwoAttributes_AreJudgedByName) {
    stage.model.uniDir("Sub", "b", "Bar", 1, 1).uniDir("Sub", "a", "Bar", 1, 1);
    set("Top=1,Sub=1", "b", refs({}), "Sub");
    set("Top=1,Sub=1", "a", refs({}), "Sub");
    EXPECT_FALSE(validate());
    EXPECT_THAT(stage.messages(), ElementsAre(testing::StartsWith("Attribute a in Top=1,Sub=1"),
                                              testing::StartsWith("Attribute b in Top=1,Sub=1")));
}

TEST_F(UniDirStorageTest, Validate_FailingChildAndParent_TellsTheParentFirst) {
    set("Top=1,Foo=1,Foo=2", "peer", refs({}));
    set("Top=1,Foo=1", "peer", refs({}));
    EXPECT_FALSE(validate());
    EXPECT_THAT(stage.messages(),
                ElementsAre(testing::StartsWith("Attribute peer in Top=1,Foo=1 "),
                            testing::StartsWith("Attribute peer in Top=1,Foo=1,Foo=2 ")));
}

TEST_F(UniDirStorageTest, Validate_TwoMosAndAgain_AddsEveryMessageEachTime) {
    set("Top=1,Foo=1", "peer", refs({}));
    set("Top=1,Foo=2", "peer", refs({}));
    set("Top=1,Foo=3", "peer", refs({"Top=1,Bar=1"}));
    EXPECT_FALSE(validate());
    EXPECT_EQ(2U, stage.messages().size());
    EXPECT_FALSE(validate());
    EXPECT_EQ(4U, stage.messages().size());
}

TEST_F(UniDirStorageTest, Validate_RefusedMessage_DoesNotChangeTheVerdict) {
    stage.script.when("ThreadContext.addMessage").fails(-1);
    set("Top=1,Foo=1", "peer", refs({"Top=1,Bar=1"}));
    EXPECT_TRUE(validate());
    set("Top=1,Foo=2", "peer", refs({}));
    EXPECT_FALSE(validate());
}

/// What the model fails with, and what the exception says then.
struct ModelFailure {
    const char* call;
    int nth;
    const char* text;
};

class UniDirStorageModelFailure : public UniDirStorageTest,
                                  public testing::WithParamInterface<ModelFailure> {};

TEST_P(UniDirStorageModelFailure, Validate_CarriesTheCodeAndTheText) {
    set("Top=1,Foo=1", "peer", refs({"Top=1,Bar=1"}));
    stage.script.when(GetParam().call).nth(GetParam().nth).fails(-17);
    try {
        validate();
        FAIL() << "no exception";
    } catch (const Orv::OrvException& exception) {
        EXPECT_STREQ(GetParam().text, exception.what());
        EXPECT_EQ(-17, exception.returnCode());
    }
    EXPECT_THAT(stage.messages(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    EveryCall, UniDirStorageModelFailure,
    testing::Values(
        ModelFailure{"Model.getMocFromDn", 1, "Could not get moc from dn"},
        ModelFailure{"Model.getUniDirEnd", 1, "Could not look up association end"},
        ModelFailure{"Model.getEndStringProperty", 1, "Could not look up string property"},
        ModelFailure{"Model.getEndMoc", 1, "Could not get moc"},
        ModelFailure{"Model.getMocGeneralProperties", 1, "Could not get general properties handle"},
        ModelFailure{"Model.getGeneralStringProperty", 1,
                     "Could not get name from general properties handle"},
        ModelFailure{"Model.getEndIntProperty", 1, "Could not get int property"},
        ModelFailure{"Model.getEndIntProperty", 2, "Could not get int property"},
        ModelFailure{"Model.getNextUniDirAssociation", 1,
                     "Could not get next uni dir association"}));

TEST_F(UniDirStorageTest, Validate_ExceptionOnTheSecondOfThree_KeepsTheFirstMessages) {
    for (const char* dn : {"Top=1,Foo=1", "Top=1,Foo=2", "Top=1,Foo=3"}) {
        set(dn, "peer", refs({}));
    }
    stage.script.when("Model.getUniDirEnd").nth(2).fails(-17);
    EXPECT_THROW(validate(), Orv::OrvException);
    EXPECT_THAT(stage.messages(),
                ElementsAre(testing::StartsWith("Attribute peer in Top=1,Foo=1 ")));
}

TEST_F(UniDirStorageTest, Validate_ReferenceThatTheModelTakesAndTheParserDoesNot_Throws) {
    set("Top=1,Foo=1", "peer", refs({"Bar"}));
    stage.script.when("Model.getMocFromDn")
        .answers<unsigned long long>([](unsigned long long& moc) {
            moc = 1;
            return OrvOk;
        });
    try {
        validate();
        FAIL() << "no exception";
    } catch (const Orv::OrvException& exception) {
        EXPECT_STREQ("Dn::Dn: got malformed dnPart [Bar] dn [Bar]", exception.what());
    }
}

TEST_F(UniDirStorageTest, Validate_OneAttribute_AsksTheModelInThisOrder) {
    set("Top=1,Foo=1", "peer", refs({"Top=1,Bar=1"}));
    stage.script.forgetCalls();
    EXPECT_TRUE(validate());
    std::vector<std::string> names;
    for (const Scripted::Call& call : stage.script.calls()) {
        names.push_back(call.name);
    }
    EXPECT_THAT(names, ElementsAre("Model.getMocFromDn", "Model.getUniDirEnd",
                                   "Model.getEndStringProperty", "Model.getEndMoc",
                                   "Model.getMocGeneralProperties",
                                   "Model.getGeneralStringProperty", "Model.getEndIntProperty",
                                   "Model.getEndIntProperty", "Model.getNextUniDirAssociation"));
}

TEST_F(UniDirStorageTest, GetRefCardinalites_NoReferences_GivesNoCounts) {
    std::map<UniDirStorage::NamedMoc, unsigned long long> counts;
    EXPECT_TRUE(UniDirStorage::UniDir("peer", 0, {})
                    .getRefCardinalites(*Scripted::modelRepositoryTable(),
                                        *Scripted::threadContextTable(), "Top=1,Foo=1", counts));
    EXPECT_THAT(counts, IsEmpty());
    EXPECT_THAT(stage.script.texts(), IsEmpty());
}

TEST_F(UniDirStorageTest, GetRefCardinalites_OneClassSpelledInTwoWays_IsNamedByTheFirst) {
    const unsigned long long bar = mocOf("Bar");
    stage.script.when("Model.getMocFromDn")
        .answers<unsigned long long>([bar](unsigned long long& moc) {
            moc = bar;
            return OrvOk;
        });
    std::map<UniDirStorage::NamedMoc, unsigned long long> counts;
    UniDirStorage::UniDir("peer", 0, {"Top=1,Bat.id=1", "Top=1,Bar=1"})
        .getRefCardinalites(*Scripted::modelRepositoryTable(), *Scripted::threadContextTable(),
                            "Top=1,Foo=1", counts);
    ASSERT_EQ(1U, counts.size());
    EXPECT_EQ("Bat", counts.begin()->first.name);
    EXPECT_EQ(2U, counts.begin()->second);
}

TEST_F(UniDirStorageTest, Validate_ClassWithTheHandleZero_IsAClassLikeAnyOther) {
    set("Top=1,Foo=2", "peer", refs({"Top=1,Bar=1", "Top=1,Odd=1"}));
    stage.script.when("Model.getMocFromDn")
        .on("Odd")
        .answers<unsigned long long>([](unsigned long long& moc) {
            moc = 0;
            return OrvOk;
        });
    EXPECT_FALSE(validate());
    EXPECT_THAT(stage.messages(),
                ElementsAre("Odd is not a valid type for attribute peer in Top=1,Foo=2"));
}

TEST_F(UniDirStorageTest, GetAssocEnds_ComparesNamesExactlyAndNamesTheClass) {
    stage.model.uniDir("Sub", "Peer", "Foo")
        .uniDir("Sub", "peers", "Foo")
        .uniDir("Sub", "peer", "Baz", 2, -1);
    std::set<UniDirStorage::AssocEnd> ends;
    UniDirStorage::UniDir("peer", stage.model.firstUniDir(mocOf("Sub")).value(), {})
        .getAssocEnds(*Scripted::modelRepositoryTable(), ends);
    ASSERT_EQ(1U, ends.size());
    EXPECT_EQ(mocOf("Baz"), ends.begin()->moc);
    EXPECT_EQ("Baz", ends.begin()->name);
    EXPECT_EQ(2U, ends.begin()->min);
    EXPECT_EQ(std::numeric_limits<unsigned long long>::max(), ends.begin()->max);
}

TEST(UniDirStorageOrder, Classes_GoByTheHandleAsAnUnsignedNumber) {
    const UniDirStorage::NamedMoc low{1, "z"};
    const UniDirStorage::NamedMoc high{~0ULL, "a"};
    EXPECT_TRUE(low < high);
    EXPECT_FALSE(high < low);
    EXPECT_FALSE(low < (UniDirStorage::NamedMoc{1, "a"}));
    const UniDirStorage::AssocEnd end(high);
    EXPECT_EQ(0U, end.min);
    EXPECT_EQ(0U, end.max);
    EXPECT_EQ("a", end.name);
}

TEST(UniDirStorageOrder, Records_GoByTheNameAlone) {
    const UniDirStorage::UniDir one("a", 9, {"X=1"});
    const UniDirStorage::UniDir other("b", 1, {});
    EXPECT_TRUE(one < other);
    EXPECT_FALSE(one < UniDirStorage::UniDir("a", 1, {}));
}

TEST(UniDirStorageNodes, FindOrCreate_MakesAnEmptyNodeOnce) {
    UniDirStorage::ValueNode root("");
    EXPECT_EQ(nullptr, root.find("A"));
    UniDirStorage::TypeNode* const type = root.findOrCreate("A");
    EXPECT_EQ("A", type->type);
    EXPECT_EQ(type, root.findOrCreate("A"));
    EXPECT_EQ(type, root.find("A"));
    EXPECT_EQ(nullptr, type->find("1"));
    UniDirStorage::ValueNode* const value = type->findOrCreate("1");
    EXPECT_EQ("1", value->value);
    EXPECT_EQ(0U, value->moc);
    EXPECT_THAT(value->uniDirs, IsEmpty());
    EXPECT_THAT(value->types, IsEmpty());
    EXPECT_EQ(value, type->findOrCreate("1"));
    EXPECT_EQ(value, type->find("1"));
}

TEST(UniDirStorageNodes, GetDns_ContinuesTheDnThatItIsGiven) {
    UniDirStorage::ValueNode root("");
    root.findOrCreate("A")->findOrCreate("1")->uniDirs.emplace("peer", 0, std::list<std::string>());
    std::list<std::string> dns;
    root.find("A")->getDns("Top=1", dns);
    root.find("A")->getDns("", dns);
    EXPECT_THAT(dns, ElementsAre("Top=1,A=1", "A=1"));
}

TEST_F(UniDirStorageTest, GetRefCardinalites_CountsByClass) {
    const UniDirStorage::UniDir record(
        "peer", 0, {"Top=1,Bar.id=1", "Top=1,Baz=1", "Top=1,Bar=2", "Top=1,Bar.id=1"});
    std::map<UniDirStorage::NamedMoc, unsigned long long> counts;
    EXPECT_TRUE(record.getRefCardinalites(*Scripted::modelRepositoryTable(),
                                          *Scripted::threadContextTable(), "Top=1,Foo=1", counts));
    ASSERT_EQ(2U, counts.size());
    EXPECT_EQ(3U, (counts.at({mocOf("Bar"), ""})));
    EXPECT_EQ(1U, (counts.at({mocOf("Baz"), ""})));
}

TEST_F(UniDirStorageTest, LongDnsAndManyNodes_AreListedAndDropped) {
#ifdef ORV_SANITIZED
    constexpr int parents = 100;
#else
    constexpr int parents = 1000;
#endif
    constexpr int children = 1000;
    Scripted::Records records;
    const auto* value = records.container(refs({"Bar=1"}));
    for (int parent = 0; parent < parents; ++parent) {
        for (int child = 0; child < children; ++child) {
            storage.setUniDirRef(tx, "A=" + std::to_string(parent) + ",B=" + std::to_string(child),
                                 1, "peer", 1, value);
        }
    }
    EXPECT_EQ(static_cast<std::size_t>(parents) * children, dns().size());
    std::string longDn = "S=0";
    for (int step = 1; step < 1000; ++step) {
        longDn += ",S=" + std::to_string(step);
    }
    set(longDn, "peer", refs({}), "Foo", 8);
    EXPECT_THAT(dns(8), ElementsAre(longDn));
    storage.finish(tx);
    storage.finish(8);
    EXPECT_THAT(dns(), IsEmpty());
}

TEST_F(UniDirStorageTest, DnOfAThousandSteps_IsJudgedAndNamedInFull) {
    std::string dn = "Foo=0";
    for (int step = 1; step < 1000; ++step) {
        dn += ",Foo=" + std::to_string(step);
    }
    set(dn, "peer", refs({}));
    EXPECT_FALSE(validate());
    EXPECT_THAT(stage.messages(),
                ElementsAre("Attribute peer in " + dn +
                            " contains 0 Bar which is not within cardinality range (1..2)."));
    storage.deleteMo(tx, dn);
    EXPECT_TRUE(validate());
}

}
