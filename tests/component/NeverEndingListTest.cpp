// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Lists of the model that lead back into themselves. A walk is cut off after a million steps, says
// so once, and the operation answers as if the list had ended.

#include "Network.h"
#include "Swapped.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace Scripted;
using testing::IsEmpty;

namespace {

using Handle = Model::Handle;

// A model of one class, of which all MOs are, and one of each thing that belongs to a class: an
// attribute that nobody asks for, a containment, an association with itself through "unit" and
// "cells", and a reference "unit". It answers at once and writes nothing down.
enum Thing : Handle { Moc = 1, Attribute, Containment, BiDir, UniDir, FirstEnd, SecondEnd, Type };

/// Which list goes on for ever; 0: none.
Handle endless = 0;
long long steps = 0;

OrvReturnT nextOf(Handle current, Handle* next) {
    ++steps;
    if (current != endless) {
        return OrvNotExist;
    }
    *next = current;
    return OrvOk;
}

template <Handle Answer>
OrvReturnT give(Handle /*of*/, Handle* answer) {
    *answer = Answer;
    return OrvOk;
}

OrvReturnT mocFromDn(const char* /*dn*/, int /*flag*/, Handle* moc) {
    return give<Moc>(0, moc);
}

OrvReturnT itself(Handle object, Handle* properties) {
    *properties = object;
    return OrvOk;
}

OrvReturnT nameOf(Handle object, int /*identifier*/, const char** text) {
    *text = object == FirstEnd    ? "unit"
            : object == SecondEnd ? "cells"
            : object == Moc       ? "Unit"
                                  : "other";
    return OrvOk;
}

OrvReturnT noFlag(Handle /*end*/, int /*identifier*/, bool* flag) {
    *flag = false;
    return OrvOk;
}

OrvReturnT bound(Handle /*object*/, int identifier, long long* number) {
    *number = identifier == VekOamSpiMrLowerBound_4 ? 0 : 1000;
    return OrvOk;
}

OrvReturnT isReference(Handle /*type*/, int* code) {
    *code = VekOamSpiMrTypeMoRef_4;
    return OrvOk;
}

OrvReturnT nextBiDir(Handle current, Handle /*moc*/, Handle* next) {
    return nextOf(current, next);
}

const VekOamSpiMrDnLookup_4 dnLookup = {nullptr, nullptr, mocFromDn};
const VekOamSpiMrGeneralProperties_4 generalProperties = {nameOf};
const VekOamSpiMrMocQueries_4 mocQueries = {
    itself,  nullptr,           nullptr, nullptr,     nullptr,     give<Attribute>,
    nullptr, give<Containment>, nullptr, give<BiDir>, give<UniDir>};
const VekOamSpiMrContainment_4 containment = {nullptr, nullptr, give<Moc>,
                                              nullptr, nullptr, nextOf};
const VekOamSpiMrAssociationEnd_4 associationEnd = {give<Moc>, give<Attribute>, itself,
                                                    nameOf,    noFlag,          bound};
const VekOamSpiMrBiDirAssociation_4 biDirAssociation = {nullptr, nullptr, give<FirstEnd>,
                                                        give<SecondEnd>, nextBiDir};
const VekOamSpiMrUniDirAssociation_4 uniDirAssociation = {nullptr, nullptr, give<FirstEnd>, nextOf};
const VekOamSpiMrAttributeType_4 attributeType = {nullptr, isReference, nullptr,
                                                  nullptr, nullptr,     bound};
const VekOamSpiMrAttribute_4 attribute = {itself, give<Moc>, give<Type>, nextOf};
const VekOamSpiMrReferenceType_4 referenceType = {give<Moc>};

VekOamSpiModelRepository_4 modelOfOneClass() {
    return {{"VekOamSpiModelRepositoryService", "VekOamSpiModelRepository", "4"},
            &dnLookup,
            &generalProperties,
            nullptr,
            &mocQueries,
            &containment,
            &associationEnd,
            &biDirAssociation,
            &uniDirAssociation,
            &attributeType,
            nullptr,
            nullptr,
            &attribute,
            nullptr,
            &referenceType};
}

// A router that has nothing: what a million associations ask, and for a million containments.
long long reads = 0;
long long iterators = 0;

OrvReturnT readNothing(unsigned long /*txHandle*/, const char* /*dn*/, const char* /*attrName*/,
                       OrvMoAttributeValueResult_3* /*result*/) {
    ++reads;
    return OrvNotExist;
}

OrvReturnT openNothing(unsigned long /*txHandle*/, const char* /*dn*/, const char* /*className*/,
                       unsigned long long* /*iterator*/) {
    ++iterators;
    return OrvNotExist;
}

constexpr long long kMostSteps = 1000000;

}

class NeverEndingList : public Network {
protected:
    NeverEndingList() {
        steps = 0;
        reads = 0;
        iterators = 0;
        host.logLevel(3);
    }
    ~NeverEndingList() override { endless = 0; }

    /// From here on the list of \p thing does not end; it does after its first one for 0.
    void goOnForEverWith(Handle thing) {
        endless = thing;
        steps = 0;
        reads = 0;
        iterators = 0;
        host.forget();
    }

    /// So many walks have been cut off since, and nothing else is worth a log.
    void expectCutOff(int walks) const {
        const std::vector<Orv::LogRecord> records = host.logRecords();
        const auto logs =
            std::count_if(records.begin(), records.end(), [](const Orv::LogRecord& record) {
                return record.form == Orv::LogRecord::Form::Log;
            });
        EXPECT_EQ(logs, walks) << testing::PrintToString(host.logs());
        for (const Orv::LogRecord& record : records) {
            EXPECT_EQ(record.level, 3);
        }
        // The first step of a list may count or not.
        EXPECT_GE(steps, walks * (kMostSteps - 1));
    }

    Swapped<VekOamSpiModelRepository_4> model{*modelRepositoryTable(), modelOfOneClass()};
};

// The attribute is not among those that the list goes through again and again.
TEST_F(NeverEndingList, Attributes_AreCutOffInEachCheckOfAValidation) {
    host.mo(unitInside("8")).with("unit", refs({}));
    for (const Handle list : {Handle{0}, Handle{Attribute}}) {
        goOnForEverWith(list);
        host.mo(unitInside("7")).with("cells", refs({}));
        EXPECT_EQ(client().set(1, unit("7"), "cells", refs({unit("8")})), OrvOk);
        EXPECT_TRUE(validate(1));
        // Two attributes have been written, and each is looked up for two checks.
        expectCutOff(list == 0 ? 0 : 4);
        EXPECT_EQ(host.resource().finish(1), OrvOk);
    }
    EXPECT_THAT(host.messages(), IsEmpty());
}

TEST_F(NeverEndingList, Containments_AreCutOffAndTheMoIsDeleted) {
    const Swapped open(vekRouter3Table()->newMoIterator, &openNothing);
    for (const Handle list : {Handle{0}, Handle{Containment}}) {
        goOnForEverWith(list);
        EXPECT_EQ(client().remove(1, unit(list == 0 ? "7" : "8")), OrvOk);
        expectCutOff(list == 0 ? 0 : 1);
        EXPECT_EQ(iterators, 1) << "one class, however often the list names it";
    }
    EXPECT_FALSE(host.world().exists(unitInside("7")));
    EXPECT_FALSE(host.world().exists(unitInside("8")));
}

TEST_F(NeverEndingList, BiDirAssociationsOfAWrittenMo_AreCutOffAndTheWriteIsDone) {
    for (const Handle list : {Handle{0}, Handle{BiDir}}) {
        goOnForEverWith(list);
        EXPECT_EQ(client().set(1, unit("7"), "label", refs({unit("8")})), OrvOk);
        expectCutOff(list == 0 ? 0 : 1);
        EXPECT_TRUE(validate(1));
        expectCutOff(list == 0 ? 0 : 2);
        EXPECT_EQ(host.resource().finish(1), OrvOk);
    }
    EXPECT_THAT(host.messages(), IsEmpty());
    EXPECT_THAT(host.world().references(unitInside("7"), "label"),
                testing::ElementsAre(unitInside("8")));
}

TEST_F(NeverEndingList, BiDirAssociationsOfADeletedMo_AreCutOffAndTheMoIsDeleted) {
    const Swapped read(vekRouter3Table()->getMoAttribute, &readNothing);
    const Swapped open(vekRouter3Table()->newMoIterator, &openNothing);
    for (const Handle list : {Handle{0}, Handle{BiDir}}) {
        goOnForEverWith(list);
        EXPECT_EQ(client().remove(1, unit(list == 0 ? "7" : "8")), OrvOk);
        expectCutOff(list == 0 ? 0 : 1);
        EXPECT_EQ(reads, 2) << "both attributes of one association, however often it is listed";
    }
    EXPECT_FALSE(host.world().exists(unitInside("8")));
}

TEST_F(NeverEndingList, UniDirAssociations_AreCutOffAndNothingIsRecorded) {
    for (const Handle list : {Handle{0}, Handle{UniDir}}) {
        goOnForEverWith(list);
        EXPECT_EQ(client().set(1, unit("7"), "label", refs({unit("8")})), OrvOk);
        expectCutOff(list == 0 ? 0 : 1);
        EXPECT_TRUE(validate(1));
        expectCutOff(list == 0 ? 0 : 1);
        EXPECT_EQ(host.resource().finish(1), OrvOk);
    }
}

TEST_F(NeverEndingList, UniDirAssociationsOfAReference_AreCutOffInTheValidation) {
    for (const Handle list : {Handle{0}, Handle{UniDir}}) {
        goOnForEverWith(list);
        EXPECT_EQ(client().set(1, unit("7"), "unit", refs({unit("8")})), OrvOk);
        expectCutOff(0);
        EXPECT_TRUE(validate(1));
        expectCutOff(list == 0 ? 0 : 1);
        EXPECT_EQ(host.resource().finish(1), OrvOk);
    }
    EXPECT_THAT(host.messages(), IsEmpty());
}
