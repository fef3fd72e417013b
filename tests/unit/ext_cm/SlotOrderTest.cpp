// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"
#include "SlotOf.h"
#include "UniDirValidator.h"

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

}
}
