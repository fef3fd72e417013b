// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"

#include "LoggingWrapper.h"

#include <chrono>

// Sizes at which a step that is quadratic would not come to an end. The bound is generous: it tells
// minutes from seconds, also in an instrumented build.

namespace BiDirTests {
namespace {

constexpr std::chrono::seconds patience{60};

// A router where every MO is there and every attribute empty, and a model of one class with one
// association with itself, whose attribute of interest is named "ys".

int plainReads = 0;
using Handle = unsigned long long;

OrvOamSpiManagedObject_3* plainRouter() {
    static OrvOamSpiManagedObject_3 table = {};
    table.existsMo = [](unsigned long, const char*, bool* exists) {
        *exists = true;
        return OrvOk;
    };
    table.getMoAttribute = [](unsigned long, const char*, const char*,
                              OrvMoAttributeValueResult_3* result) {
        static OrvMoAttributeValueContainer_3 empty = {OrvMoAttributeTypeMoRef_3, 0, nullptr};
        ++plainReads;
        *result = {nullptr, &empty};
        return OrvOk;
    };
    return &table;
}

OrvReturnT theOnly(Handle /*of*/, Handle* found) {
    *found = 1;
    return OrvOk;
}

OrvReturnT theName(Handle /*of*/, int /*identifier*/, const char** text) {
    *text = "ys";
    return OrvOk;
}

OrvReturnT theBound(Handle /*of*/, int /*identifier*/, long long* bound) {
    *bound = 0;
    return OrvOk;
}

VekOamSpiModelRepository_4* plainRepository() {
    static VekOamSpiMrDnLookup_4 dnLookup = {};
    static VekOamSpiMrGeneralProperties_4 generalProperties = {&theName};
    static VekOamSpiMrMocQueries_4 mocQueries = {};
    static VekOamSpiMrAssociationEnd_4 associationEnd = {};
    static VekOamSpiMrBiDirAssociation_4 biDirAssociation = {};
    static VekOamSpiMrAttributeType_4 attributeType = {};
    static VekOamSpiMrAttribute_4 attribute = {&theOnly, &theOnly, &theOnly, nullptr};
    static VekOamSpiMrReferenceType_4 referenceType = {&theOnly};
    static VekOamSpiModelRepository_4 repository = {};
    dnLookup.getMocFromDn = [](const char*, int, Handle* moc) { return theOnly(0, moc); };
    mocQueries.getMocGeneralProperties = &theOnly;
    mocQueries.getFirstAttribute = &theOnly;
    mocQueries.getFirstBiDirAssociation = &theOnly;
    associationEnd.getEndMoc = &theOnly;
    associationEnd.getEndAttribute = &theOnly;
    associationEnd.getEndGeneralProperties = &theOnly;
    associationEnd.getEndStringProperty = &theName;
    associationEnd.getEndIntProperty = &theBound;
    biDirAssociation.getFirstEnd = &theOnly;
    biDirAssociation.getSecondEnd = &theOnly;
    biDirAssociation.getNextBiDirAssociation = [](Handle, Handle, Handle*) { return OrvNotExist; };
    attributeType.getTypeCode = [](Handle, int* code) {
        *code = VekOamSpiMrTypeMoRef_4;
        return OrvOk;
    };
    attributeType.getTypeIntProperty = &theBound;
    repository.dnLookup = &dnLookup;
    repository.generalProperties = &generalProperties;
    repository.mocQueries = &mocQueries;
    repository.associationEnd = &associationEnd;
    repository.biDirAssociation = &biDirAssociation;
    repository.attributeType = &attributeType;
    repository.attribute = &attribute;
    repository.referenceType = &referenceType;
    return &repository;
}

class BiDirLarge : public Scene {
protected:
    BiDirLarge() {
        Orv::LoggingWrapper::instance()->setLevel(0);
        stage.script.keepCalls(false);
        modelOfXAndY();
        stage.model.moc("X").reference("ys", "Y", 0, 1'000'000);
    }

    ~BiDirLarge() override { EXPECT_LT(std::chrono::steady_clock::now() - mBegin, patience); }

    static Lines dns(const std::string& step, int first, int last) {
        Lines all;
        for (int i = first; i < last; ++i) {
            all.push_back(step + std::to_string(i));
        }
        return all;
    }

private:
    std::chrono::steady_clock::time_point mBegin = std::chrono::steady_clock::now();
};

TEST_F(BiDirLarge, DifferenceOfTwoLongLists_InOrderAndWithoutQuadraticSearch) {
    constexpr int size = 100'000;
    Scripted::Records records;
    Lines toAdd;
    Lines toRemove;
    utils.getMoRefDiff(records.container(Scripted::refs(dns("Y=", size / 2, size / 2 + size))),
                       records.container(Scripted::refs(dns("Y=", 0, size))), toAdd, toRemove);
    EXPECT_TRUE(toAdd == dns("Y=", size, size / 2 + size));
    EXPECT_TRUE(toRemove == dns("Y=", 0, size / 2));
}

TEST_F(BiDirLarge, TenThousandValuesReplacedHalf_EveryFarSideFollows) {
    constexpr int size = 10'000;
    for (const std::string& dn : dns("Y=", 0, size + size / 2)) {
        stage.world.mo(dn);
    }
    stage.world.mo("X=1");
    start();
    set(1, "X=1", "ys", dns("Y=", 0, size));
    EXPECT_EQ(set(1, "X=1", "ys", dns("Y=", size / 2, size + size / 2)), OrvOk);
    int wrong = 0;
    for (int i = 0; i < size + size / 2; ++i) {
        const Lines expected = i < size / 2 ? Lines() : Lines{"X=1"};
        wrong += refs("Y=" + std::to_string(i), "xs") == expected ? 0 : 1;
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(utils.getModifiedBackPointers(1).size(), size + size / 2 + 1U);
}

TEST_F(BiDirLarge, HundredThousandPairs_AreEachValidatedOnce) {
    constexpr int size = 100'000;
    start();
    for (const std::string& dn : dns("X=", 0, size)) {
        utils.addUpdatedBp(1, dn.c_str(), "ys");
    }
    // In the place of the scripted router and repository, which would take most of the time.
    validator.moRouter = plainRouter();
    validator.modelRepository = utils.modelRepository = plainRepository();
    plainReads = 0;
    EXPECT_EQ(validate(1), OrvOk);
    EXPECT_TRUE(valid);
    EXPECT_EQ(plainReads, size);
}

TEST_F(BiDirLarge, HundredThousandAdditionsThatWait_AreFoundByKeyAndDroppedAtTheEnd) {
    constexpr int size = 100'000;
    start();
    stage.world.mo("X=1");
    set(1, "X=1", "ys", dns("Y=", 0, size));
    ASSERT_EQ(utils.pendingBackPointers.size(), size + 0U);
    for (const std::string& dn : dns("Y=", 0, size / 10)) {
        client.create(1, dn);
    }
    EXPECT_EQ(utils.pendingBackPointers.size(), size - size / 10 + 0U);
    client.finish(1);
    EXPECT_TRUE(utils.pendingBackPointers.empty());
}

TEST_F(BiDirLarge, DnsOfAThousandSteps_AreFollowedAndNamedInFull) {
    std::string target = "P=1";
    for (int i = 0; i < 998; ++i) {
        target += ",P=1";
    }
    stage.model.moc("P").contains("Y");
    stage.model.moc("Z");
    target += ",Y=1";
    stage.world.mo(target);
    stage.world.mo("X=1");
    start();
    set(1, "X=1", "ys", {target});
    EXPECT_EQ(refs(target, "xs"), Lines{"X=1"});
    stage.world.set(target, "xs", Scripted::refs({"X=1", "Z=1"}));
    stage.world.remove("X=1");
    EXPECT_EQ(validate(1), OrvValidationFailed);
    EXPECT_EQ(messages(), Lines{"Z is not a valid type for attribute xs in " + target + "."});
}

}
}
