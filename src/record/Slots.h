// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_SLOTS_H
#define ORV_RECORD_SLOTS_H

#include "Codecs.h"
#include "OrvOamSpiManagedObject_1.h"
#include "OrvOamSpiManagedObject_3.h"
#include "OrvOamSpiTransactionalResource_2.h"
#include "VekMgmtSpiThreadContext_2.h"
#include "VekOamSpiManagedObject_3_1.h"
#include "VekOamSpiModelRepository_4.h"

/// \file
/// The slots of all tables, each with its name and the codecs of its arguments, in their order. The
/// recorder and the player are both made from these lists. The calls without a list, which carry
/// tables, are those of Recording.h: Life, Portal, join, and Release.

namespace OrvRecord {

/// What is called. The numbers stand in recordings.
enum class Shape : std::uint8_t {
    Life = 1,
    Portal = 2,
    Mo1 = 3,
    Mo3 = 4,
    Mo3_1 = 5,
    Resource = 6,
    Transaction = 7,
    ThreadContext = 8,
    Model = 9,
    Interceptor = 10,
    Release = 11,
    Other = 12,
    ModelDnLookup = 32,
    ModelGeneralProperties = 33,
    ModelMocQueries = 35,
    ModelContainment = 36,
    ModelAssociationEnd = 37,
    ModelBiDirAssociation = 38,
    ModelUniDirAssociation = 39,
    ModelAttributeType = 40,
    ModelAttribute = 43,
    ModelReferenceType = 45
};

template <class Member>
struct MemberOf;
template <class T, class Function>
struct MemberOf<Function T::*> {
    using Table = T;
    using Fn = Function;
};

/// One slot: the member of its table, and the codecs.
template <auto Member, class... Codecs>
struct Slot {
    using Table = typename MemberOf<decltype(Member)>::Table;
    using Fn = typename MemberOf<decltype(Member)>::Fn;
    static constexpr auto member = Member;
};

template <class... Each>
struct SlotList {};

/// The slots of the table \p Table: its shape, the names of the slots, and their list.
template <class Table>
struct SlotsOf;

template <>
struct SlotsOf<OrvOamSpiManagedObject_1> {
    using T = OrvOamSpiManagedObject_1;
    static constexpr Shape shape = Shape::Mo1;
    static constexpr const char* name = "OrvOamSpiManagedObject 1";
    static constexpr const char* names[] = {"setMoAttribute", "getMoAttribute", "newMoIterator",
                                            "nextMo",         "createMo",       "deleteMo",
                                            "action"};
    using List = SlotList<
        Slot<&T::setMoAttribute, Number, Text, Text, Value>,
        Slot<&T::getMoAttribute, Number, Text, Text, OutValue>,
        Slot<&T::newMoIterator, Number, Text, Text, OutHandle>, Slot<&T::nextMo, Handle, OutText>,
        Slot<&T::createMo, Number, Text, Text, Text, Text>, Slot<&T::deleteMo, Number, Text>,
        Slot<&T::action, Number, Text, Text, Values, OutValue>>;
};

template <>
struct SlotsOf<OrvOamSpiManagedObject_3> {
    using T = OrvOamSpiManagedObject_3;
    static constexpr Shape shape = Shape::Mo3;
    static constexpr const char* name = "OrvOamSpiManagedObject 3";
    static constexpr const char* names[] = {
        "setMoAttribute", "getMoAttribute", "getMoAttributes", "newMoIterator",      "nextMo",
        "createMo",       "deleteMo",       "action",          "finalizeMoIterator", "existsMo",
        "countMoChildren"};
    using List =
        SlotList<Slot<&T::setMoAttribute, Number, Text, Text, Value>,
                 Slot<&T::getMoAttribute, Number, Text, Text, OutResult>,
                 Slot<&T::getMoAttributes, Number, Text, Texts, OutResults>,
                 Slot<&T::newMoIterator, Number, Text, Text, OutHandle>,
                 Slot<&T::nextMo, Handle, OutText>,
                 Slot<&T::createMo, Number, Text, Text, Text, Text, NamedValues>,
                 Slot<&T::deleteMo, Number, Text>,
                 Slot<&T::action, Number, Text, Text, NamedValues, OutResult>,
                 Slot<&T::finalizeMoIterator, Handle>, Slot<&T::existsMo, Number, Text, OutFlag>,
                 Slot<&T::countMoChildren, Number, Text, Text, OutNumber>>;
};

template <>
struct SlotsOf<VekOamSpiManagedObject_3_1> {
    using T = VekOamSpiManagedObject_3_1;
    static constexpr Shape shape = Shape::Mo3_1;
    static constexpr const char* name = "VekOamSpiManagedObject 3_1";
    static constexpr const char* names[] = {"setMoAttributes"};
    using List = SlotList<Slot<&T::setMoAttributes, Number, Text, NamedValues>>;
};

template <>
struct SlotsOf<OrvOamSpiTransactionalResource_2> {
    using T = OrvOamSpiTransactionalResource_2;
    static constexpr Shape shape = Shape::Resource;
    static constexpr const char* name = "OrvOamSpiTransactionalResource 2";
    static constexpr const char* names[] = {"join",  "prepare", "commit",
                                            "abort", "finish",  "validate"};
    using List = SlotList<Slot<&T::join, Number>, Slot<&T::prepare, Number>,
                          Slot<&T::commit, Number>, Slot<&T::abort, Number>,
                          Slot<&T::finish, Number>, Slot<&T::validate, Number, OutFlag>>;
};

template <>
struct SlotsOf<VekMgmtSpiThreadContext_2> {
    using T = VekMgmtSpiThreadContext_2;
    static constexpr Shape shape = Shape::ThreadContext;
    static constexpr const char* name = "VekMgmtSpiThreadContext 2";
    static constexpr const char* names[] = {"addMessage"};
    using List = SlotList<Slot<&T::addMessage, Number, Text>>;
};

template <>
struct SlotsOf<VekOamSpiMrDnLookup_4> {
    using T = VekOamSpiMrDnLookup_4;
    static constexpr Shape shape = Shape::ModelDnLookup;
    static constexpr const char* name = "VekOamSpiModelRepository 4";
    static constexpr const char* names[] = {"getMocFromDn"};
    using List = SlotList<Slot<&T::getMocFromDn, Text, Number, OutNumber>>;
};

template <>
struct SlotsOf<VekOamSpiMrGeneralProperties_4> {
    using T = VekOamSpiMrGeneralProperties_4;
    static constexpr Shape shape = Shape::ModelGeneralProperties;
    static constexpr const char* name = "VekOamSpiModelRepository 4";
    static constexpr const char* names[] = {"getGeneralStringProperty"};
    using List = SlotList<Slot<&T::getGeneralStringProperty, Number, Number, OutText>>;
};

template <>
struct SlotsOf<VekOamSpiMrMocQueries_4> {
    using T = VekOamSpiMrMocQueries_4;
    static constexpr Shape shape = Shape::ModelMocQueries;
    static constexpr const char* name = "VekOamSpiModelRepository 4";
    static constexpr const char* names[] = {"getMocGeneralProperties", "getFirstAttribute",
                                            "getFirstContainment", "getFirstBiDirAssociation",
                                            "getFirstUniDirAssociation"};
    using List = SlotList<Slot<&T::getMocGeneralProperties, Number, OutNumber>,
                          Slot<&T::getFirstAttribute, Number, OutNumber>,
                          Slot<&T::getFirstContainment, Number, OutNumber>,
                          Slot<&T::getFirstBiDirAssociation, Number, OutNumber>,
                          Slot<&T::getFirstUniDirAssociation, Number, OutNumber>>;
};

template <>
struct SlotsOf<VekOamSpiMrContainment_4> {
    using T = VekOamSpiMrContainment_4;
    static constexpr Shape shape = Shape::ModelContainment;
    static constexpr const char* name = "VekOamSpiModelRepository 4";
    static constexpr const char* names[] = {"getContainedMoc", "getNextContainment"};
    using List = SlotList<Slot<&T::getContainedMoc, Number, OutNumber>,
                          Slot<&T::getNextContainment, Number, OutNumber>>;
};

template <>
struct SlotsOf<VekOamSpiMrAssociationEnd_4> {
    using T = VekOamSpiMrAssociationEnd_4;
    static constexpr Shape shape = Shape::ModelAssociationEnd;
    static constexpr const char* name = "VekOamSpiModelRepository 4";
    static constexpr const char* names[] = {
        "getEndMoc",          "getEndAttribute",  "getEndGeneralProperties", "getEndStringProperty",
        "getEndBoolProperty", "getEndIntProperty"};
    using List = SlotList<Slot<&T::getEndMoc, Number, OutNumber>,
                          Slot<&T::getEndAttribute, Number, OutNumber>,
                          Slot<&T::getEndGeneralProperties, Number, OutNumber>,
                          Slot<&T::getEndStringProperty, Number, Number, OutText>,
                          Slot<&T::getEndBoolProperty, Number, Number, OutFlag>,
                          Slot<&T::getEndIntProperty, Number, Number, OutNumber>>;
};

template <>
struct SlotsOf<VekOamSpiMrBiDirAssociation_4> {
    using T = VekOamSpiMrBiDirAssociation_4;
    static constexpr Shape shape = Shape::ModelBiDirAssociation;
    static constexpr const char* name = "VekOamSpiModelRepository 4";
    static constexpr const char* names[] = {"getFirstEnd", "getSecondEnd",
                                            "getNextBiDirAssociation"};
    using List = SlotList<Slot<&T::getFirstEnd, Number, OutNumber>,
                          Slot<&T::getSecondEnd, Number, OutNumber>,
                          Slot<&T::getNextBiDirAssociation, Number, Number, OutNumber>>;
};

template <>
struct SlotsOf<VekOamSpiMrUniDirAssociation_4> {
    using T = VekOamSpiMrUniDirAssociation_4;
    static constexpr Shape shape = Shape::ModelUniDirAssociation;
    static constexpr const char* name = "VekOamSpiModelRepository 4";
    static constexpr const char* names[] = {"getUniDirEnd", "getNextUniDirAssociation"};
    using List = SlotList<Slot<&T::getUniDirEnd, Number, OutNumber>,
                          Slot<&T::getNextUniDirAssociation, Number, OutNumber>>;
};

template <>
struct SlotsOf<VekOamSpiMrAttributeType_4> {
    using T = VekOamSpiMrAttributeType_4;
    static constexpr Shape shape = Shape::ModelAttributeType;
    static constexpr const char* name = "VekOamSpiModelRepository 4";
    static constexpr const char* names[] = {"getTypeCode", "getTypeIntProperty"};
    using List = SlotList<Slot<&T::getTypeCode, Number, OutNumber>,
                          Slot<&T::getTypeIntProperty, Number, Number, OutNumber>>;
};

template <>
struct SlotsOf<VekOamSpiMrAttribute_4> {
    using T = VekOamSpiMrAttribute_4;
    static constexpr Shape shape = Shape::ModelAttribute;
    static constexpr const char* name = "VekOamSpiModelRepository 4";
    static constexpr const char* names[] = {"getAttributeGeneralProperties", "getAttributeMoc",
                                            "getAttributeType", "getNextAttribute"};
    using List = SlotList<Slot<&T::getAttributeGeneralProperties, Number, OutNumber>,
                          Slot<&T::getAttributeMoc, Number, OutNumber>,
                          Slot<&T::getAttributeType, Number, OutNumber>,
                          Slot<&T::getNextAttribute, Number, OutNumber>>;
};

template <>
struct SlotsOf<VekOamSpiMrReferenceType_4> {
    using T = VekOamSpiMrReferenceType_4;
    static constexpr Shape shape = Shape::ModelReferenceType;
    static constexpr const char* name = "VekOamSpiModelRepository 4";
    static constexpr const char* names[] = {"getReferencedMoc"};
    using List = SlotList<Slot<&T::getReferencedMoc, Number, OutNumber>>;
};

/// The four operations of an interceptor that a component calls: slots like those of a table.
struct InterceptorSlots {
    OrvReturnT (*setMoAttribute)(unsigned long, const char*, const char*,
                                 const OrvMoAttributeValueContainer_3*);
    OrvReturnT (*getMoAttribute)(unsigned long, const char*, const char*,
                                 OrvMoAttributeValueResult_3*);
    OrvReturnT (*getMoAttributes)(unsigned long, const char*, const char**,
                                  OrvMoAttributeValuesResult_3*);
    OrvReturnT (*setMoAttributes)(unsigned long, const char*,
                                  VekMoNamedAttributeValueContainer_3**);
};

template <>
struct SlotsOf<InterceptorSlots> {
    using T = InterceptorSlots;
    static constexpr Shape shape = Shape::Interceptor;
    static constexpr const char* name = "interceptor";
    static constexpr const char* names[] = {"setMoAttribute", "getMoAttribute", "getMoAttributes",
                                            "setMoAttributes"};
    using List = SlotList<Slot<&T::setMoAttribute, Number, Text, Text, Value>,
                          Slot<&T::getMoAttribute, Number, Text, Text, OutResult>,
                          Slot<&T::getMoAttributes, Number, Text, Texts, OutResults>,
                          Slot<&T::setMoAttributes, Number, Text, NamedValues>>;
};

/// The sub-tables of the model.
template <class Visitor>
void forEachModelPart(const Visitor& visit) {
    using M = VekOamSpiModelRepository_4;
    visit(&M::dnLookup);
    visit(&M::generalProperties);
    visit(&M::mocQueries);
    visit(&M::containment);
    visit(&M::associationEnd);
    visit(&M::biDirAssociation);
    visit(&M::uniDirAssociation);
    visit(&M::attributeType);
    visit(&M::attribute);
    visit(&M::referenceType);
}

/// Calls \p visit with the type of each slot of \p Table and its number.
template <class Table, class Visitor>
void forEachSlot(const Visitor& visit) {
    const auto each = [&]<class... Slots>(SlotList<Slots...>) {
        std::uint8_t number = 0;
        (visit(Slots{}, number++), ...);
    };
    each(typename SlotsOf<Table>::List{});
}

/// Calls \p visit with a null pointer to the table whose slots have the shape \p shape, if it has a
/// list.
template <class Visitor>
void withSlots(Shape shape, const Visitor& visit) {
    const auto offer = [&]<class Table>(Table* table) {
        if (SlotsOf<Table>::shape == shape) {
            visit(table);
        }
    };
    offer(static_cast<OrvOamSpiManagedObject_1*>(nullptr));
    offer(static_cast<OrvOamSpiManagedObject_3*>(nullptr));
    offer(static_cast<VekOamSpiManagedObject_3_1*>(nullptr));
    offer(static_cast<OrvOamSpiTransactionalResource_2*>(nullptr));
    offer(static_cast<VekMgmtSpiThreadContext_2*>(nullptr));
    offer(static_cast<InterceptorSlots*>(nullptr));
    forEachModelPart([&]<class Part>(const Part* VekOamSpiModelRepository_4::*) {
        offer(static_cast<Part*>(nullptr));
    });
}

}

#endif
