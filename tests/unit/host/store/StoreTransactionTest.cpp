// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SampleStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kA = "Network=1,Node=a";
const std::string kB = "Network=1,Node=b";

class StoreTransactionTest : public testing::Test, protected SampleStore {
protected:
    void expectSetRefused(const std::string& attribute, const AttributeValue& value,
                          OrvReturnT code, const std::string& expected) {
        const AttributeValue before = attribute == "colour" ? value : tx->get(kA, attribute);
        const HostError error = errorOf([&] { tx->set(kA, {{attribute, value}}); });
        EXPECT_EQ(error.code(), code) << error.what();
        EXPECT_THAT(error.what(), HasSubstr(kA));
        EXPECT_THAT(error.what(), HasSubstr(expected));
        if (attribute != "colour") {
            EXPECT_EQ(tx->get(kA, attribute), before);
        }
    }
    void createNode(const std::string& name) { tx->create("Network=1", "Node", "id", name, {}); }
    void renew() {
        tx->commit();
        tx = store.begin(tx->id() + 1);
    }

    std::unique_ptr<StoreTransaction> tx = store.begin(1);
};

TEST_F(StoreTransactionTest, Get_UnsetAttribute_GivesDefaultOrNoValues) {
    EXPECT_EQ(tx->get(kA, "mode"), choice("green"));
    EXPECT_EQ(tx->get(kA, "height"), none(ValueKind::Int));
    EXPECT_EQ(tx->get(kA, "peers"), none(ValueKind::MoRef));
    EXPECT_EQ(tx->get(kA, "id"), text("a"));
}

TEST_F(StoreTransactionTest, Get_WhatIsNotThere_IsNotExist) {
    EXPECT_EQ(codeOf([&] { tx->get("Network=1,Node=z", "label"); }), OrvNotExist);
    EXPECT_EQ(codeOf([&] { tx->get(kA, "colour"); }), OrvNotExist);
    EXPECT_EQ(codeOf([&] {
                  tx->get(kA, std::vector<std::string>{"label", "colour"});
              }),
              OrvNotExist);
    EXPECT_FALSE(tx->exists("Network=1,Node=z"));
    EXPECT_FALSE(tx->exists(""));
    EXPECT_FALSE(tx->exists("nonsense"));
    EXPECT_FALSE(tx->exists("Network=1,,Node=a"));
}

TEST_F(StoreTransactionTest, Set_OwnWrites_AreReadBack) {
    tx->set(kA, {{"label", text("new")}, {"height", integer(-7)}});
    EXPECT_EQ(tx->get(kA, "label"), text("new"));
    EXPECT_EQ(tx->get(kA, "height"), integer(-7));
    EXPECT_EQ(tx->get(kA, "serial"), text("S-1"));
    renew();
    EXPECT_EQ(tx->get(kA, "label"), text("new"));
    EXPECT_EQ(tx->get(kA, "serial"), text("S-1"));
}

TEST_F(StoreTransactionTest, Set_NoValues_UnsetsAndShowsTheDefaultAgain) {
    tx->set(kA, {{"mode", choice("red")}, {"label", none(ValueKind::String)}});
    EXPECT_EQ(tx->get(kA, "mode"), choice("red"));
    EXPECT_EQ(tx->get(kA, "label"), none(ValueKind::String));
    tx->set(kA, {{"mode", none(ValueKind::Enumeration)}});
    EXPECT_EQ(tx->get(kA, "mode"), choice("green"));
}

TEST_F(StoreTransactionTest, Set_WhatTheModelForbids_IsRefusedAndChangesNothing) {
    expectSetRefused("colour", text("x"), OrvNotExist, "has no attribute 'colour'");
    expectSetRefused("id", text("x"), OrvHostNotWritable, "names the object");
    expectSetRefused("serial", text("x"), OrvHostNotWritable, "system only");
    expectSetRefused("height", text("5"), OrvInvalidArgument, "expected a whole number");
    expectSetRefused("height", natural(5), OrvInvalidArgument, "'height' of class 'Node'");
    expectSetRefused("label", refs({kB}), OrvInvalidArgument, "expected a text");
    expectSetRefused("peers", texts({kB}), OrvInvalidArgument, "expected a reference");
    expectSetRefused("mode", choice("pink"), OrvInvalidArgument, "red, green, blue");
    expectSetRefused("port", natural(70000), OrvInvalidArgument, "expected 0..65535");
    expectSetRefused("label", texts({"x", "y"}), OrvInvalidArgument, "2 values, expected 0..1");
    expectSetRefused("tags", texts({"1", "2", "3", "4"}), OrvInvalidArgument,
                     "4 values, expected 0..3");
}

TEST_F(StoreTransactionTest, Set_OneOfManyDoesNotFit_SetsNone) {
    EXPECT_EQ(codeOf([&] {
                  tx->set(kA, {{"label", text("new")}, {"height", text("x")}});
              }),
              OrvInvalidArgument);
    EXPECT_EQ(codeOf([&] {
                  tx->set(kA, {{"label", text("x")}, {"label", text("y")}});
              }),
              OrvInvalidArgument);
    EXPECT_EQ(tx->get(kA, "label"), text("first"));
}

TEST_F(StoreTransactionTest, Set_StructThatDoesNotFit_IsRefused) {
    const AttributeValue latitude{ValueKind::Double, {1.0}};
    const auto position = [](StructValue::Members members) {
        return AttributeValue{ValueKind::Struct, {StructValue{std::move(members)}}};
    };
    expectSetRefused("position", position({}), OrvInvalidArgument, "latitude");
    expectSetRefused("position", position({{"latitude", latitude}, {"colour", latitude}}),
                     OrvInvalidArgument, "colour");
    expectSetRefused("position", position({{"latitude", text("x")}}), OrvInvalidArgument,
                     "latitude");
    expectSetRefused("position", position({{"latitude", latitude}, {"contact", refs({"nobody"})}}),
                     OrvInvalidArgument, "'nobody' is no DN");
    const AttributeValue good = position({{"latitude", latitude}, {"contact", refs({kB})}});
    tx->set(kA, {{"position", good}});
    EXPECT_EQ(tx->get(kA, "position"), good);
}

TEST_F(StoreTransactionTest, Set_References_AreNotCountedNorFollowed) {
    tx->set(kA, {{"peers", refs({kB, kB, "Network=1,Node=none", "Other=1"})}});
    EXPECT_EQ(tx->get(kA, "peers").values.size(), 4U);
    tx->set(kA, {{"peers", none(ValueKind::MoRef)}});
    EXPECT_THAT(tx->check(), IsEmpty());
    expectSetRefused("peers", refs({"nobody"}), OrvInvalidArgument,
                     "'nobody' is no DN, expected steps Class=value with commas between; its step "
                     "'nobody' has no '='");
    expectSetRefused("peers", refs({""}), OrvInvalidArgument, "is no DN");
}

TEST_F(StoreTransactionTest, Create_Child_IsThereWithItsAttributes) {
    tx->create("Network=1", "Node", "id", "c", {{"label", text("third")}, {"id", text("c")}});
    EXPECT_TRUE(tx->exists("Network=1,Node=c"));
    EXPECT_EQ(tx->get("Network=1,Node=c", "label"), text("third"));
    EXPECT_EQ(tx->get("Network=1,Node=c", "mode"), choice("green"));
    EXPECT_FALSE(store.begin(9)->exists("Network=1,Node=c"));
    renew();
    EXPECT_EQ(tx->get("Network=1,Node=c", "label"), text("third"));
    EXPECT_EQ(tx->get("Network=1,Node=c", "id"), text("c"));
}

TEST_F(StoreTransactionTest, Create_ThenWriteReadAndRemove_ReadsWhatIsThereNow) {
    const std::string created = "Network=1,Node=c";
    EXPECT_FALSE(tx->exists(created));
    createNode("c");
    EXPECT_EQ(tx->get(created, "label"), none(ValueKind::String));
    tx->set(created, {{"label", text("a text that is too long to stand in the object itself")}});
    EXPECT_EQ(tx->get(created, "label"),
              text("a text that is too long to stand in the object itself"));
    tx->set(created, {{"label", text("short")}, {"height", integer(5)}});
    EXPECT_EQ(tx->get(created, "label"), text("short"));
    tx->remove(created);
    EXPECT_FALSE(tx->exists(created));
    createNode("c");
    EXPECT_EQ(tx->get(created, "height"), none(ValueKind::Int));
    renew();
    EXPECT_EQ(tx->get(created, "label"), none(ValueKind::String));
}

TEST_F(StoreTransactionTest, Commit_ManyChangedObjects_HasAllOfThem) {
    constexpr int kMany = 100;
    const auto dnOf = [](int number) { return "Network=1,Node=n" + std::to_string(number); };
    for (int number = 0; number < kMany; ++number) {
        createNode("n" + std::to_string(number));
    }
    renew();
    for (int number = 0; number < kMany; ++number) {
        tx->set(dnOf(number), {{"height", integer(number)}});
    }
    EXPECT_EQ(tx->changes().objects.size(), std::size_t{kMany});
    EXPECT_TRUE(tx->check().empty());
    renew();
    for (int number = 0; number < kMany; ++number) {
        EXPECT_EQ(tx->get(dnOf(number), "height"), integer(number)) << number;
    }
}

TEST_F(StoreTransactionTest, Create_UnderAnObjectOfTheSameTransaction_IsCommittedBelowIt) {
    createNode("c");
    tx->create("Network=1,Node=c", "Rack", "id", "r", {});
    tx->create("Network=1,Node=c,Rack=r", "Fan", "id", "f", {});
    tx->create("", "Network", "id", "2", {});
    tx->create("Network=2", "Node", "id", "a", {});
    renew();
    EXPECT_TRUE(tx->exists("Network=1,Node=c,Rack=r,Fan=f"));
    EXPECT_TRUE(tx->exists("Network=2,Node=a"));
    EXPECT_THAT(namesOf(*tx, "", "Network"), ElementsAre("1", "2"));
    EXPECT_EQ(tx->count("Network=1,Node=c,Rack=r", "Fan"), 1U);
}

TEST_F(StoreTransactionTest, Create_WhatTheModelForbids_IsRefused) {
    const auto code = [&](const std::string& parent, const std::string& moc,
                          const std::string& naming, const std::string& name,
                          const std::vector<NamedValue>& values) {
        return codeOf([&] { tx->create(parent, moc, naming, name, values); });
    };
    EXPECT_EQ(code("Network=9", "Node", "id", "c", {}), OrvNotExist);
    EXPECT_EQ(code("Network=1", "Tree", "id", "c", {}), OrvNotExist);
    EXPECT_EQ(code("Network=1", "Card", "slot", "1", {}), OrvHostNotContained);
    EXPECT_EQ(code("", "Node", "id", "c", {}), OrvHostNotContained);
    EXPECT_EQ(code("Network=1", "Node", "name", "c", {}), OrvInvalidArgument);
    EXPECT_EQ(code("Network=1", "Node", "id", "", {}), OrvInvalidArgument);
    EXPECT_EQ(code("Network=1", "Node", "id", "a,b", {}), OrvInvalidArgument);
    EXPECT_EQ(code("Network=1", "Node", "id", "a", {}), OrvAlreadyExist);
    EXPECT_EQ(code(kA, "Card", "slot", "-1", {}), OrvInvalidArgument);
    EXPECT_EQ(code(kA, "Card", "slot", "01", {}), OrvInvalidArgument);
    EXPECT_EQ(code("Network=1", "Node", "id", "c", {{"serial", text("x")}}), OrvHostNotWritable);
    EXPECT_EQ(code("Network=1", "Node", "id", "c", {{"height", text("x")}}), OrvInvalidArgument);
    EXPECT_THAT(namesOf(*tx, "Network=1", "Node"), ElementsAre("a", "b"));
    createNode("c");
    EXPECT_EQ(code("Network=1", "Node", "id", "c", {}), OrvAlreadyExist);
}

TEST_F(StoreTransactionTest, Check_MandatoryAttributes_AreAskedForOnceTheObjectIsComplete) {
    tx->create(kA, "Card", "slot", "1", {});
    EXPECT_THAT(tx->check(),
                ElementsAre(HasSubstr("mandatory attribute 'kind'"), HasSubstr("'home'")));
    tx->set(kA + ",Card=1", {{"kind", text("cpu")}, {"home", refs({kA})}});
    EXPECT_THAT(tx->check(), IsEmpty());
    EXPECT_EQ(codeOf([&] {
                  tx->set(kA + ",Card=1", {{"kind", none(ValueKind::String)}});
              }),
              OrvInvalidArgument);
}

TEST_F(StoreTransactionTest, Check_NumberOfChildren_IsHeldAgainstItsBounds) {
    tx->create(kA, "Rack", "id", "r", {});
    const std::string rack = kA + ",Rack=r";
    EXPECT_THAT(tx->check(), ElementsAre("there are 0 objects of class 'Fan' under " + rack +
                                         ", expected 1..2"));
    tx->create(rack, "Fan", "id", "1", {});
    tx->create(rack, "Fan", "id", "2", {});
    renew();
    tx->create(rack, "Fan", "id", "3", {});
    EXPECT_THAT(tx->check(), ElementsAre(HasSubstr("there are 3 objects of class 'Fan'")));
    tx->remove(rack + ",Fan=1");
    EXPECT_THAT(tx->check(), IsEmpty());
    tx->remove(rack + ",Fan=2");
    tx->remove(rack + ",Fan=3");
    EXPECT_THAT(tx->check(), ElementsAre(HasSubstr("there are 0 objects of class 'Fan'")));
    tx->remove(rack);
    EXPECT_THAT(tx->check(), IsEmpty());
}

TEST_F(StoreTransactionTest, Remove_Subtree_TakesCommittedAndCreatedObjects) {
    tx->create(kA, "Rack", "id", "old", {});
    tx->create(kA + ",Rack=old", "Fan", "id", "1", {});
    renew();
    tx->create(kA, "Rack", "id", "new", {});
    tx->create(kA + ",Rack=new", "Fan", "id", "1", {});
    tx->create(kA + ",Rack=old", "Fan", "id", "2", {});
    tx->remove(kA);
    for (const char* below :
         {"", ",Rack=old", ",Rack=old,Fan=1", ",Rack=old,Fan=2", ",Rack=new", ",Rack=new,Fan=1"}) {
        EXPECT_FALSE(tx->exists(kA + below)) << below;
    }
    EXPECT_EQ(codeOf([&] { tx->remove(kA); }), OrvNotExist);
    EXPECT_EQ(tx->count("Network=1", "Node"), 1U);
    renew();
    EXPECT_FALSE(tx->exists(kA + ",Rack=old,Fan=1"));
    EXPECT_EQ(store.size(), 2U);
}

TEST_F(StoreTransactionTest, Remove_ThenCreateAgain_IsANewObject) {
    tx->set(kA, {{"height", integer(5)}});
    tx->remove(kA);
    createNode("a");
    EXPECT_EQ(tx->get(kA, "label"), none(ValueKind::String));
    tx->set(kA, {{"label", text("again")}});
    EXPECT_THAT(namesOf(*tx, "Network=1", "Node"), ElementsAre("b", "a"));
    auto older = store.begin(7);
    renew();
    EXPECT_EQ(tx->get(kA, "label"), text("again"));
    EXPECT_EQ(tx->get(kA, "serial"), none(ValueKind::String));
    EXPECT_THAT(namesOf(*tx, "Network=1", "Node"), ElementsAre("b", "a"));
    EXPECT_EQ(older->get(kA, "label"), text("first"));
    EXPECT_THAT(namesOf(*older, "Network=1", "Node"), ElementsAre("a", "b"));
    EXPECT_EQ(store.size(), 3U);
}

TEST_F(StoreTransactionTest, Rollback_LeavesNoTrace) {
    const std::size_t before = store.memory().total();
    tx->set(kA, {{"label", text("x")}});
    createNode("c");
    tx->remove(kB);
    tx->rollback();
    EXPECT_EQ(codeOf([&] { tx->exists(kA); }), OrvNotActive);
    EXPECT_EQ(codeOf([&] { tx->commit(); }), OrvNotActive);
    tx = store.begin(2);
    EXPECT_EQ(tx->get(kA, "label"), text("first"));
    EXPECT_FALSE(tx->exists("Network=1,Node=c"));
    EXPECT_TRUE(tx->exists(kB));
    EXPECT_EQ(store.memory().total(), before);
}

TEST_F(StoreTransactionTest, Snapshot_CommitsOfOthers_AreNotSeen) {
    auto other = store.begin(2);
    other->set(kA, {{"label", text("changed")}});
    other->remove(kB);
    other->create("Network=1", "Node", "id", "c", {});
    EXPECT_EQ(tx->get(kA, "label"), text("first"));
    other->commit();
    EXPECT_EQ(tx->get(kA, "label"), text("first"));
    EXPECT_TRUE(tx->exists(kB));
    EXPECT_FALSE(tx->exists("Network=1,Node=c"));
    EXPECT_THAT(namesOf(*tx, "Network=1", "Node"), ElementsAre("a", "b"));
    EXPECT_EQ(tx->count("Network=1", "Node"), 2U);
    const auto later = store.begin(3);
    EXPECT_THAT(namesOf(*later, "Network=1", "Node"), ElementsAre("a", "c"));
    EXPECT_EQ(later->get(kA, "label"), text("changed"));
}

TEST_F(StoreTransactionTest, Next_WhileTheTransactionWrites_GivesEachLivingChildOnce) {
    createNode("c");
    createNode("d");
    ChildCursor cursor = tx->children("Network=1", "Node");
    std::string name;
    ASSERT_TRUE(tx->next(cursor, name));
    EXPECT_EQ(name, "a");
    tx->remove(kA);                 // already passed by the walk
    tx->remove(kB);                 // not yet reached, committed
    tx->remove("Network=1,Node=c"); // not yet reached, created here
    createNode("e");
    createNode("a"); // created again as a new object
    std::vector<std::string> rest;
    while (tx->next(cursor, name)) {
        rest.push_back(name);
    }
    EXPECT_THAT(rest, ElementsAre("d", "e", "a"));
    EXPECT_FALSE(tx->next(cursor, name));
    createNode("f");
    EXPECT_TRUE(tx->next(cursor, name));
    EXPECT_EQ(name, "f");
}

TEST_F(StoreTransactionTest, Next_ParentDeletedMeanwhile_Ends) {
    ChildCursor cursor = tx->children("Network=1", "Node");
    tx->remove("Network=1");
    std::string name;
    EXPECT_FALSE(tx->next(cursor, name));
}

TEST_F(StoreTransactionTest, Children_OfWhatIsNotThere_IsRefused) {
    EXPECT_EQ(codeOf([&] { tx->children("Network=9", "Node"); }), OrvNotExist);
    EXPECT_EQ(codeOf([&] { tx->children("Network=1", "Tree"); }), OrvNotExist);
    EXPECT_EQ(codeOf([&] { tx->children("Network=1", "Card"); }), OrvHostNotContained);
    EXPECT_EQ(codeOf([&] { tx->count("Network=9", "Node"); }), OrvNotExist);
    EXPECT_EQ(codeOf([&] { tx->count("", "Node"); }), OrvHostNotContained);
    EXPECT_EQ(tx->count("", "Network"), 1U);
}

TEST_F(StoreTransactionTest, Stored_GivesWhatWasSet_InTheOrderOfTheModel) {
    tx->set(kA, {{"mode", choice("red")}, {"height", integer(3)}});
    EXPECT_THAT(tx->stored(kA),
                ElementsAre(NamedValue("label", text("first")), NamedValue("height", integer(3)),
                            NamedValue("mode", choice("red")), NamedValue("serial", text("S-1"))));
}

}
}
