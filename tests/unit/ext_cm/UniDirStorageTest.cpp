// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "UniDirStorage.h"

#include "OrvException.h"
#include "Records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <list>
#include <string>

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

/// The storage knows no model: handles are taken as they come.
class UniDirStorageTest : public testing::Test {
protected:
    static constexpr unsigned long tx = 7;

    void set(const std::string& dn, unsigned long txHandle = tx) {
        Scripted::Records records;
        storage.setUniDirRef(txHandle, dn, 1, "peer", 2, records.container(refs({"Bar=1"})));
    }

    std::list<std::string> dns(unsigned long txHandle = tx) {
        std::list<std::string> found;
        storage.getDns(txHandle, found);
        return found;
    }

    UniDirStorage storage;
};

TEST_F(UniDirStorageTest, SetUniDirRef_ChildThenParent_ListsTheParentFirst) {
    set("A=1,B=2");
    set("A=1");
    EXPECT_THAT(dns(), ElementsAre("A=1", "A=1,B=2"));
}

TEST_F(UniDirStorageTest, GetDns_GoesByByteOrder) {
    for (const char* dn : {"B=1", "A=9", "A=10", "A=10,Z=1", "A=10,Y=1", "a=1"}) {
        set(dn);
    }
    EXPECT_THAT(dns(), ElementsAre("A=10", "A=10,Y=1", "A=10,Z=1", "A=9", "B=1", "a=1"));
}

TEST_F(UniDirStorageTest, GetDns_AppendsAndGivesTheNormalForm) {
    set("A.b=1,C=2");
    std::list<std::string> found{"first"};
    storage.getDns(tx, found);
    EXPECT_THAT(found, ElementsAre("first", "A=1,C=2"));
}

TEST_F(UniDirStorageTest, GetDns_UnknownTransaction_AppendsNothing) {
    EXPECT_THAT(dns(99), IsEmpty());
}

TEST_F(UniDirStorageTest, SetUniDirRef_NoValues_IsARecord) {
    Scripted::Records records;
    storage.setUniDirRef(tx, "Top=1,Foo=2", 1, "peer", 2,
                         records.container(none(OrvMoAttributeTypeMoRef_3)));
    EXPECT_THAT(dns(), ElementsAre("Top=1,Foo=2"));
}

// Without a step there is no object that it could be the record of.
TEST_F(UniDirStorageTest, SetUniDirRef_EmptyDn_IsNotListed) {
    set("");
    EXPECT_THAT(dns(), IsEmpty());
}

TEST_F(UniDirStorageTest, SetUniDirRef_SmallestAndLargestHandle_AreHandlesLikeAnyOther) {
    for (const unsigned long each : {0UL, std::numeric_limits<unsigned long>::max()}) {
        set("Foo=1", each);
        EXPECT_THAT(dns(each), ElementsAre("Foo=1"));
        storage.finish(each);
        EXPECT_THAT(dns(each), IsEmpty());
    }
}

TEST_F(UniDirStorageTest, SetUniDirRef_MalformedDn_ThrowsAndRecordsNothing) {
    EXPECT_THROW(set("Top"), Orv::OrvException);
    EXPECT_THAT(dns(), IsEmpty());
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
    set("A=1");
    set("A=1,B=2");
    set("A=10");
    storage.deleteMo(tx, "A=1");
    EXPECT_THAT(dns(), ElementsAre("A=10"));
}

TEST_F(UniDirStorageTest, DeleteMo_Child_LeavesTheParent) {
    set("A=1");
    set("A=1,B=2");
    storage.deleteMo(tx, "A=1,B=2");
    EXPECT_THAT(dns(), ElementsAre("A=1"));
    set("A=1,B=2");
    EXPECT_THAT(dns(), ElementsAre("A=1", "A=1,B=2"));
}

TEST_F(UniDirStorageTest, DeleteMo_MissAtAnyStep_ChangesNothing) {
    set("A=1,B=2");
    for (const char* dn : {"X=1", "A=2", "A=2,B=2", "A=1,X=2", "A=1,B=3", "A=1,B=2,C=3", ""}) {
        storage.deleteMo(tx, dn);
        EXPECT_THAT(dns(), ElementsAre("A=1,B=2")) << dn;
    }
}

// A step is missed where the parent has a child of the last step's name.
TEST_F(UniDirStorageTest, DeleteMo_MissAtAnEarlierStep_DoesNotTakeANamesake) {
    set("Foo=1");
    storage.deleteMo(tx, "Foo=2,Foo=1");
    storage.deleteMo(tx, "Foo=2,Bar=1");
    EXPECT_THAT(dns(), ElementsAre("Foo=1"));
}

TEST_F(UniDirStorageTest, DeleteMo_MalformedDn_ThrowsWithoutATransactionToo) {
    EXPECT_THROW(storage.deleteMo(99, "A"), Orv::OrvException);
    set("A=1");
    EXPECT_THROW(storage.deleteMo(tx, "A=1,"
                                      "B"),
                 Orv::OrvException);
    EXPECT_THAT(dns(), ElementsAre("A=1"));
}

// Where nothing is stored the DN is judged in another way, which must come to the same.
TEST_F(UniDirStorageTest, DeleteMo_NothingStored_ThrowsForTheSameDns) {
    const std::string dns[] = {"",
                               ",",
                               "=",
                               ".",
                               "A",
                               "A=",
                               "=1",
                               "A=1",
                               "A=1,",
                               "A=1,,",
                               ",A=1",
                               "A=1,B",
                               "A=1,B=",
                               "A=1,=2",
                               "A=1,.b=2",
                               ".a=1",
                               "A.b=1",
                               "A.=1",
                               "A=b=c",
                               "A==",
                               "A=1,B=2",
                               "A=1,B=2,C",
                               "LongName=1,Another.name=22",
                               "LongName,Another=2",
                               "Abcd=1",
                               "Abcde=1",
                               "A;b=:<,C>d=@",
                               "\xc3\x84=\xc3\xb6,B=\xff",
                               std::string("A\0=1", 4),
                               std::string("A=\0,B", 5),
                               std::string("A=1\0", 4),
                               std::string("A=1\0,B", 6)};
    for (const std::string& dn : dns) {
        std::string failure = "parsed";
        try {
            storage.deleteMo(99, dn);
        } catch (const Orv::OrvException& exception) {
            failure = exception.what();
        }
        EXPECT_EQ(failure, failureOf(dn)) << dn;
    }
}

TEST_F(UniDirStorageTest, Transactions_DoNotSeeEachOther) {
    set("A=1", 1);
    set("A=1", 2);
    set("A=2", 2);
    storage.deleteMo(2, "A=1");
    EXPECT_THAT(dns(1), ElementsAre("A=1"));
    storage.finish(1);
    EXPECT_THAT(dns(1), IsEmpty());
    EXPECT_THAT(dns(2), ElementsAre("A=2"));
    storage.clear();
    EXPECT_THAT(dns(2), IsEmpty());
}

TEST_F(UniDirStorageTest, Finish_Twice_IsHarmless) {
    set("A=1");
    storage.finish(tx);
    storage.finish(tx);
    EXPECT_THAT(dns(), IsEmpty());
    storage.clear();
    storage.clear();
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

TEST_F(UniDirStorageTest, LongDnsAndManyNodes_AreListedAndDropped) {
#ifdef ORV_SANITIZED
    constexpr int parents = 100;
#else
    constexpr int parents = 200;
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
    set(longDn, 8);
    EXPECT_THAT(dns(8), ElementsAre(longDn));
    storage.finish(tx);
    storage.finish(8);
    EXPECT_THAT(dns(), IsEmpty());
}

}
