// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ModelReader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using Handle = unsigned long long;

OrvReturnT mocOfDn(const char* dn, int flag, Handle* moc) {
    *moc = std::strlen(dn) * 100 + static_cast<Handle>(flag);
    return OrvOk;
}

OrvReturnT failsAndWritesNothing(Handle, Handle*) {
    return -42;
}

OrvReturnT endsAndWrites(Handle from, Handle* found) {
    *found = from + 1;
    return OrvNotExist;
}

OrvReturnT aByteThatIsNoBool(Handle, int, bool* flag) {
    const unsigned char byte = 6;
    std::memcpy(flag, &byte, sizeof(byte));
    return OrvOk;
}

TEST(ModelReader, AnAnswer_HoldsTheEntryTheCodeAndTheValue) {
    VekOamSpiMrDnLookup_4 lookup{};
    lookup.getMocFromDn = &mocOfDn;
    VekOamSpiModelRepository_4 table{};
    table.dnLookup = &lookup;
    const Orv::ModelAnswer<Handle> answer = Orv::ModelReader(table).mocOfDn("A=1");
    EXPECT_EQ(std::string(answer.entry), "getMocFromDn");
    EXPECT_TRUE(answer.isOffered);
    EXPECT_EQ(answer.code, OrvOk);
    EXPECT_EQ(answer.value, 301U);
}

TEST(ModelReader, AFunctionThatIsMissing_IsNotAskedAndCountsAsAFailure) {
    VekOamSpiModelRepository_4 table{};
    const Orv::ModelReader reader(table);
    EXPECT_FALSE(reader.endMoc(7).isOffered); // no sub-table
    const VekOamSpiMrAssociationEnd_4 ends{};
    table.associationEnd = &ends;
    const Orv::ModelAnswer<Handle> answer = reader.endMoc(7);
    EXPECT_EQ(std::string(answer.entry), "getEndMoc");
    EXPECT_FALSE(answer.isOffered);
    EXPECT_EQ(answer.code, OrvFailure);
    EXPECT_EQ(answer.value, 0U);
}

TEST(ModelReader, AStepThatWritesNothing_GivesBackWhatTheCallerHasGiven) {
    VekOamSpiMrMocQueries_4 queries{};
    queries.getFirstAttribute = &failsAndWritesNothing;
    VekOamSpiMrAttribute_4 attributes{};
    attributes.getNextAttribute = &endsAndWrites;
    VekOamSpiModelRepository_4 table{};
    table.mocQueries = &queries;
    table.attribute = &attributes;
    const Orv::ModelReader reader(table);
    EXPECT_EQ(reader.firstAttribute(3, 5).value, 5U);
    EXPECT_EQ(reader.firstAttribute(3).value, 0U);
    EXPECT_EQ(reader.firstAttribute(3).code, -42);
    EXPECT_EQ(reader.nextAttribute(7, 5).value, 8U); // also from the step that ends the list
    EXPECT_EQ(reader.nextAttribute(7, 5).code, OrvNotExist);
}

TEST(ModelReader, AFlagOfAHost_IsSetByAnyByteButZero) {
    VekOamSpiMrAssociationEnd_4 ends{};
    ends.getEndBoolProperty = &aByteThatIsNoBool;
    VekOamSpiModelRepository_4 table{};
    table.associationEnd = &ends;
    EXPECT_TRUE(Orv::ModelReader(table).endKeepsAtDelete(1).value);
}

}
