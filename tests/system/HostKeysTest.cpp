// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Classes whose keys have other names than <class>Id, in the reference host with the component.

#include "base/DnView.h"
#include "client/Clients.h"
#include "model/building/ModelBuilder.h"
#include "runtime/DataSet.h"
#include "runtime/Host.h"

#include <gmock/gmock.h>

namespace {

using namespace OrvHost;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// The first model of docs/model.md, and routes with two keys.
Model makeModel() {
    return ModelBuilder()
        .add(ClassDraft("Site").topLevel().key("id").attribute(AttributeDraft::text("label")))
        .add(ClassDraft("Mast").key("id").attribute(AttributeDraft::reference("antennas").many()))
        .add(ClassDraft("Antenna").key("id").attribute(AttributeDraft::reference("mast")))
        .add(ClassDraft("Route")
                 .keys({AttributeDraft::text("prefix"), AttributeDraft::text("next")})
                 .attribute(AttributeDraft::reference("masts").many())
                 .attribute(AttributeDraft::integer("cost")))
        .contain("Site", "Mast")
        .contain("Site", "Antenna")
        .contain("Site", "Route")
        .biDir(ReferenceDraft("Mast", "antennas").counts(0, 3),
               ReferenceDraft("Antenna", "mast").counts(1, 1))
        .uniDir(ReferenceDraft("Route", "masts").counts(0, 1), {"Mast"})
        .build();
}

class HostKeysTest : public testing::Test {
protected:
    HostKeysTest() {
        DataSet data(mModel);
        data.add({"Site.id=1", {}, {}});
        data.add({"Site=1,Antenna.id=1", {{"mast", refs({"Site.id=1,Mast.mastId=1"})}}, {}});
        data.add(
            {"Site=1,Mast=1", {{"antennas", refs({"Site=1,Antenna=1"})}, {"id", name("1")}}, {}});
        EXPECT_THAT(data.check().problems, IsEmpty());
        EXPECT_THAT(data.moveInto(mHost.store()), IsEmpty());
        mHost.loadComponent(EXT_CM_PATH);
        mHost.start();
        mClient.emplace(mHost);
    }

    static AttributeValue refs(const std::vector<std::string>& dns) {
        return {ValueKind::MoRef, {dns.begin(), dns.end()}};
    }
    static AttributeValue name(const std::string& text) { return {ValueKind::String, {text}}; }

    unsigned long begin() { return mHost.transactions().begin(); }

    std::vector<std::string> read(unsigned long txHandle, const std::string& dn,
                                  const std::string& attribute) {
        const ClassDef& moc = mModel.classes[*mModel.findClass(DnView(dn).last().className())];
        const AttributeDef& def = *moc.findAttribute(attribute);
        const std::optional<AttributeValue> value =
            toAttributeValue(mClient->get(txHandle, dn, attribute, &moc), def.type.kind);
        std::vector<std::string> texts;
        for (const Value& one : value->values) {
            texts.push_back(toText(one));
        }
        return texts;
    }

    void create(unsigned long txHandle, const std::string& dn,
                const std::vector<NamedValue>& attributes) {
        mClient->create(txHandle, parseNewObject(mModel, dn), attributes);
    }

    /// The messages of a refused validation; none if it is valid.
    std::vector<std::string> validate(unsigned long txHandle) {
        std::vector<std::string> texts;
        const auto verdict = mHost.transactions().validate(txHandle);
        for (const ThreadContext::Message& message : verdict.messages) {
            texts.push_back(message.text);
        }
        EXPECT_EQ(verdict.accepted, texts.empty());
        return texts;
    }

    Model mModel = makeModel();
    Host mHost{mModel};
    std::optional<Client> mClient;
};

TEST_F(HostKeysTest, BackPointer_OfANewObject_HasTheShortForm) {
    const unsigned long txHandle = begin();
    create(txHandle, "Site=1,Antenna=2", {});
    create(txHandle, "Site=1,Mast.id=5", {{"antennas", refs({"Site=1,Antenna=2"})}});
    EXPECT_THAT(read(txHandle, "Site=1,Antenna=2", "mast"), ElementsAre("Site=1,Mast=5"));
    EXPECT_THAT(validate(txHandle), IsEmpty());
}

TEST_F(HostKeysTest, Attributes_OfANewObject_AreJudged) {
    const unsigned long txHandle = begin();
    std::vector<std::string> antennas;
    for (const char* number : {"2", "3", "4", "5"}) {
        antennas.push_back(std::string("Site=1,Antenna=") + number);
        create(txHandle, antennas.back(), {});
    }
    create(txHandle, "Site=1,Mast=5", {{"antennas", refs(antennas)}});
    EXPECT_THAT(validate(txHandle), testing::Contains(HasSubstr("Site=1,Mast=5")));
}

TEST_F(HostKeysTest, Additions_ThatWaitForANewObject_AreMade) {
    const unsigned long txHandle = begin();
    create(txHandle, "Site=1,Mast=5", {{"antennas", refs({"Site=1,Antenna=7"})}});
    create(txHandle, "Site=1,Antenna=7", {});
    EXPECT_THAT(read(txHandle, "Site=1,Antenna=7", "mast"), ElementsAre("Site=1,Mast=5"));
    EXPECT_THAT(validate(txHandle), IsEmpty());
}

TEST_F(HostKeysTest, Delete_TakesTheReferencesAway) {
    const unsigned long txHandle = begin();
    create(txHandle, "Site=1,Antenna=2", {});
    create(txHandle, "Site=1,Mast=5", {{"antennas", refs({"Site=1,Antenna=2"})}});
    mClient->remove(txHandle, "Site=1,Mast=5");
    EXPECT_THAT(read(txHandle, "Site=1,Antenna=2", "mast"), IsEmpty());
    mClient->remove(txHandle, "Site=1,Mast=1");
    EXPECT_THAT(read(txHandle, "Site=1,Antenna=1", "mast"), IsEmpty());
}

TEST_F(HostKeysTest, Client_DnsWithTheKey_NameTheSameObject) {
    const unsigned long txHandle = begin();
    for (const char* dn : {"Site.id=1,Mast.id=1", "Site.siteId=1,Mast=1", "Site=1,Mast.mastId=1"}) {
        EXPECT_TRUE(mClient->exists(txHandle, dn)) << dn;
        EXPECT_THAT(read(txHandle, dn, "antennas"), ElementsAre("Site=1,Antenna=1")) << dn;
        EXPECT_THAT(read(txHandle, dn, "id"), ElementsAre("1")) << dn;
        EXPECT_EQ(mClient->count(txHandle, "Site.id=1", "Mast"), 1U);
    }
    EXPECT_FALSE(mClient->exists(txHandle, "Site=1,Mast.antennas=1"));
}

// The component compares DNs as texts, so it gets them in one form.
TEST_F(HostKeysTest, Client_WritesWithTheKey_AreThoseWithTheShortForm) {
    Clients clients(mHost);
    for (const char* version : {"3", "3_1"}) { // version 1 updates no back-pointers
        clients.choose(version);
        Client& client = clients.chosen();
        const unsigned long txHandle = begin();
        client.create(txHandle, {"Site.id=1", "Mast", "id", "5"},
                      {{"antennas", refs({"Site=1,Antenna.id=2"})}});
        client.create(txHandle, {"Site.siteId=1", "Antenna", "id", "2"}, {});
        EXPECT_THAT(read(txHandle, "Site=1,Antenna=2", "mast"), ElementsAre("Site=1,Mast=5"))
            << version;
        client.set(txHandle, "Site.id=1,Antenna.id=1", {{"mast", refs({"Site.id=1,Mast.id=5"})}});
        EXPECT_THAT(read(txHandle, "Site=1,Mast=5", "antennas"),
                    ElementsAre("Site=1,Antenna=2", "Site=1,Antenna=1"));
        client.remove(txHandle, "Site.id=1,Mast.id=5");
        EXPECT_THAT(read(txHandle, "Site=1,Antenna=1", "mast"), IsEmpty()) << version;
        EXPECT_THAT(read(txHandle, "Site=1,Antenna=2", "mast"), IsEmpty()) << version;
        mHost.transactions().abort(txHandle);
    }
}

TEST_F(HostKeysTest, Client_CreationWithTheKeyAsAValue_IsTheSameInAllVersions) {
    Clients clients(mHost);
    for (const char* version : {"1", "3", "3_1"}) {
        clients.choose(version);
        Client& client = clients.chosen();
        const unsigned long txHandle = begin();
        client.create(txHandle, {"Site=1", "Mast", "id", "5"}, {{"id", name("5")}});
        client.create(txHandle, {"Site=1", "Mast", "mastId", "6"}, {{"mastId", name("6")}});
        client.create(txHandle, {"Site=1", "Route", "routeId", "a|b"},
                      {{"next", name("b")}, {"prefix", name("a")}});
        EXPECT_THAT(read(txHandle, "Site=1,Mast=5", "id"), ElementsAre("5")) << version;
        EXPECT_THAT(read(txHandle, "Site=1,Route=a|b", "next"), ElementsAre("b")) << version;
        EXPECT_THROW(client.create(txHandle, {"Site=1", "Mast", "id", "7"}, {{"id", name("8")}}),
                     OperationError)
            << version;
        mHost.transactions().abort(txHandle);
    }
}

TEST_F(HostKeysTest, SeveralKeys_AreReadOutOfTheName) {
    const unsigned long txHandle = begin();
    const std::string dn = "Site=1,Route=10.0.0.0/8|a%2Cb";
    create(txHandle, dn, {{"prefix", name("10.0.0.0/8")}, {"masts", refs({"Site=1,Mast=1"})}});
    EXPECT_THAT(read(txHandle, dn, "prefix"), ElementsAre("10.0.0.0/8"));
    EXPECT_THAT(read(txHandle, dn, "next"), ElementsAre("a,b"));
    EXPECT_THAT(read(txHandle, dn, "routeId"), ElementsAre("10.0.0.0/8|a%2Cb"));
    EXPECT_THAT(validate(txHandle), IsEmpty());
    ASSERT_TRUE(mHost.transactions().commit(txHandle).accepted);
    const Host::ReadTransaction after(mHost);
    EXPECT_THAT(read(after.handle(), dn, "next"), ElementsAre("a,b"));
}

TEST_F(HostKeysTest, SeveralKeys_WrongNamesAndValues_AreRefusedWithWhatWasExpected) {
    const unsigned long txHandle = begin();
    const auto explanationOf = [&](const std::function<void()>& call) {
        try {
            call();
        } catch (const OperationError& error) {
            return error.messages().empty() ? "" : error.messages().back().text;
        }
        return std::string("accepted");
    };
    EXPECT_THAT(explanationOf([&] { create(txHandle, "Site=1,Route=a", {}); }),
                HasSubstr("expected the 2 key values prefix|next, got 1"));
    EXPECT_THAT(explanationOf([&] {
                    create(txHandle, "Site=1,Route=a|b", {{"next", name("c")}});
                }),
                HasSubstr("'next' of class 'Route' differs from the name 'a|b'"));
    create(txHandle, "Site=1,Route=a|b", {});
    EXPECT_THAT(explanationOf([&] {
                    mClient->set(txHandle, "Site=1,Route=a|b", {{"next", name("c")}});
                }),
                HasSubstr("'next' of class 'Route' names the object and cannot be set"));
}

}
