// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The order of virtual operations of the services and of the base of interceptors. Interceptors are
// compiled elsewhere and call into the table by place: a build of them that is older than the
// component must still find each operation.

#include "ExtCmInterceptorRepository.h"
#include "MoImpl.h"
#include "MoImpl3.h"
#include "MoImpl3_1.h"
#include "MoInterceptorBase.h"
#include "SlotOf.h"

#include <gtest/gtest.h>

#include <type_traits>

using namespace OrvExtCmRouterService;

namespace {

template <class Service>
class Reached : public Service {
public:
    using Service::getCmRouter;
    using Service::getTxData;
};

template <class Service>
Slots slotsOfService() {
    return {slotOf(&Reached<Service>::getTxData), slotOf(&Reached<Service>::getCmRouter)};
}

}

TEST(ServiceSlots, MoInterceptorBase_IsAsOthersKnowIt) {
    using Base = MoInterceptorBase;
    EXPECT_TRUE(std::has_virtual_destructor_v<Base>);
    const Slots slots = {slotOf(&Base::getMoAttribute), slotOf(&Base::getMoAttributes),
                         slotOf(&Base::setMoAttribute), slotOf(&Base::setMoAttributes),
                         slotOf(&Base::newMoIterator),  slotOf(&Base::nextMo),
                         slotOf(&Base::createMo),       slotOf(&Base::deleteMo),
                         slotOf(&Base::action),         slotOf(&Base::finalizeMoIterator),
                         slotOf(&Base::existsMo),       slotOf(&Base::countMoChildren)};
    EXPECT_EQ(slots, (Slots{2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}));
}

// Three fields after the pointer to the table: what a derived class reads lies where it was
// compiled to look.
TEST(ServiceSlots, MoInterceptorBase_HasItsFieldsInOrder) {
    struct Derived : MoInterceptorBase {
        std::ptrdiff_t placeOf(const void* field) const {
            return static_cast<const char*>(field) -
                   static_cast<const char*>(static_cast<const void*>(this));
        }
        Slots places() const {
            return {placeOf(&mo3Router), placeOf(&mo3_1Router), placeOf(&repository)};
        }
    };
    constexpr auto word = static_cast<std::ptrdiff_t>(sizeof(void*));
    EXPECT_EQ(Derived().places(), (Slots{word, 2 * word, 3 * word}));
    EXPECT_EQ(sizeof(MoInterceptorBase), 4 * sizeof(void*));
}

TEST(ServiceSlots, IteratingServices_AreAsOthersKnowThem) {
    EXPECT_EQ(slotsOfService<MoImpl3>(), (Slots{2, 3}));
    EXPECT_EQ(slotsOfService<MoImpl>(), (Slots{2, 3}));
    EXPECT_TRUE(std::has_virtual_destructor_v<MoImpl3>);
    EXPECT_TRUE(std::has_virtual_destructor_v<MoImpl>);
}

TEST(ServiceSlots, MoImpl3_1_HasNoDestructorInItsTable) {
    EXPECT_EQ((Slots{slotOf(&MoImpl3_1::getTxData), slotOf(&MoImpl3_1::getCmRouter)}),
              (Slots{0, 1}));
    EXPECT_FALSE(std::has_virtual_destructor_v<MoImpl3_1>);
}

TEST(ServiceSlots, IdMappings_IsAVirtualDestructorAndTheTranslator) {
    EXPECT_TRUE(std::has_virtual_destructor_v<IdMappings>);
    EXPECT_EQ(sizeof(IdMappings), 2 * sizeof(void*));
}

// A host takes the object for its identity.
TEST(ServiceSlots, InterceptorRepository_BeginsWithItsIdentity) {
    static_assert(!std::is_polymorphic_v<ExtCmInterceptorRepository>);
    ExtCmInterceptorRepository repository;
    EXPECT_EQ(static_cast<void*>(repository.getInterface()), static_cast<void*>(&repository));
}
