// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The reference host as a library, with the built component loaded into it.

#include "runtime/Host.h"

#include "client/ClientSession.h"
#include "client/Clients.h"
#include "client/SubtreeReader.h"
#include "model/building/ModelBuilder.h"
#include "runtime/DataSet.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace {

using namespace OrvHost;
using testing::AllOf;
using testing::Each;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Property;
using testing::StartsWith;
using testing::Throws;
using testing::ThrowsMessage;

auto throwsCode(OrvReturnT code) {
    return Throws<OperationError>(Property(&OperationError::code, code));
}

class HostTest : public testing::Test {
protected:
    static Model makeModel() {
        return ModelBuilder()
            .add(ClassDraft("ManagedElement").topLevel().key("managedElementId"))
            .add(ClassDraft("Mast").key("mastId").attribute(AttributeDraft::integer("height")))
            .contain("ManagedElement", "Mast")
            .build();
    }

    static void load(Host& host) {
        DataSet data(host.model());
        data.add({"ManagedElement=1", {}, {}});
        data.add(
            {"ManagedElement=1,Mast=a", {{"height", {ValueKind::Int, {std::int64_t{30}}}}}, {}});
        ASSERT_THAT(data.check().problems, IsEmpty());
        ASSERT_THAT(data.moveInto(host.store()), IsEmpty());
    }

    /// With the component.
    static void startWithData(Host& host) {
        load(host);
        host.loadComponent(EXT_CM_PATH);
        host.start();
    }

    static HostOptions knownAs(const std::string& identity) {
        HostOptions options;
        options.preferredIdentity = identity;
        return options;
    }

    Model mModel = makeModel();
};

TEST_F(HostTest, Start_WithTheComponent_OffersItsFiveInterfaces) {
    Host host(mModel);
    host.loadComponent(EXT_CM_PATH);
    EXPECT_THAT(host.start(), Each(Field(&ComponentReport::state, ComponentState::Started)));
    for (const VekMgmtSpiInterface_1& id :
         {OrvOamSpiManagedObject_1_ExtCmId, OrvOamSpiManagedObject_3_ExtCmId,
          VekOamSpiManagedObject_3_1_ExtCmId, OrvOamSpiTransactionalResource_2_ExtCmId,
          VekMgmtSpiInterface_1{OrvOamSpiExtCmRouterService, "ExtCmInterceptorRepositoryI", "1"}}) {
        EXPECT_NE(host.find<void>(id), nullptr) << id.interfaceName << id.interfaceVersion;
    }
    EXPECT_THAT(host.shutdown(), IsEmpty());
    EXPECT_THROW(Client{host}, NotOfferedError);
}

TEST_F(HostTest, Reads_ThroughTheComponent_SpeakExternalDns) {
    Host host(mModel, knownAs("east"));
    startWithData(host);
    Client client(host);
    const Host::ReadTransaction transaction(host);
    EXPECT_TRUE(client.exists(transaction.handle(), "ManagedElement=east,Mast=a"));
    const ReadValue height =
        client.get(transaction.handle(), "ManagedElement=east,Mast=a", "height", nullptr);
    EXPECT_EQ(toAttributeValue(height, ValueKind::Int),
              (AttributeValue{ValueKind::Int, {std::int64_t{30}}}));
    EXPECT_THAT([&] { client.exists(transaction.handle(), "ManagedElement=1"); },
                throwsCode(OrvNotExist));
}

// A program that catches std::exception has nothing but the text.
TEST_F(HostTest, RefusedCall_Text_SaysWhatWasCalledTheCodeAndTheMessages) {
    Host host(mModel, knownAs("east"));
    startWithData(host);
    Client client(host);
    const Host::ReadTransaction transaction(host);
    const auto set = [&] {
        client.set(transaction.handle(), "ManagedElement=east,Mast=a",
                   {{"height", {ValueKind::String, {std::string("tall")}}}});
    };
    EXPECT_THAT(set, ThrowsMessage<OperationError>(
                         AllOf(StartsWith("setMoAttribute ManagedElement=east,Mast=a height: "
                                          "OrvInvalidArgument (-8)"),
                               HasSubstr("whole number"))));
}

// The router explains each of its refusals, and the component may have asked it twice.
TEST(OperationErrorTest, Text_HasEachMessageOnce) {
    OperationSubject subject;
    subject.operation = "setMoAttributes";
    subject.dn = "Mast=a";
    subject.attributes = {"near"};
    const OperationError error(OrvNotExist, subject,
                               {{ThreadContext::Explanation, "no Mast=b"},
                                {ThreadContext::Explanation, "no Mast=b"},
                                {ThreadContext::Verdict, "refused"}});
    EXPECT_STREQ(error.what(), "setMoAttributes Mast=a near: OrvNotExist (-2); no Mast=b; refused");
}

TEST_F(HostTest, RefusedTransaction_Text_SaysWhichTheCodeAndTheMessages) {
    const Model model = ModelBuilder()
                            .add(ClassDraft("ManagedElement").topLevel().key("managedElementId"))
                            .add(ClassDraft("Mast")
                                     .key("mastId")
                                     .attribute(AttributeDraft::integer("height"))
                                     .attribute(AttributeDraft::reference("near").many()))
                            .contain("ManagedElement", "Mast")
                            .uniDir(ReferenceDraft("Mast", "near").counts(2, 3), {"Mast"})
                            .build();
    Host host(model, knownAs("east"));
    startWithData(host);
    Clients clients(host);
    ClientSession session(host, clients);
    const OpenTransactions::Entry& transaction = session.begin("second");
    const std::string mast = "ManagedElement=east,Mast=a";
    session.client().set(transaction.handle, mast, {{"near", {ValueKind::MoRef, {mast}}}});
    EXPECT_THAT([&] { session.validate(transaction); },
                ThrowsMessage<RefusalError>(
                    AllOf(StartsWith("transaction second: OrvValidationFailed (-9); "),
                          HasSubstr("near in ManagedElement=1,Mast=a"))));
}

TEST_F(HostTest, Children_InSingleSteps_ComeInEachVersion) {
    Host host(mModel, knownAs("east"));
    startWithData(host);
    Clients clients(host);
    for (const std::string& version : Clients::versions()) {
        clients.choose(version);
        const Host::ReadTransaction transaction(host);
        const ChildIterator iterator =
            clients.chosen().openChildren(transaction.handle(), "ManagedElement=east", "Mast");
        EXPECT_EQ(clients.chosen().nextChild(iterator), "a") << version;
        EXPECT_EQ(clients.chosen().nextChild(iterator), std::nullopt) << version;
        EXPECT_NO_THROW(clients.chosen().closeChildren(iterator)) << version;
    }
}

TEST_F(HostTest, Subtree_Read_ComesFromTheTopWithItsValuesAndEnds) {
    Host host(mModel, knownAs("east"));
    startWithData(host);
    Clients clients(host);
    ClientSession session(host, clients);
    std::vector<std::string> steps;
    const Host::ReadTransaction transaction(host);
    SubtreeReader(session, transaction.handle())
        .read(
            "",
            [&](const ObjectState& object) {
                steps.push_back(object.dn + "=" + std::to_string(object.values.size()));
            },
            [&] { steps.emplace_back("end"); });
    EXPECT_THAT(steps, testing::ElementsAre("ManagedElement=east=1", "ManagedElement=east,Mast=a=2",
                                            "end", "end"));
}

TEST_F(HostTest, Subtree_MissingOrCancelled_Throws) {
    Host host(mModel, knownAs("east"));
    startWithData(host);
    Clients clients(host);
    ClientSession session(host, clients);
    const Host::ReadTransaction transaction(host);
    SubtreeReader reader(session, transaction.handle());
    const auto read = [&](const std::string& dn) {
        reader.read(
            dn, [](const ObjectState&) {}, [] {});
    };
    EXPECT_THAT([&] { read("ManagedElement=east,Mast=x"); }, throwsCode(OrvNotExist));
    EXPECT_THAT([&] { read("ManagedElement=west"); }, throwsCode(OrvNotExist));
    session.cancellation().cancel();
    EXPECT_THROW(read(""), CancelledError);
}

TEST_F(HostTest, Iterator_Closed_IsUnknown) {
    Host host(mModel, knownAs("east"));
    startWithData(host);
    Client client(host);
    const Host::ReadTransaction transaction(host);
    const ChildIterator iterator =
        client.openChildren(transaction.handle(), "ManagedElement=east", "Mast");
    client.closeChildren(iterator);
    EXPECT_THAT([&] { client.nextChild(iterator); }, throwsCode(OrvNotActive));
    EXPECT_NO_THROW(client.closeChildren(iterator));
}

TEST_F(HostTest, Iterator_AfterItsTransaction_IsUnknown) {
    Host host(mModel, knownAs("east"));
    startWithData(host);
    Clients clients(host);
    for (const std::string& version : Clients::versions()) {
        clients.choose(version);
        Client& client = clients.chosen();
        ChildIterator iterator;
        {
            const Host::ReadTransaction transaction(host);
            iterator = client.openChildren(transaction.handle(), "", "ManagedElement");
            EXPECT_EQ(client.nextChild(iterator), "east") << version;
        }
        EXPECT_THAT([&] { client.nextChild(iterator); }, throwsCode(OrvNotActive)) << version;
    }
}

// A client writes one side of an association; the component writes the other, in the same
// transaction. A watcher of commits must see both.
TEST_F(HostTest, Watch_CommitWithAnAssociation_ShowsTheBackPointerThatFollowed) {
    const Model model =
        ModelBuilder()
            .add(ClassDraft("ManagedElement").topLevel().key("managedElementId"))
            .add(ClassDraft("Mast").key("mastId").attribute(
                AttributeDraft::reference("antennas").many()))
            .add(
                ClassDraft("Antenna").key("antennaId").attribute(AttributeDraft::reference("mast")))
            .contain("ManagedElement", "Mast")
            .contain("ManagedElement", "Antenna")
            .biDir(ReferenceDraft("Mast", "antennas"), ReferenceDraft("Antenna", "mast"))
            .build();
    Host host(model, knownAs("east"));
    DataSet data(model);
    data.add({"ManagedElement=1", {}, {}});
    data.add({"ManagedElement=1,Mast=m", {}, {}});
    data.add({"ManagedElement=1,Antenna=a", {}, {}});
    ASSERT_THAT(data.moveInto(host.store()), IsEmpty());
    host.loadComponent(EXT_CM_PATH);
    host.start();
    std::vector<ChangeSet> seen;
    const auto subscription =
        host.watch([&](const ChangeSet& changes) { seen.push_back(changes); });

    Client client(host);
    const unsigned long txHandle = host.transactions().begin("alice");
    const AttributeValue mast{ValueKind::MoRef, {std::string("ManagedElement=east,Mast=m")}};
    client.set(txHandle, "ManagedElement=east,Antenna=a", {{"mast", mast}});
    EXPECT_THAT(seen, IsEmpty());
    ASSERT_TRUE(host.transactions().commit(txHandle).accepted);

    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(seen[0].author, "alice");
    ASSERT_EQ(seen[0].objects.size(), 2U);
    const ObjectChange& written = seen[0].objects[0];
    const ObjectChange& followed = seen[0].objects[1];
    EXPECT_EQ(written.dn, "ManagedElement=1,Antenna=a");
    EXPECT_EQ(followed.dn, "ManagedElement=1,Mast=m");
    ASSERT_EQ(followed.attributes.size(), 1U);
    EXPECT_EQ(followed.attributes[0].name, "antennas");
    EXPECT_EQ(followed.attributes[0].before.values, std::vector<Value>{});
    EXPECT_EQ(followed.attributes[0].after.values,
              std::vector<Value>{std::string("ManagedElement=1,Antenna=a")});
}

TEST_F(HostTest, Shutdown_WithTransactionsOpen_EndsThemFirst) {
    Host host(mModel);
    startWithData(host);
    Client client(host);
    client.openChildren(host.transactions().begin(), "ManagedElement=1", "Mast");
    EXPECT_EQ(host.transactions().openCount(), 1u);
    EXPECT_THAT(host.shutdown(), IsEmpty());
    EXPECT_EQ(host.transactions().openCount(), 0u);
    EXPECT_THAT(host.shutdown(), IsEmpty());
}

TEST_F(HostTest, Portals_OnlyVersionOne_ComponentWorksAndItsRecordIsDropped) {
    HostOptions options;
    options.portals = {true, false};
    Host host(mModel, options);
    host.loadComponent(EXT_CM_PATH);
    host.start();
    EXPECT_NO_THROW(Client{host});
    EXPECT_THAT(host.shutdown(), IsEmpty());
    EXPECT_THAT(host.components().components(), IsEmpty());
}

TEST_F(HostTest, Portals_OnlyVersionThree_ComponentRefuses) {
    HostOptions options;
    options.portals = {false, true};
    Host host(mModel, options);
    try {
        host.loadComponent(EXT_CM_PATH);
        FAIL() << "loaded";
    } catch (const ComponentLoadError& failure) {
        EXPECT_EQ(failure.reason(), ComponentLoadError::Reason::InitRefused);
        EXPECT_EQ(failure.code(), OrvFailure);
    }
    EXPECT_THAT(host.loader().loaded(), IsEmpty());
    EXPECT_THAT(host.components().components(), IsEmpty());
}

TEST_F(HostTest, Interceptor_LoadedFirst_IsStartedAfterTheComponentAndStoppedBefore) {
    Host host(mModel);
    host.loadComponent(INTERCEPTOR_PATH);
    host.loadComponent(EXT_CM_PATH);
    const auto reports = host.start();
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports[0].name, "OrvOamSpiExtCmRouterService");
    EXPECT_THAT(reports, Each(Field(&ComponentReport::state, ComponentState::Started)));
    const auto stopped = host.components().stopAll(OrvStateChangeReasonRequested);
    ASSERT_EQ(stopped.size(), 2u);
    EXPECT_EQ(stopped[1].name, "OrvOamSpiExtCmRouterService");
}

TEST_F(HostTest, Interceptor_WithoutTheComponent_IsNotStarted) {
    Host host(mModel);
    host.loadComponent(INTERCEPTOR_PATH);
    const auto reports = host.start();
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_EQ(reports[0].state, ComponentState::Blocked);
    EXPECT_THAT(reports[0].problem, testing::HasSubstr("ExtCmInterceptorRepositoryI"));
}

TEST_F(HostTest, Host_OneAfterTheOther_BothWork) {
    for (const char* identity : {"east", "west"}) {
        Host host(mModel, knownAs(identity));
        startWithData(host);
        Client client(host);
        const Host::ReadTransaction transaction(host);
        EXPECT_TRUE(client.exists(transaction.handle(), std::string("ManagedElement=") + identity));
    }
}

}
