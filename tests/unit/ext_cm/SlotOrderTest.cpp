// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"
#include "SlotOf.h"
#include "UniDirValidator.h"

#include <list>
#include <type_traits>

// The order of virtual operations is part of what others are built against, and nothing but this
// tells when it changes.

namespace BiDirTests {
namespace {

using OrvExtCmRouterService::BiDirUtils;
using OrvExtCmRouterService::BiDirValidator;
using OrvExtCmRouterService::UniDirValidator;

TEST(SlotOrder, BiDirUtils_IsAsOthersKnowIt) {
    using FindByMoc =
        OrvReturnT (BiDirUtils::*)(VekOamSpiMrMocHandle_4T, VekOamSpiMrBiDirAssociationHandle_4T,
                                   VekOamSpiMrAssociationEndHandle_4T&);
    using FindByName = OrvReturnT (BiDirUtils::*)(VekOamSpiMrMocHandle_4T, const char*,
                                                  VekOamSpiMrBiDirAssociationHandle_4T,
                                                  VekOamSpiMrAssociationEndHandle_4T&);
    const Slots slots = {slotOf(&Utils::start),
                         slotOf(&Utils::stop),
                         slotOf(&Utils::updateBackPointersForModify),
                         slotOf(&Utils::updateBackPointersForDelete),
                         slotOf(&Utils::getModifiedBackPointers),
                         slotOf(&Utils::updatePendingBackPointer),
                         slotOf(&Utils::removePendingBackPointerUpdates),
                         slotOf(&Utils::removePendingBackPointerFromQueue),
                         slotOf(&Utils::removePendingBackpointersForTransaction),
                         slotOf(&Utils::getBidirsForMoc),
                         slotOf<FindByMoc>(&BiDirUtils::findAssociationEnd),
                         slotOf<FindByName>(&BiDirUtils::findAssociationEnd),
                         slotOf(&Utils::getMoRefDiff),
                         slotOf(&Utils::removeMoFromBackPointer),
                         slotOf(&Utils::addMoToBackPointer),
                         slotOf(&Utils::setMoAttr),
                         slotOf(&Utils::updateBackpointers)};
    EXPECT_EQ(slots, (Slots{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 14, 15, 16, 17, 18}));
    EXPECT_TRUE(std::has_virtual_destructor_v<BiDirUtils>);
}

TEST(SlotOrder, BiDirValidator_IsAsOthersKnowIt) {
    const Slots slots = {slotOf(&Validator::start),
                         slotOf(&Validator::stop),
                         slotOf(&Validator::attributeTypeCheck),
                         slotOf(&Validator::biDirCardinalityCheck),
                         slotOf(&Validator::attrMultiplicityCheck),
                         slotOf(&Validator::getAttributeFromMoc),
                         slotOf(&Validator::addThreadContextMessage)};
    EXPECT_EQ(slots, (Slots{0, 1, 4, 5, 6, 7, 8}));
    EXPECT_TRUE(std::has_virtual_destructor_v<BiDirValidator>);
}

TEST(SlotOrder, UniDirValidator_IsAsOthersKnowIt) {
    const Slots slots = {slotOf(&UniDirValidator::start),    slotOf(&UniDirValidator::stop),
                         slotOf(&UniDirValidator::setMoRef), slotOf(&UniDirValidator::deleteMo),
                         slotOf(&UniDirValidator::finish),   slotOf(&UniDirValidator::validate)};
    EXPECT_EQ(slots, (Slots{0, 1, 2, 3, 4, 5}));
    EXPECT_FALSE(std::has_virtual_destructor_v<UniDirValidator>);
}

/// Notes which operations its own ones call.
class WatchedUtils : public BiDirUtils {
public:
    Lines seen;

    OrvReturnT updateBackPointersForDelete(unsigned long tx, const char* dn) override {
        seen.push_back("updateBackPointersForDelete");
        return BiDirUtils::updateBackPointersForDelete(tx, dn);
    }
    void removePendingBackPointerFromQueue(unsigned long tx, const std::string& dn,
                                           const std::string& attribute) override {
        seen.push_back("removePendingBackPointerFromQueue");
        BiDirUtils::removePendingBackPointerFromQueue(tx, dn, attribute);
    }
    OrvReturnT getBidirsForMoc(VekOamSpiMrMocHandle_4T moc,
                               std::list<VekOamSpiMrBiDirAssociationHandle_4T>& bidirs) override {
        seen.push_back("getBidirsForMoc");
        return BiDirUtils::getBidirsForMoc(moc, bidirs);
    }
    OrvReturnT findAssociationEnd(VekOamSpiMrMocHandle_4T moc,
                                  VekOamSpiMrBiDirAssociationHandle_4T association,
                                  VekOamSpiMrAssociationEndHandle_4T& end) override {
        seen.push_back("findAssociationEnd by MOC");
        return BiDirUtils::findAssociationEnd(moc, association, end);
    }
    OrvReturnT findAssociationEnd(VekOamSpiMrMocHandle_4T moc, const char* attributeName,
                                  VekOamSpiMrBiDirAssociationHandle_4T association,
                                  VekOamSpiMrAssociationEndHandle_4T& end) override {
        seen.push_back("findAssociationEnd by name");
        return BiDirUtils::findAssociationEnd(moc, attributeName, association, end);
    }

protected:
    void getMoRefDiff(const VekMoAttributeValueContainer_3* newValue,
                      const VekMoAttributeValueContainer_3* oldValue,
                      std::vector<std::string>& toAdd,
                      std::vector<std::string>& toRemove) override {
        seen.push_back("getMoRefDiff");
        BiDirUtils::getMoRefDiff(newValue, oldValue, toAdd, toRemove);
    }
    void removeMoFromBackPointer(unsigned long tx, const char* targetDn, const char* dnToRemove,
                                 VekOamSpiMrAssociationEndHandle_4T end,
                                 const char* sourceAttribute) override {
        seen.push_back("removeMoFromBackPointer");
        BiDirUtils::removeMoFromBackPointer(tx, targetDn, dnToRemove, end, sourceAttribute);
    }
    void addMoToBackPointer(unsigned long tx, const char* targetDn, const char* dnToAdd,
                            VekOamSpiMrAssociationEndHandle_4T end,
                            const char* sourceAttribute) override {
        seen.push_back("addMoToBackPointer");
        BiDirUtils::addMoToBackPointer(tx, targetDn, dnToAdd, end, sourceAttribute);
    }
    OrvReturnT setMoAttr(unsigned long tx, std::vector<std::string> values, const char* dn,
                         const char* attributeName) override {
        seen.push_back("setMoAttr");
        return BiDirUtils::setMoAttr(tx, std::move(values), dn, attributeName);
    }
    OrvReturnT updateBackpointers(unsigned long tx, const char* dn) override {
        seen.push_back("updateBackpointers");
        return BiDirUtils::updateBackpointers(tx, dn);
    }
};

class BiDirOwnCalls : public Scene {
protected:
    BiDirOwnCalls() {
        modelOfXAndY();
        stage.model.moc("P").contains("X");
        watched.start();
    }

    ~BiDirOwnCalls() override { watched.stop(); }

    Lines seen() { return std::exchange(watched.seen, {}); }

    WatchedUtils watched;
    Client watchedClient{stage, watched};
};

TEST_F(BiDirOwnCalls, Modify_GoesThroughItsVirtualSteps) {
    stage.world.mo("X=1").with("ys", Scripted::refs({"Y=1", "Y=3"}));
    stage.world.mo("Y=1").with("xs", Scripted::refs({"X=1"}));
    stage.world.mo("Y=2");
    watchedClient.set(1, "X=1", "ys", {"Y=2"});
    EXPECT_EQ(seen(),
              (Lines{"getBidirsForMoc", "getMoRefDiff", "findAssociationEnd by name",
                     "removeMoFromBackPointer", "setMoAttr", "removeMoFromBackPointer",
                     "removePendingBackPointerFromQueue", "addMoToBackPointer", "setMoAttr"}));
}

TEST_F(BiDirOwnCalls, Flush_GoesThroughItsVirtualSteps) {
    stage.world.mo("X=1");
    watchedClient.set(1, "X=1", "ys", {"Y=1"});
    seen();
    watchedClient.create(1, "Y=1");
    EXPECT_EQ(seen(), (Lines{"addMoToBackPointer", "setMoAttr"}));
}

TEST_F(BiDirOwnCalls, Delete_GoesThroughItsVirtualSteps) {
    stage.world.mo("P=1");
    stage.world.mo("P=1,X=1").with("ys", Scripted::refs({"Y=1"}));
    stage.world.mo("Y=1").with("xs", Scripted::refs({"P=1,X=1"}));
    watchedClient.remove(1, "P=1");
    EXPECT_EQ(seen(), (Lines{"updateBackPointersForDelete", "updateBackpointers", "getBidirsForMoc",
                             "findAssociationEnd by MOC", "removeMoFromBackPointer", "setMoAttr",
                             "updateBackpointers", "getBidirsForMoc"}));
}

}
}
