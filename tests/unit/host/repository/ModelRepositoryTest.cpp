// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "repository/ModelRepository.h"

#include "SampleModel.h"
#include "model/building/ModelBuilder.h"
#include "repository/RepositoryHandle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace OrvHost {

namespace {

using testing::ElementsAre;
using Handle = unsigned long long;

/// Asks for the sample model through its table, as a component does.
class ModelRepositoryTest : public testing::Test {
protected:
    Handle moc(const char* dn) const {
        Handle handle = 0;
        EXPECT_EQ(mTable.dnLookup->getMocFromDn(dn, 1, &handle), OrvOk) << dn;
        return handle;
    }

    std::string generalName(Handle properties) const {
        const char* text = nullptr;
        EXPECT_EQ(mTable.generalProperties->getGeneralStringProperty(properties, 0, &text), OrvOk);
        return text ? text : "";
    }

    std::string mocName(Handle handle) const {
        Handle properties = 0;
        EXPECT_EQ(mTable.mocQueries->getMocGeneralProperties(handle, &properties), OrvOk);
        return generalName(properties);
    }

    std::string attributeName(Handle handle) const {
        Handle properties = 0;
        EXPECT_EQ(mTable.attribute->getAttributeGeneralProperties(handle, &properties), OrvOk);
        return generalName(properties);
    }

    Handle attribute(Handle owner, const std::string& name) const {
        Handle handle = 0;
        OrvReturnT code = mTable.mocQueries->getFirstAttribute(owner, &handle);
        while (code == OrvOk && attributeName(handle) != name) {
            code = mTable.attribute->getNextAttribute(handle, &handle);
        }
        EXPECT_EQ(code, OrvOk) << name;
        return handle;
    }

    Handle type(Handle owner, const std::string& name) const {
        Handle handle = 0;
        EXPECT_EQ(mTable.attribute->getAttributeType(attribute(owner, name), &handle), OrvOk);
        return handle;
    }

    std::vector<Handle> biDirs(Handle owner) const {
        std::vector<Handle> all;
        Handle handle = 0;
        OrvReturnT code = mTable.mocQueries->getFirstBiDirAssociation(owner, &handle);
        while (code == OrvOk) {
            all.push_back(handle);
            code = mTable.biDirAssociation->getNextBiDirAssociation(handle, owner, &handle);
        }
        EXPECT_EQ(code, OrvNotExist);
        return all;
    }

    std::vector<Handle> uniDirEnds(Handle owner) const {
        std::vector<Handle> ends;
        Handle handle = 0;
        OrvReturnT code = mTable.mocQueries->getFirstUniDirAssociation(owner, &handle);
        while (code == OrvOk) {
            EXPECT_EQ(mTable.uniDirAssociation->getUniDirEnd(handle, &ends.emplace_back()), OrvOk);
            code = mTable.uniDirAssociation->getNextUniDirAssociation(handle, &handle);
        }
        EXPECT_EQ(code, OrvNotExist);
        return ends;
    }

    Handle end(Handle association, int which) const {
        Handle handle = 0;
        const auto& table = *mTable.biDirAssociation;
        EXPECT_EQ((which == 0 ? table.getFirstEnd : table.getSecondEnd)(association, &handle),
                  OrvOk);
        return handle;
    }

    std::string endText(Handle handle, int identifier) const {
        const char* text = nullptr;
        EXPECT_EQ(mTable.associationEnd->getEndStringProperty(handle, identifier, &text), OrvOk);
        return text ? text : "";
    }

    Handle endMoc(Handle handle) const {
        Handle found = 0;
        EXPECT_EQ(mTable.associationEnd->getEndMoc(handle, &found), OrvOk);
        return found;
    }

    long long endNumber(Handle handle, int identifier) const {
        long long number = -77;
        EXPECT_EQ(mTable.associationEnd->getEndIntProperty(handle, identifier, &number), OrvOk);
        return number;
    }

    Handle referencedMoc(Handle owner, const char* name) const {
        Handle found = 0;
        EXPECT_EQ(mTable.referenceType->getReferencedMoc(type(owner, name), &found), OrvOk);
        return found;
    }

    const Model mModel = sampleModel();
    ModelRepository mRepository{mModel};
    const VekOamSpiModelRepository_4& mTable = *mRepository.getInterface();
};

constexpr const char* kNetwork = "Network=1";
constexpr const char* kNode = "Network=1,Node=1";
constexpr const char* kCell = "Network=1,Node=1,Cell=1";
constexpr const char* kAntenna = "Network=1,Node=1,Antenna=1";

}

TEST_F(ModelRepositoryTest, Table_HasItsIdentityAndNothingBeyondWhatIsInUse) {
    EXPECT_STREQ(mTable.identity.componentName, "VekOamSpiModelRepositoryService");
    EXPECT_STREQ(mTable.identity.interfaceName, "VekOamSpiModelRepository");
    EXPECT_STREQ(mTable.identity.interfaceVersion, "4");
    EXPECT_EQ(mTable.reserved2, nullptr);
    EXPECT_EQ(mTable.reserved9, nullptr);
    EXPECT_EQ(mTable.reserved10, nullptr);
    EXPECT_EQ(mTable.reserved12, nullptr);
    EXPECT_EQ(mTable.dnLookup->reserved0, nullptr);
    EXPECT_EQ(mTable.mocQueries->reserved1, nullptr);
    EXPECT_EQ(mTable.mocQueries->reserved8, nullptr);
    EXPECT_EQ(mTable.containment->reserved3, nullptr);
    EXPECT_EQ(mTable.attributeType->reserved4, nullptr);
}

TEST_F(ModelRepositoryTest, SecondRepository_IsRefusedAndLeavesTheFirstInPlace) {
    EXPECT_THROW(ModelRepository second(mModel), std::logic_error);
    EXPECT_EQ(mocName(moc(kNetwork)), "Network");
}

TEST_F(ModelRepositoryTest, GetMocFromDn_LegalPath_GivesItsClassWhateverTheFlag) {
    EXPECT_EQ(mocName(moc(kCell)), "Cell");
    EXPECT_EQ(moc("Network.id=7,Node=2,Cell.id=x"), moc(kCell));
    Handle handle = 0;
    EXPECT_EQ(mTable.dnLookup->getMocFromDn(kCell, 0, &handle), OrvOk);
    EXPECT_EQ(handle, moc(kCell));
}

TEST_F(ModelRepositoryTest, GetMocFromDn_IllegalPath_IsNotThereAndWritesNothing) {
    for (const char* dn : {"", "Cell=1", "Network", "Network=1,Cell=1", "Nowhere=1", "Network=1,",
                           "ManagedObject=1"}) {
        Handle handle = 55;
        EXPECT_EQ(mTable.dnLookup->getMocFromDn(dn, 1, &handle), OrvNotExist) << dn;
        EXPECT_EQ(handle, 55U);
    }
}

// Answers are kept for DNs that differ in their last value only.
TEST_F(ModelRepositoryTest, GetMocFromDn_AskedAgain_AnswersAsTheModelDoes) {
    const std::string manyLetters(300, 'x');
    const std::vector<std::string> dns = {kNetwork,
                                          kCell,
                                          "Network=1,Node=2,Cell=9",
                                          "Network=1,Node=2,Cell=",
                                          "Network=1,Node=2,Cell=9,",
                                          "Network=1,Node=2,Cell=9,Cell=1",
                                          "Network=1,Node=2,Cell=9,x",
                                          "Network=1,Node=2,Cell",
                                          "Network=1,Node=2,Cell=1=2",
                                          "Network=1,Node=2,Cell=1=",
                                          "Network=1,Node=2,Cell.id=9",
                                          "Network=" + manyLetters + ",Node=2",
                                          "Network=" + manyLetters + ",Node=3",
                                          "Network=1,Node=",
                                          "Network=1",
                                          "=1",
                                          "=",
                                          "1",
                                          "",
                                          ","};
    for (int round = 0; round < 3; ++round) {
        for (const std::string& dn : dns) {
            Handle handle = 0;
            const OrvReturnT code = mTable.dnLookup->getMocFromDn(dn.c_str(), 1, &handle);
            const auto expected = mModel.findClassOfDn(dn);
            ASSERT_EQ(code, expected ? OrvOk : OrvNotExist) << dn;
            ASSERT_EQ(handle, expected ? encode({HandleKind::Moc, *expected}) : 0) << dn;
        }
    }
}

TEST_F(ModelRepositoryTest, GetMocFromDn_Null_IsAnInvalidArgument) {
    Handle handle = 0;
    EXPECT_EQ(mTable.dnLookup->getMocFromDn(nullptr, 1, &handle), OrvInvalidArgument);
    EXPECT_EQ(mTable.dnLookup->getMocFromDn(kCell, 1, nullptr), OrvInvalidArgument);
}

TEST_F(ModelRepositoryTest, Attributes_ComeInTheirOrderAndEnd) {
    std::vector<std::string> names;
    Handle handle = 0;
    OrvReturnT code = mTable.mocQueries->getFirstAttribute(moc(kAntenna), &handle);
    while (code == OrvOk) {
        names.push_back(attributeName(handle));
        Handle owner = 0;
        EXPECT_EQ(mTable.attribute->getAttributeMoc(handle, &owner), OrvOk);
        EXPECT_EQ(owner, moc(kAntenna));
        code = mTable.attribute->getNextAttribute(handle, &handle);
    }
    EXPECT_EQ(code, OrvNotExist);
    EXPECT_THAT(names, ElementsAre("antennaId", "cell", "power"));
}

TEST_F(ModelRepositoryTest, EndOfAList_LeavesTheOutVariableAlone) {
    const Handle last = attribute(moc(kAntenna), "power");
    Handle next = 99;
    EXPECT_EQ(mTable.attribute->getNextAttribute(last, &next), OrvNotExist);
    EXPECT_EQ(next, 99U);
}

TEST_F(ModelRepositoryTest, Containments_GiveTheChildrenOfOneParent) {
    std::vector<std::string> names;
    Handle containment = 0;
    OrvReturnT code = mTable.mocQueries->getFirstContainment(moc(kNode), &containment);
    while (code == OrvOk) {
        Handle child = 0;
        EXPECT_EQ(mTable.containment->getContainedMoc(containment, &child), OrvOk);
        names.push_back(mocName(child));
        code = mTable.containment->getNextContainment(containment, &containment);
    }
    EXPECT_EQ(code, OrvNotExist);
    EXPECT_THAT(names, ElementsAre("Node", "Cell", "Antenna"));
    EXPECT_EQ(mTable.mocQueries->getFirstContainment(moc(kCell), &containment), OrvNotExist);
}

TEST_F(ModelRepositoryTest, TypeCodes_TellReferencesFromTheRest) {
    const std::vector<std::pair<const char*, int>> expected = {
        {"cellId", 9}, {"locked", 1}, {"offset", 2}, {"load", 3},  {"gain", 4},
        {"state", 5},  {"labels", 9}, {"place", 14}, {"next", 11}, {"any", 11}};
    for (const auto& [name, expectedCode] : expected) {
        int code = 0;
        EXPECT_EQ(mTable.attributeType->getTypeCode(type(moc(kCell), name), &code), OrvOk);
        EXPECT_EQ(code, expectedCode) << name;
    }
}

TEST_F(ModelRepositoryTest, TypeBounds_AreThoseOfTheNumberOfValues) {
    const auto bound = [this](const char* name, int identifier) {
        long long number = -77;
        EXPECT_EQ(
            mTable.attributeType->getTypeIntProperty(type(moc(kCell), name), identifier, &number),
            OrvOk);
        return number;
    };
    EXPECT_EQ(bound("cellId", 0), 1);
    EXPECT_EQ(bound("cellId", 1), 1);
    EXPECT_EQ(bound("antennas", 0), 0);
    EXPECT_EQ(bound("antennas", 1), 4);
    EXPECT_EQ(bound("labels", 1), LLONG_MAX);
}

TEST_F(ModelRepositoryTest, ReferencedMoc_IsTheOnePermittedClassOrStandsForAny) {
    const Handle cell = moc(kCell);
    EXPECT_EQ(referencedMoc(cell, "next"), cell);
    EXPECT_EQ(referencedMoc(cell, "antennas"), moc(kAntenna));
    EXPECT_EQ(referencedMoc(moc(kAntenna), "power"), moc(kNode));
    EXPECT_EQ(mocName(referencedMoc(cell, "any")), "ManagedObject");
    EXPECT_EQ(mocName(referencedMoc(cell, "source")), "ManagedObject");
}

TEST_F(ModelRepositoryTest, ReferencedMocOfAnotherType_IsAnInvalidArgument) {
    Handle found = 5;
    EXPECT_EQ(mTable.referenceType->getReferencedMoc(type(moc(kCell), "offset"), &found),
              OrvInvalidArgument);
    EXPECT_EQ(found, 5U);
}

TEST_F(ModelRepositoryTest, ClassThatStandsForAny_HasANameAndNothingElse) {
    const Handle any = referencedMoc(moc(kCell), "any");
    Handle found = 0;
    EXPECT_EQ(mTable.mocQueries->getFirstAttribute(any, &found), OrvNotExist);
    EXPECT_EQ(mTable.mocQueries->getFirstContainment(any, &found), OrvNotExist);
    EXPECT_EQ(mTable.mocQueries->getFirstBiDirAssociation(any, &found), OrvNotExist);
    EXPECT_EQ(mTable.mocQueries->getFirstUniDirAssociation(any, &found), OrvNotExist);
    EXPECT_EQ(found, 0U);
}

TEST_F(ModelRepositoryTest, BiDirAssociations_OfAClassComeInTheModelsOrder) {
    const std::vector<Handle> ofCell = biDirs(moc(kCell));
    ASSERT_EQ(ofCell.size(), 3U);
    EXPECT_EQ(endText(end(ofCell[0], 1), 0), "antennas");
    EXPECT_EQ(endText(end(ofCell[1], 1), 0), "next");
    EXPECT_EQ(endText(end(ofCell[2], 1), 0), "friends");
    EXPECT_THAT(biDirs(moc(kAntenna)), ElementsAre(ofCell[0]));
    EXPECT_THAT(biDirs(moc(kNetwork)), ElementsAre());
}

TEST_F(ModelRepositoryTest, NextBiDirAssociation_OfAClassWithoutAPartInIt_IsAnInvalidArgument) {
    const Handle next = biDirs(moc(kCell))[1];
    Handle found = 7;
    const auto step = mTable.biDirAssociation->getNextBiDirAssociation;
    EXPECT_EQ(step(next, moc(kAntenna), &found), OrvInvalidArgument);
    EXPECT_EQ(step(next, referencedMoc(moc(kCell), "any"), &found), OrvInvalidArgument);
    EXPECT_EQ(step(next, next, &found), OrvInvalidArgument);
    EXPECT_EQ(step(next, 0, &found), OrvNotExist);
    EXPECT_EQ(step(0, moc(kCell), &found), OrvNotExist);
    EXPECT_EQ(step(moc(kCell), moc(kCell), &found), OrvInvalidArgument);
    EXPECT_EQ(found, 7U);
}

TEST_F(ModelRepositoryTest, EndsBetweenClasses_LieCrosswise) {
    const Handle association = biDirs(moc(kAntenna))[0];
    const Handle first = end(association, 0);
    const Handle second = end(association, 1);
    EXPECT_EQ(endMoc(first), moc(kCell));
    EXPECT_EQ(endMoc(second), moc(kAntenna));
    EXPECT_EQ(endText(first, 0), "cell");
    EXPECT_EQ(endText(second, 0), "antennas");
    EXPECT_EQ(endText(first, 1), "Cell");
    EXPECT_EQ(endText(second, 1), "antennas");
    Handle attributeOfFirst = 0;
    EXPECT_EQ(mTable.associationEnd->getEndAttribute(first, &attributeOfFirst), OrvOk);
    EXPECT_EQ(attributeOfFirst, attribute(moc(kAntenna), "cell"));
    Handle attributeOfSecond = 0;
    EXPECT_EQ(mTable.associationEnd->getEndAttribute(second, &attributeOfSecond), OrvOk);
    EXPECT_EQ(attributeOfSecond, attribute(moc(kCell), "antennas"));
    EXPECT_EQ(endNumber(first, 0), 1);
    EXPECT_EQ(endNumber(first, 1), 1);
    EXPECT_EQ(endNumber(second, 0), 0);
    EXPECT_EQ(endNumber(second, 1), 2);
}

TEST_F(ModelRepositoryTest, GeneralNameOfAnEnd_IsItsName) {
    const Handle first = end(biDirs(moc(kCell))[0], 0);
    Handle properties = 0;
    EXPECT_EQ(mTable.associationEnd->getEndGeneralProperties(first, &properties), OrvOk);
    EXPECT_EQ(generalName(properties), endText(first, 0));
}

TEST_F(ModelRepositoryTest, FlagOfAnEnd_WritesOneByte) {
    const Handle association = biDirs(moc(kCell))[0];
    bool flags[2] = {true, true};
    EXPECT_EQ(mTable.associationEnd->getEndBoolProperty(end(association, 0), 0, &flags[0]), OrvOk);
    EXPECT_FALSE(flags[0]);
    EXPECT_TRUE(flags[1]);
    EXPECT_EQ(mTable.associationEnd->getEndBoolProperty(end(association, 1), 0, &flags[0]), OrvOk);
    EXPECT_TRUE(flags[0]);
}

TEST_F(ModelRepositoryTest, ClassWithItself_HasTwoEndsThatDifferInNameOnly) {
    const Handle association = biDirs(moc(kCell))[1];
    const Handle first = end(association, 0);
    const Handle second = end(association, 1);
    EXPECT_NE(first, second);
    EXPECT_EQ(endMoc(first), moc(kCell));
    EXPECT_EQ(endMoc(second), moc(kCell));
    EXPECT_EQ(endText(first, 0), "previous");
    EXPECT_EQ(endText(second, 0), "next");
}

TEST_F(ModelRepositoryTest, ClassWithItselfThroughOneAttribute_HasTwoEndsOfOneName) {
    const Handle association = biDirs(moc(kCell))[2];
    EXPECT_NE(end(association, 0), end(association, 1));
    EXPECT_EQ(endText(end(association, 0), 0), "friends");
    EXPECT_EQ(endText(end(association, 1), 0), "friends");
}

TEST_F(ModelRepositoryTest, UniDirAssociations_OfAClassAreOnePerPermittedClass) {
    const std::vector<Handle> ofCell = uniDirEnds(moc(kCell));
    ASSERT_EQ(ofCell.size(), 2U);
    EXPECT_EQ(endText(ofCell[0], 0), "source");
    EXPECT_EQ(endText(ofCell[1], 0), "source");
    EXPECT_EQ(endMoc(ofCell[0]), moc(kAntenna));
    EXPECT_EQ(endMoc(ofCell[1]), moc(kNode));
    EXPECT_EQ(endNumber(ofCell[0], 1), 1);
    EXPECT_EQ(endNumber(ofCell[1], 1), 2);
    Handle found = 0;
    EXPECT_EQ(mTable.associationEnd->getEndAttribute(ofCell[1], &found), OrvOk);
    EXPECT_EQ(found, attribute(moc(kCell), "source"));
    EXPECT_EQ(uniDirEnds(moc(kAntenna)).size(), 1U);
    EXPECT_THAT(uniDirEnds(moc(kNode)), ElementsAre());
}

TEST_F(ModelRepositoryTest, OpenUpperBoundOfAnEnd_IsALargePositiveNumber) {
    const Handle friends = biDirs(moc(kCell))[2];
    EXPECT_EQ(endNumber(end(friends, 0), 1), LLONG_MAX);
}

TEST_F(ModelRepositoryTest, UnknownProperties_AreInvalidArguments) {
    const Handle anEnd = end(biDirs(moc(kCell))[0], 0);
    Handle properties = 0;
    ASSERT_EQ(mTable.mocQueries->getMocGeneralProperties(moc(kCell), &properties), OrvOk);
    for (const int identifier : {-1, 2, 100, INT_MIN, INT_MAX}) {
        const char* text = nullptr;
        bool flag = true;
        long long number = 3;
        EXPECT_EQ(mTable.generalProperties->getGeneralStringProperty(properties, identifier, &text),
                  OrvInvalidArgument);
        EXPECT_EQ(mTable.associationEnd->getEndStringProperty(anEnd, identifier, &text),
                  OrvInvalidArgument);
        EXPECT_EQ(mTable.associationEnd->getEndBoolProperty(anEnd, identifier, &flag),
                  OrvInvalidArgument);
        EXPECT_EQ(mTable.associationEnd->getEndIntProperty(anEnd, identifier, &number),
                  OrvInvalidArgument);
        EXPECT_EQ(mTable.attributeType->getTypeIntProperty(type(moc(kCell), "cellId"), identifier,
                                                           &number),
                  OrvInvalidArgument);
        EXPECT_EQ(text, nullptr);
        EXPECT_TRUE(flag);
        EXPECT_EQ(number, 3);
    }
}

namespace {

/// A function of the table that takes one handle, and the kind that the handle must have.
struct OneHandleCall {
    std::string name;
    HandleKind kind;
    bool takesProperties;
    std::function<OrvReturnT(Handle handle, bool isNullOut)> call;
};

template <class Out>
std::function<OrvReturnT(Handle, bool)> calling(OrvReturnT (*entry)(Handle, Out*)) {
    return [entry](Handle handle, bool isNullOut) {
        Out out{};
        const OrvReturnT code = entry(handle, isNullOut ? nullptr : &out);
        EXPECT_TRUE(code == OrvOk || out == Out{}) << "written on failure";
        return code;
    };
}

template <class Out>
std::function<OrvReturnT(Handle, bool)> calling(OrvReturnT (*entry)(Handle, int, Out*)) {
    return [entry](Handle handle, bool isNullOut) {
        Out out{};
        const OrvReturnT code = entry(handle, 0, isNullOut ? nullptr : &out);
        EXPECT_TRUE(code == OrvOk || out == Out{}) << "written on failure";
        return code;
    };
}

std::vector<OneHandleCall> oneHandleCalls(const VekOamSpiModelRepository_4& table) {
    const auto kMoc = HandleKind::Moc;
    return {
        {"getGeneralStringProperty", kMoc, true,
         calling(table.generalProperties->getGeneralStringProperty)},
        {"getMocGeneralProperties", kMoc, false,
         calling(table.mocQueries->getMocGeneralProperties)},
        {"getFirstAttribute", kMoc, false, calling(table.mocQueries->getFirstAttribute)},
        {"getFirstContainment", kMoc, false, calling(table.mocQueries->getFirstContainment)},
        {"getFirstBiDirAssociation", kMoc, false,
         calling(table.mocQueries->getFirstBiDirAssociation)},
        {"getFirstUniDirAssociation", kMoc, false,
         calling(table.mocQueries->getFirstUniDirAssociation)},
        {"getContainedMoc", HandleKind::Containment, false,
         calling(table.containment->getContainedMoc)},
        {"getNextContainment", HandleKind::Containment, false,
         calling(table.containment->getNextContainment)},
        {"getEndMoc", HandleKind::BiDirEnd, false, calling(table.associationEnd->getEndMoc)},
        {"getEndAttribute", HandleKind::BiDirEnd, false,
         calling(table.associationEnd->getEndAttribute)},
        {"getEndGeneralProperties", HandleKind::BiDirEnd, false,
         calling(table.associationEnd->getEndGeneralProperties)},
        {"getEndStringProperty", HandleKind::BiDirEnd, false,
         calling(table.associationEnd->getEndStringProperty)},
        {"getEndBoolProperty", HandleKind::BiDirEnd, false,
         calling(table.associationEnd->getEndBoolProperty)},
        {"getEndIntProperty", HandleKind::BiDirEnd, false,
         calling(table.associationEnd->getEndIntProperty)},
        {"getFirstEnd", HandleKind::BiDir, false, calling(table.biDirAssociation->getFirstEnd)},
        {"getSecondEnd", HandleKind::BiDir, false, calling(table.biDirAssociation->getSecondEnd)},
        {"getUniDirEnd", HandleKind::UniDir, false, calling(table.uniDirAssociation->getUniDirEnd)},
        {"getNextUniDirAssociation", HandleKind::UniDir, false,
         calling(table.uniDirAssociation->getNextUniDirAssociation)},
        {"getTypeCode", HandleKind::Type, false, calling(table.attributeType->getTypeCode)},
        {"getTypeIntProperty", HandleKind::Type, false,
         calling(table.attributeType->getTypeIntProperty)},
        {"getAttributeGeneralProperties", HandleKind::Attribute, false,
         calling(table.attribute->getAttributeGeneralProperties)},
        {"getAttributeMoc", HandleKind::Attribute, false,
         calling(table.attribute->getAttributeMoc)},
        {"getAttributeType", HandleKind::Attribute, false,
         calling(table.attribute->getAttributeType)},
        {"getNextAttribute", HandleKind::Attribute, false,
         calling(table.attribute->getNextAttribute)},
        {"getReferencedMoc", HandleKind::Type, false,
         calling(table.referenceType->getReferencedMoc)},
    };
}

constexpr HandleKind kAllKinds[] = {
    HandleKind::Moc,   HandleKind::Attribute, HandleKind::Type,     HandleKind::Containment,
    HandleKind::BiDir, HandleKind::UniDir,    HandleKind::BiDirEnd, HandleKind::UniDirEnd};

}

TEST_F(ModelRepositoryTest, ZeroHandle_NamesNothing) {
    for (const OneHandleCall& entry : oneHandleCalls(mTable)) {
        EXPECT_EQ(entry.call(0, false), OrvNotExist) << entry.name;
    }
}

TEST_F(ModelRepositoryTest, NullOutParameter_IsAnInvalidArgument) {
    for (const OneHandleCall& entry : oneHandleCalls(mTable)) {
        const Handle good = encode({entry.kind, 0, 0});
        const Handle handle = entry.takesProperties ? good | kPropertiesBit : good;
        EXPECT_EQ(entry.call(handle, true), OrvInvalidArgument) << entry.name;
    }
}

TEST_F(ModelRepositoryTest, HandleOfAnotherKind_IsAnInvalidArgument) {
    for (const OneHandleCall& entry : oneHandleCalls(mTable)) {
        const bool takesEnds = entry.kind == HandleKind::BiDirEnd;
        for (const HandleKind kind : kAllKinds) {
            const bool isGood = kind == entry.kind || (takesEnds && kind == HandleKind::UniDirEnd);
            const Handle plain = encode({kind, 0, 0});
            if (!isGood || entry.takesProperties) {
                EXPECT_EQ(entry.call(plain, false), OrvInvalidArgument) << entry.name;
            }
            if (!entry.takesProperties) {
                EXPECT_EQ(entry.call(plain | kPropertiesBit, false), OrvInvalidArgument)
                    << entry.name;
            }
        }
    }
}

TEST_F(ModelRepositoryTest, PropertiesOfWhatHasNoName_AreAnInvalidArgument) {
    const char* text = nullptr;
    for (const HandleKind kind :
         {HandleKind::Type, HandleKind::Containment, HandleKind::BiDir, HandleKind::UniDir}) {
        EXPECT_EQ(mTable.generalProperties->getGeneralStringProperty(
                      encode({kind, 0, 0}) | kPropertiesBit, 0, &text),
                  OrvInvalidArgument);
    }
}

TEST_F(ModelRepositoryTest, MadeUpHandles_NeverLeadOutsideTheModel) {
    std::vector<Handle> numbers = {1, 2, 0xff, ULLONG_MAX, LLONG_MAX, 1ULL << 63, 1ULL << 60};
    for (const HandleKind kind : kAllKinds) {
        for (const std::uint32_t position : {100U, kAnyClassPosition - 1}) {
            numbers.push_back(encode({kind, position, 0}));
            numbers.push_back(encode({kind, 0, position}));
            numbers.push_back(encode({kind, position, 0}) | kPropertiesBit);
        }
        numbers.push_back(encode({kind, 0, 0}) | 1ULL << 63);
    }
    for (const OneHandleCall& entry : oneHandleCalls(mTable)) {
        for (const Handle number : numbers) {
            const OrvReturnT code = entry.call(number, false);
            EXPECT_TRUE(code == OrvInvalidArgument || code == OrvNotExist)
                << entry.name << " " << number << " " << code;
        }
    }
}

TEST_F(ModelRepositoryTest, Handles_OfDifferentThingsNeverMeet) {
    std::set<Handle> handles;
    std::size_t count = 0;
    for (const HandleKind kind : kAllKinds) {
        for (const std::uint32_t first : {0U, 1U, kAnyClassPosition}) {
            for (const std::uint32_t second : {0U, 1U, kAnyClassPosition}) {
                const Handle handle = encode({kind, first, second});
                handles.insert(handle);
                handles.insert(handle | kPropertiesBit);
                count += 2;
                const RepositoryHandle back = decode(handle);
                EXPECT_EQ(back.kind, kind);
                EXPECT_EQ(back.first, first);
                EXPECT_EQ(back.second, second);
            }
        }
    }
    EXPECT_EQ(handles.size(), count);
    EXPECT_EQ(handles.count(0), 0U);
}

// Otherwise the component would demand at validate what a client must not give.
TEST(ModelRepositoryConditions, ConditionalReference_HasNoLowerBound) {
    const Model model = ModelBuilder()
                            .add(ClassDraft("Site").topLevel().key("id").attribute(
                                AttributeDraft::reference("mast").multiplicity(1, 2).conditional()))
                            .add(ClassDraft("Mast").topLevel().key("id"))
                            .add(ReferenceDraft("Site", "mast").to("Mast").counts(1, 2))
                            .build();
    ModelRepository repository(model);
    const VekOamSpiModelRepository_4& table = *repository.getInterface();
    Handle moc = 0;
    ASSERT_EQ(table.dnLookup->getMocFromDn("Site=1", 1, &moc), OrvOk);
    Handle id = 0;
    Handle attribute = 0;
    Handle type = 0;
    ASSERT_EQ(table.mocQueries->getFirstAttribute(moc, &id), OrvOk);
    ASSERT_EQ(table.attribute->getNextAttribute(id, &attribute), OrvOk);
    ASSERT_EQ(table.attribute->getAttributeType(attribute, &type), OrvOk);
    long long lower = -1;
    long long upper = -1;
    EXPECT_EQ(table.attributeType->getTypeIntProperty(type, VekOamSpiMrLowerBound_4, &lower),
              OrvOk);
    EXPECT_EQ(lower, 0);
    Handle association = 0;
    Handle end = 0;
    ASSERT_EQ(table.mocQueries->getFirstUniDirAssociation(moc, &association), OrvOk);
    ASSERT_EQ(table.uniDirAssociation->getUniDirEnd(association, &end), OrvOk);
    EXPECT_EQ(table.associationEnd->getEndIntProperty(end, VekOamSpiMrLowerBound_4, &lower), OrvOk);
    EXPECT_EQ(table.associationEnd->getEndIntProperty(end, VekOamSpiMrUpperBound_4, &upper), OrvOk);
    EXPECT_EQ(lower, 0);
    EXPECT_EQ(upper, 2);
}

TEST(ModelRepositoryLife, TableAfterwards_IsNotActive) {
    const Model model = sampleModel();
    VekOamSpiModelRepository_4 table{};
    {
        ModelRepository repository(model);
        table = *repository.getInterface();
    }
    Handle handle = 0;
    EXPECT_EQ(table.dnLookup->getMocFromDn("Network=1", 1, &handle), OrvNotActive);
    EXPECT_EQ(table.mocQueries->getFirstAttribute(1, &handle), OrvNotActive);
    const char* text = nullptr;
    EXPECT_EQ(table.generalProperties->getGeneralStringProperty(1, 0, &text), OrvNotActive);
    EXPECT_EQ(table.biDirAssociation->getNextBiDirAssociation(1, 1, &handle), OrvNotActive);
}

TEST(ModelRepositoryLife, AnotherModelAfterwards_IsServed) {
    const Model model = sampleModel();
    { const ModelRepository first(model); }
    const Model other = ModelBuilder().add(ClassDraft("Only").topLevel().key("id")).build();
    ModelRepository second(other);
    Handle handle = 0;
    const auto& table = *second.getInterface();
    EXPECT_EQ(table.dnLookup->getMocFromDn("Only=1", 1, &handle), OrvOk);
    EXPECT_EQ(table.dnLookup->getMocFromDn("Network=1", 1, &handle), OrvNotExist);
}

TEST(ModelRepositoryLife, ClassOfADnInAnotherModel_IsNotThatOfTheModelBefore) {
    const Model model = ModelBuilder().add(ClassDraft("Only").topLevel().key("id")).build();
    const Model other = ModelBuilder()
                            .add(ClassDraft("First").topLevel().key("id"))
                            .add(ClassDraft("Only").topLevel().key("id"))
                            .build();
    std::vector<Handle> handles;
    for (const Model* each : {&model, &other}) {
        ModelRepository repository(*each);
        handles.push_back(0);
        repository.getInterface()->dnLookup->getMocFromDn("Only=1", 1, &handles.back());
    }
    EXPECT_EQ(handles[0], encode({HandleKind::Moc, 0}));
    EXPECT_EQ(handles[1], encode({HandleKind::Moc, 1}));
}

}
