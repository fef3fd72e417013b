// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_UNIT_ORV_COMMON_SERVEDMOCKS_H
#define ORV_TESTS_UNIT_ORV_COMMON_SERVEDMOCKS_H

#include "OrvInterfaceBinders.h"

#include <gmock/gmock.h>

/// One class for each table that a binder can serve, with a member for each slot.

struct ServedResource {
    MOCK_METHOD(OrvReturnT, join, (unsigned long));
    MOCK_METHOD(OrvReturnT, prepare, (unsigned long));
    MOCK_METHOD(OrvReturnT, commit, (unsigned long));
    MOCK_METHOD(OrvReturnT, abort, (unsigned long));
    MOCK_METHOD(OrvReturnT, finish, (unsigned long));
    MOCK_METHOD(OrvReturnT, validate, (unsigned long, bool*));
};

struct ServedObject1 {
    using Container = OrvMoAttributeValueContainer;
    MOCK_METHOD(OrvReturnT, setMoAttribute,
                (unsigned long, const char*, const char*, const Container*));
    MOCK_METHOD(OrvReturnT, getMoAttribute, (unsigned long, const char*, const char*, Container**));
    MOCK_METHOD(OrvReturnT, newMoIterator, (unsigned long, const char*, const char*, void**));
    MOCK_METHOD(OrvReturnT, nextMo, (void*, char**));
    MOCK_METHOD(OrvReturnT, createMo,
                (unsigned long, const char*, const char*, const char*, const char*));
    MOCK_METHOD(OrvReturnT, deleteMo, (unsigned long, const char*));
    MOCK_METHOD(OrvReturnT, action,
                (unsigned long, const char*, const char*, Container**, Container**));
};

struct ServedObject3 {
    using Container = OrvMoAttributeValueContainer_3;
    using Named = OrvMoNamedAttributeValueContainer_3;
    using Result = OrvMoAttributeValueResult_3;
    using Results = OrvMoAttributeValuesResult_3;
    MOCK_METHOD(OrvReturnT, setMoAttribute,
                (unsigned long, const char*, const char*, const Container*));
    MOCK_METHOD(OrvReturnT, getMoAttribute, (unsigned long, const char*, const char*, Result*));
    MOCK_METHOD(OrvReturnT, getMoAttributes, (unsigned long, const char*, const char**, Results*));
    MOCK_METHOD(OrvReturnT, newMoIterator,
                (unsigned long, const char*, const char*, unsigned long long*));
    MOCK_METHOD(OrvReturnT, nextMo, (unsigned long long, char**));
    MOCK_METHOD(OrvReturnT, createMo,
                (unsigned long, const char*, const char*, const char*, const char*, Named**));
    MOCK_METHOD(OrvReturnT, deleteMo, (unsigned long, const char*));
    MOCK_METHOD(OrvReturnT, action, (unsigned long, const char*, const char*, Named**, Result*));
    MOCK_METHOD(OrvReturnT, finalizeMoIterator, (unsigned long long));
    MOCK_METHOD(OrvReturnT, existsMo, (unsigned long, const char*, bool*));
    MOCK_METHOD(OrvReturnT, countMoChildren,
                (unsigned long, const char*, const char*, unsigned long long*));
};

struct ServedObject3_1 {
    MOCK_METHOD(OrvReturnT, setMoAttributes,
                (unsigned long, const char*, VekMoNamedAttributeValueContainer_3**));
};

#endif
