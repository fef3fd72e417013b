// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What the loaded component keeps of each transaction, counted beside it. That the count agrees
// with the memory of the process, the soak test shows.

#include "runtime/WorkListGauge.h"

#include "client/Clients.h"
#include "model/building/ModelBuilder.h"
#include "runtime/DataSet.h"

#include <gmock/gmock.h>

namespace {

using namespace OrvHost;
using testing::IsEmpty;

std::int64_t itself(std::size_t bytes) {
    return static_cast<std::int64_t>(bytes);
}

AttributeValue reference(std::string dn) {
    return {ValueKind::MoRef, {std::move(dn)}};
}

class WorkListGaugeTest : public testing::Test {
protected:
    static Model makeModel() {
        return ModelBuilder()
            .add(ClassDraft("ManagedElement").topLevel().key("managedElementId"))
            .add(ClassDraft("Mast")
                     .key("mastId")
                     .attribute(AttributeDraft::text("label"))
                     .attribute(AttributeDraft::reference("aerial")))
            .add(ClassDraft("Aerial")
                     .key("aerialId")
                     .attribute(AttributeDraft::reference("mast"))
                     .attribute(AttributeDraft::reference("beside", {"Mast"})))
            .add(ClassDraft("Watcher")
                     .key("watcherId")
                     .attribute(AttributeDraft::reference("watched", {"Mast"})))
            .contain("ManagedElement", "Mast")
            .contain("ManagedElement", "Aerial")
            .contain("ManagedElement", "Watcher")
            .biDir(ReferenceDraft("Mast", "aerial"), ReferenceDraft("Aerial", "mast"))
            .build();
    }

    void SetUp() override {
        DataSet data(mModel);
        data.add({"ManagedElement=1", {}, {}});
        data.add({"ManagedElement=1,Mast=a", {}, {}});
        data.add({"ManagedElement=1,Aerial=a", {}, {}});
        data.add({"ManagedElement=1,Watcher=a", {}, {}});
        ASSERT_THAT(data.check().problems, IsEmpty());
        ASSERT_THAT(data.moveInto(mHost.store()), IsEmpty());
        mHost.loadComponent(EXT_CM_PATH);
        mHost.start();
        mClients.emplace(mHost);
        mTx = mHost.transactions().begin();
    }

    // The end of an open transaction is counted, too.
    void TearDown() override { mHost.shutdown(); }

    Client& client() { return mClients->version3(); }
    std::uint64_t entries() const { return mGauge.size().entries; }

    void commit() {
        const TransactionOutcome outcome = mHost.transactions().commit(mTx);
        ASSERT_TRUE(outcome.accepted) << outcome.reason;
        mTx = mHost.transactions().begin();
    }

    Model mModel = makeModel();
    Host mHost{mModel};
    WorkListGauge mGauge{mHost, &itself};
    std::optional<Clients> mClients;
    unsigned long mTx = 0;
    const std::string mMast = "ManagedElement=1,Mast=a";
    const std::string mAerial = "ManagedElement=1,Aerial=a";
};

TEST_F(WorkListGaugeTest, Size_ReferenceWritten_CountsItAndItsBackPointerAtTheEnd) {
    client().set(mTx, mMast, {{"aerial", reference(mAerial)}});
    EXPECT_EQ(entries(), 0U);
    commit();
    EXPECT_EQ(entries(), 2U);
    // A node for the transaction, one for each entry, and the DNs, too long for their string.
    EXPECT_EQ(mGauge.size().bytes, 88 + 2 * 96 + 24 + 26);
}

TEST_F(WorkListGaugeTest, Size_TheSameAgain_CountsOnceInEachTransaction) {
    client().set(mTx, mMast, {{"aerial", reference(mAerial)}});
    client().set(mTx, mMast, {{"aerial", reference(mAerial)}});
    commit();
    EXPECT_EQ(entries(), 2U);
    client().set(mTx, mMast, {{"aerial", reference(mAerial)}});
    commit();
    EXPECT_GT(entries(), 2U);
}

TEST_F(WorkListGaugeTest, Size_TransactionAborted_CountsAllTheSame) {
    client().set(mTx, mMast, {{"aerial", reference(mAerial)}});
    mHost.transactions().abort(mTx);
    EXPECT_EQ(entries(), 2U);
}

TEST_F(WorkListGaugeTest, Size_OtherAttributes_CountIfTheyAreReferencesOfClassesWithAssociations) {
    client().set(mTx, mMast, {{"label", {ValueKind::String, {std::string("tall")}}}});
    client().set(mTx, "ManagedElement=1,Watcher=a", {{"watched", reference(mMast)}});
    commit();
    EXPECT_EQ(entries(), 0U);
    EXPECT_EQ(mGauge.size().bytes, 0);
    client().set(mTx, mAerial, {{"beside", reference(mMast)}});
    commit();
    EXPECT_EQ(entries(), 1U);
}

TEST_F(WorkListGaugeTest, Size_CreatedAndSetSeveral_CountTheirReferences) {
    client().create(mTx, parseNewObject(mModel, "ManagedElement=1,Mast=b"),
                    {{"aerial", reference(mAerial)}});
    commit();
    EXPECT_EQ(entries(), 2U);
    mClients->version3_1().set(mTx, "ManagedElement=1,Mast=b",
                               {{"label", {ValueKind::String, {std::string("tall")}}},
                                {"aerial", {ValueKind::MoRef, {}}}});
    commit();
    EXPECT_EQ(entries(), 4U);
}

TEST_F(WorkListGaugeTest, SecondOne_IsRefused) {
    EXPECT_THROW(WorkListGauge another(mHost), std::logic_error);
}

}
