// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OrvInterfaceBinders.h"

#include "OrvException.h"
#include "ServedMocks.h"

#include <Poco/Exception.h>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <vector>

using ::testing::_;
using ::testing::Return;
using ::testing::StrictMock;
using ::testing::Throw;

namespace {

const OrvMgmtSpiInterface_1 identity = {"TheComponent", "TheInterface", "TheVersion"};
constexpr unsigned long tx = 18446744073709551615UL;
constexpr unsigned long long handle = 0xfedcba9876543210ULL;
constexpr OrvReturnT code = -12345;
const char* const dn = "A=1";
const char* const name = "name";
const char* const attrName = "attrName";
const char* const attrValue = "attrValue";

struct NotAStandardException {};

template <class Table>
void expectIdentity(const Table& table) {
    EXPECT_EQ(table.identity.componentName, identity.componentName);
    EXPECT_EQ(table.identity.interfaceName, identity.interfaceName);
    EXPECT_EQ(table.identity.interfaceVersion, identity.interfaceVersion);
}

template <template <class> class Binder, class Served>
class Bound {
public:
    Served& object() { return mServed; }
    auto& table() { return *mBinder.getInterface(); }

private:
    StrictMock<Served> mServed;
    Binder<Served> mBinder{identity, mServed};
};

using BoundResource = Bound<Orv::TransactionalResource2Binder, ServedResource>;
using Bound1 = Bound<Orv::ManagedObject1Binder, ServedObject1>;
using Bound3 = Bound<Orv::ManagedObject3Binder, ServedObject3>;
using Bound3_1 = Bound<Orv::ManagedObject3_1Binder, ServedObject3_1>;

}

// The barrier that every slot goes through.

TEST(Shielded, Value_PassesUnchanged) {
    for (const OrvReturnT value : {OrvOk, OrvNotActive, OrvFailure, 12345, -2147483647 - 1}) {
        EXPECT_EQ(Orv::shielded([&] { return value; }), value);
    }
}

TEST(Shielded, AnyStandardException_IsAnsweredWithFailure) {
    const std::vector<std::function<OrvReturnT()>> throwers = {
        []() -> OrvReturnT { throw std::exception(); },
        []() -> OrvReturnT { throw std::bad_alloc(); },
        []() -> OrvReturnT { throw std::length_error("length"); },
        []() -> OrvReturnT { throw std::runtime_error("run time"); },
        []() -> OrvReturnT { throw Poco::SystemException("cannot lock mutex"); },
        []() -> OrvReturnT { throw Orv::OrvException(OrvReturnT{-3}, "with a code of its own"); }};
    for (const auto& thrower : throwers) {
        EXPECT_EQ(Orv::shielded(thrower), OrvFailure);
    }
}

TEST(Shielded, AnythingElse_Passes) {
    EXPECT_THROW(Orv::shielded([]() -> OrvReturnT { throw NotAStandardException(); }),
                 NotAStandardException);
    EXPECT_THROW(Orv::shielded([]() -> OrvReturnT { throw 7; }), int);
}

// What all binders have in common.

template <template <class> class BinderOf, class Served>
void expectTableAfterTheVirtualDestructor() {
    using Binder = BinderOf<Served>;
    static_assert(std::has_virtual_destructor_v<Binder>);
    static_assert(!std::is_copy_constructible_v<Binder>);
    StrictMock<Served> served;
    Binder binder(identity, served);
    EXPECT_EQ(reinterpret_cast<char*>(binder.getInterface()),
              reinterpret_cast<char*>(&binder) + sizeof(void*));
    EXPECT_EQ(sizeof(binder), sizeof(void*) + sizeof(*binder.getInterface()));
}

TEST(Binders, Type_HasItsTableFirstAfterTheVirtualDestructor) {
    expectTableAfterTheVirtualDestructor<Orv::TransactionalResource2Binder, ServedResource>();
    expectTableAfterTheVirtualDestructor<Orv::ManagedObject1Binder, ServedObject1>();
    expectTableAfterTheVirtualDestructor<Orv::ManagedObject3Binder, ServedObject3>();
    expectTableAfterTheVirtualDestructor<Orv::ManagedObject3_1Binder, ServedObject3_1>();
}

TEST(Binders, Construction_CopiesTheIdentity) {
    OrvMgmtSpiInterface_1 temporary = identity;
    StrictMock<ServedResource> served;
    Orv::TransactionalResource2Binder<ServedResource> binder(temporary, served);
    temporary = {};
    expectIdentity(*binder.getInterface());
}

TEST(Binders, Destruction_LetsAnotherObjectServe) {
    { BoundResource first; }
    BoundResource second;
    EXPECT_CALL(second.object(), join(1)).WillOnce(Return(code));
    EXPECT_EQ(second.table().join(1), code);
}

TEST(Binders, DifferentServedClasses_DoNotMeet) {
    Bound3 object3;
    Bound3_1 object3_1;
    Bound1 object1;
    BoundResource resource;
    EXPECT_CALL(object3.object(), deleteMo(tx, dn)).WillOnce(Return(1));
    EXPECT_CALL(object1.object(), deleteMo(tx, dn)).WillOnce(Return(2));
    EXPECT_EQ(object3.table().deleteMo(tx, dn), 1);
    EXPECT_EQ(object1.table().deleteMo(tx, dn), 2);
}

// Each slot reaches the member of its name, with all its arguments, and gives its answer back.

TEST(TransactionalResource2Binder, Slots_ReachTheirMembers) {
    BoundResource bound;
    auto& table = bound.table();
    expectIdentity(table);
    bool result = false;
    EXPECT_CALL(bound.object(), join(tx)).WillOnce(Return(1));
    EXPECT_CALL(bound.object(), prepare(tx)).WillOnce(Return(2));
    EXPECT_CALL(bound.object(), commit(tx)).WillOnce(Return(3));
    EXPECT_CALL(bound.object(), abort(tx)).WillOnce(Return(4));
    EXPECT_CALL(bound.object(), finish(tx)).WillOnce(Return(5));
    EXPECT_CALL(bound.object(), validate(tx, &result)).WillOnce(Return(6));
    EXPECT_EQ(table.join(tx), 1);
    EXPECT_EQ(table.prepare(tx), 2);
    EXPECT_EQ(table.commit(tx), 3);
    EXPECT_EQ(table.abort(tx), 4);
    EXPECT_EQ(table.finish(tx), 5);
    EXPECT_EQ(table.validate(tx, &result), 6);
}

TEST(TransactionalResource2Binder, Slots_ExceptionOfTheMember_IsAnsweredWithFailure) {
    BoundResource bound;
    auto& table = bound.table();
    EXPECT_CALL(bound.object(), join).WillOnce(Throw(std::bad_alloc()));
    EXPECT_CALL(bound.object(), prepare).WillOnce(Throw(std::runtime_error("r")));
    EXPECT_CALL(bound.object(), commit).WillOnce(Throw(std::logic_error("l")));
    EXPECT_CALL(bound.object(), abort).WillOnce(Throw(Poco::SystemException("p")));
    EXPECT_CALL(bound.object(), finish).WillOnce(Throw(Orv::OrvException("o")));
    EXPECT_CALL(bound.object(), validate).WillOnce(Throw(std::exception()));
    EXPECT_EQ(table.join(1), OrvFailure);
    EXPECT_EQ(table.prepare(1), OrvFailure);
    EXPECT_EQ(table.commit(1), OrvFailure);
    EXPECT_EQ(table.abort(1), OrvFailure);
    EXPECT_EQ(table.finish(1), OrvFailure);
    EXPECT_EQ(table.validate(1, nullptr), OrvFailure);
}

TEST(TransactionalResource2Binder, Slot_SomethingElseThrown_Passes) {
    BoundResource bound;
    EXPECT_CALL(bound.object(), join).WillOnce(Throw(NotAStandardException()));
    EXPECT_THROW(bound.table().join(1), NotAStandardException);
}

TEST(ManagedObject1Binder, Slots_ReachTheirMembers) {
    Bound1 bound;
    auto& table = bound.table();
    expectIdentity(table);
    OrvMoAttributeValueContainer value = {};
    OrvMoAttributeValueContainer* parameters = nullptr;
    OrvMoAttributeValueContainer* result = nullptr;
    void* iterator = nullptr;
    char* text = nullptr;
    EXPECT_CALL(bound.object(), setMoAttribute(tx, dn, attrName, &value)).WillOnce(Return(1));
    EXPECT_CALL(bound.object(), getMoAttribute(tx, dn, attrName, &result)).WillOnce(Return(2));
    EXPECT_CALL(bound.object(), newMoIterator(tx, dn, name, &iterator)).WillOnce(Return(3));
    EXPECT_CALL(bound.object(), nextMo(&value, &text)).WillOnce(Return(4));
    EXPECT_CALL(bound.object(), createMo(tx, dn, name, attrName, attrValue)).WillOnce(Return(5));
    EXPECT_CALL(bound.object(), deleteMo(tx, dn)).WillOnce(Return(6));
    EXPECT_CALL(bound.object(), action(tx, dn, name, &parameters, &result)).WillOnce(Return(7));
    EXPECT_EQ(table.setMoAttribute(tx, dn, attrName, &value), 1);
    EXPECT_EQ(table.getMoAttribute(tx, dn, attrName, &result), 2);
    EXPECT_EQ(table.newMoIterator(tx, dn, name, &iterator), 3);
    EXPECT_EQ(table.nextMo(&value, &text), 4);
    EXPECT_EQ(table.createMo(tx, dn, name, attrName, attrValue), 5);
    EXPECT_EQ(table.deleteMo(tx, dn), 6);
    EXPECT_EQ(table.action(tx, dn, name, &parameters, &result), 7);
}

TEST(ManagedObject1Binder, Slots_ExceptionOfTheMember_IsAnsweredWithFailure) {
    Bound1 bound;
    auto& table = bound.table();
    const std::runtime_error thrown("thrown");
    EXPECT_CALL(bound.object(), setMoAttribute).WillOnce(Throw(thrown));
    EXPECT_CALL(bound.object(), getMoAttribute).WillOnce(Throw(thrown));
    EXPECT_CALL(bound.object(), newMoIterator).WillOnce(Throw(thrown));
    EXPECT_CALL(bound.object(), nextMo).WillOnce(Throw(thrown));
    EXPECT_CALL(bound.object(), createMo).WillOnce(Throw(thrown));
    EXPECT_CALL(bound.object(), deleteMo).WillOnce(Throw(thrown));
    EXPECT_CALL(bound.object(), action).WillOnce(Throw(thrown));
    EXPECT_EQ(table.setMoAttribute(1, dn, attrName, nullptr), OrvFailure);
    EXPECT_EQ(table.getMoAttribute(1, dn, attrName, nullptr), OrvFailure);
    EXPECT_EQ(table.newMoIterator(1, dn, name, nullptr), OrvFailure);
    EXPECT_EQ(table.nextMo(nullptr, nullptr), OrvFailure);
    EXPECT_EQ(table.createMo(1, dn, name, attrName, attrValue), OrvFailure);
    EXPECT_EQ(table.deleteMo(1, dn), OrvFailure);
    EXPECT_EQ(table.action(1, dn, name, nullptr, nullptr), OrvFailure);
}

TEST(ManagedObject3Binder, AttributeSlots_ReachTheirMembers) {
    Bound3 bound;
    auto& table = bound.table();
    expectIdentity(table);
    OrvMoAttributeValueContainer_3 value = {};
    OrvMoNamedAttributeValueContainer_3* named = nullptr;
    OrvMoAttributeValueResult_3 result = {};
    OrvMoAttributeValuesResult_3 results = {};
    const char* names[] = {attrName, nullptr};
    EXPECT_CALL(bound.object(), setMoAttribute(tx, dn, attrName, &value)).WillOnce(Return(1));
    EXPECT_CALL(bound.object(), getMoAttribute(tx, dn, attrName, &result)).WillOnce(Return(2));
    EXPECT_CALL(bound.object(), getMoAttributes(tx, dn, names, &results)).WillOnce(Return(3));
    EXPECT_CALL(bound.object(), createMo(tx, dn, name, attrName, attrValue, &named))
        .WillOnce(Return(4));
    EXPECT_CALL(bound.object(), deleteMo(tx, dn)).WillOnce(Return(5));
    EXPECT_CALL(bound.object(), action(tx, dn, name, &named, &result)).WillOnce(Return(6));
    EXPECT_EQ(table.setMoAttribute(tx, dn, attrName, &value), 1);
    EXPECT_EQ(table.getMoAttribute(tx, dn, attrName, &result), 2);
    EXPECT_EQ(table.getMoAttributes(tx, dn, names, &results), 3);
    EXPECT_EQ(table.createMo(tx, dn, name, attrName, attrValue, &named), 4);
    EXPECT_EQ(table.deleteMo(tx, dn), 5);
    EXPECT_EQ(table.action(tx, dn, name, &named, &result), 6);
}

TEST(ManagedObject3Binder, TreeSlots_ReachTheirMembers) {
    Bound3 bound;
    auto& table = bound.table();
    unsigned long long number = 0;
    bool exists = false;
    char* text = nullptr;
    EXPECT_CALL(bound.object(), newMoIterator(tx, dn, name, &number)).WillOnce(Return(1));
    EXPECT_CALL(bound.object(), nextMo(handle, &text)).WillOnce(Return(2));
    EXPECT_CALL(bound.object(), finalizeMoIterator(handle)).WillOnce(Return(3));
    EXPECT_CALL(bound.object(), existsMo(tx, dn, &exists)).WillOnce(Return(4));
    EXPECT_CALL(bound.object(), countMoChildren(tx, dn, name, &number)).WillOnce(Return(5));
    EXPECT_EQ(table.newMoIterator(tx, dn, name, &number), 1);
    EXPECT_EQ(table.nextMo(handle, &text), 2);
    EXPECT_EQ(table.finalizeMoIterator(handle), 3);
    EXPECT_EQ(table.existsMo(tx, dn, &exists), 4);
    EXPECT_EQ(table.countMoChildren(tx, dn, name, &number), 5);
}

TEST(ManagedObject3Binder, Slots_ExceptionOfTheMember_IsAnsweredWithFailure) {
    Bound3 bound;
    auto& table = bound.table();
    const std::runtime_error thrown("thrown");
    EXPECT_CALL(bound.object(), setMoAttribute).WillOnce(Throw(thrown));
    EXPECT_CALL(bound.object(), getMoAttribute).WillOnce(Throw(thrown));
    EXPECT_CALL(bound.object(), getMoAttributes).WillOnce(Throw(thrown));
    EXPECT_CALL(bound.object(), newMoIterator).WillOnce(Throw(thrown));
    EXPECT_CALL(bound.object(), nextMo).WillOnce(Throw(thrown));
    EXPECT_CALL(bound.object(), createMo).WillOnce(Throw(thrown));
    EXPECT_CALL(bound.object(), deleteMo).WillOnce(Throw(thrown));
    EXPECT_CALL(bound.object(), action).WillOnce(Throw(thrown));
    EXPECT_CALL(bound.object(), finalizeMoIterator).WillOnce(Throw(thrown));
    EXPECT_CALL(bound.object(), existsMo).WillOnce(Throw(thrown));
    EXPECT_CALL(bound.object(), countMoChildren).WillOnce(Throw(thrown));
    EXPECT_EQ(table.setMoAttribute(1, dn, attrName, nullptr), OrvFailure);
    EXPECT_EQ(table.getMoAttribute(1, dn, attrName, nullptr), OrvFailure);
    EXPECT_EQ(table.getMoAttributes(1, dn, nullptr, nullptr), OrvFailure);
    EXPECT_EQ(table.newMoIterator(1, dn, name, nullptr), OrvFailure);
    EXPECT_EQ(table.nextMo(1, nullptr), OrvFailure);
    EXPECT_EQ(table.createMo(1, dn, name, attrName, attrValue, nullptr), OrvFailure);
    EXPECT_EQ(table.deleteMo(1, dn), OrvFailure);
    EXPECT_EQ(table.action(1, dn, name, nullptr, nullptr), OrvFailure);
    EXPECT_EQ(table.finalizeMoIterator(1), OrvFailure);
    EXPECT_EQ(table.existsMo(1, dn, nullptr), OrvFailure);
    EXPECT_EQ(table.countMoChildren(1, dn, name, nullptr), OrvFailure);
}

TEST(ManagedObject3_1Binder, Slot_ReachesItsMember) {
    Bound3_1 bound;
    expectIdentity(bound.table());
    VekMoNamedAttributeValueContainer_3* attributes = nullptr;
    EXPECT_CALL(bound.object(), setMoAttributes(tx, dn, &attributes)).WillOnce(Return(code));
    EXPECT_EQ(bound.table().setMoAttributes(tx, dn, &attributes), code);
}

TEST(ManagedObject3_1Binder, Slot_ExceptionOfTheMember_IsAnsweredWithFailure) {
    Bound3_1 bound;
    EXPECT_CALL(bound.object(), setMoAttributes).WillOnce(Throw(std::runtime_error("thrown")));
    EXPECT_EQ(bound.table().setMoAttributes(tx, dn, nullptr), OrvFailure);
}

TEST(Binders, NullArguments_AreHandedOnUntested) {
    Bound3 bound;
    EXPECT_CALL(bound.object(), setMoAttribute(0, nullptr, nullptr, nullptr)).WillOnce(Return(0));
    EXPECT_EQ(bound.table().setMoAttribute(0, nullptr, nullptr, nullptr), OrvOk);
}
