// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// createMo of version 3.

#include "Network.h"
#include "Records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

const std::string kJoin = "Transaction.join(1, OrvOamSpiTransactionalResource)";

}

class Create : public Network {
protected:
    /// A reference to a cell that does not exist yet makes the component wait for it.
    void waitFor(const std::string& cellName) {
        ASSERT_EQ(client().set(1, unit("7"), "cells", refs({cell(cellName)})), OrvOk);
        host.forget();
    }
};

TEST_F(Create, PlainAttributes_ReachTheRouterWithTheInternalParent) {
    EXPECT_EQ(client().create(1, kRoot, "Site", "siteId", "9", {{"label", strings({"x"})}}), OrvOk);
    EXPECT_THAT(milestones(), ElementsAre(kJoin, "Router3.createMo(1, 'ManagedElement=1', 'Site', "
                                                 "'siteId', '9', {label: String['x']})"));
}

TEST_F(Create, NotStarted_IsNotActive) {
    ASSERT_EQ(host.stopComponent(), OrvOk);
    EXPECT_EQ(client().create(1, kRoot, "Site", "siteId", "9"), OrvNotActive);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Create, ForeignParent_DoesNotExistAndDoesNotJoin) {
    EXPECT_EQ(client().create(1, kForeignDn, "Cell", "cellId", "9"), OrvNotExist);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Create, EmptyParent_IsServed) {
    EXPECT_EQ(client().create(1, "", "Plant", "plantId", "1"), OrvOk);
    EXPECT_THAT(milestones(),
                ElementsAre(kJoin, "Router3.createMo(1, '', 'Plant', 'plantId', '1', {})"));
}

TEST_F(Create, NullAttributes_TheRouterGetsAnEmptyArray) {
    EXPECT_EQ(client().create(1, kRoot, "Site", "siteId", "9"), OrvOk);
    const Call call = host.callRecords("Router3.").at(0);
    EXPECT_NE(call.arguments.at(5).address, nullptr);
    EXPECT_THAT(call.arguments.at(5).named, IsEmpty());
}

TEST_F(Create, EmptyArray_TheRouterGetsAnEmptyArray) {
    EXPECT_EQ(client().create(1, kRoot, "Site", "siteId", "9", {}), OrvOk);
    const Call call = host.callRecords("Router3.").at(0);
    EXPECT_NE(call.arguments.at(5).address, nullptr);
    EXPECT_THAT(call.arguments.at(5).named, IsEmpty());
}

TEST_F(Create, NamingValueThatLooksLikeADn_IsPassedAsItCame) {
    client().create(1, kRoot, "Site", "siteId", kRoot);
    EXPECT_THAT(host.calls("Router3."),
                ElementsAre("Router3.createMo(1, 'ManagedElement=1', 'Site', 'siteId', "
                            "'ManagedElement=paris', {})"));
}

TEST_F(Create, Values_AreConvertedToInternal) {
    client().create(1, kRoot, "Site", "siteId", "9",
                    {{"a", structs({{member("to", refs({cell("1")}))}})},
                     {"b", opaque(200, {1})},
                     {"c", none(OrvMoAttributeTypeMoRef_3)}});
    EXPECT_THAT(host.calls("Router3."),
                ElementsAre("Router3.createMo(1, 'ManagedElement=1', 'Site', 'siteId', '9', "
                            "{a: Struct[{to: MoRef['ManagedElement=1,Cell=1']}], b: Type200[1], "
                            "c: MoRef[]})"));
}

TEST_F(Create, References_TheBookkeepingComesAfterTheRouterInArrayOrder) {
    EXPECT_EQ(client().create(1, kRoot, "Unit", "unitId", "9",
                              {{"site", refs({site("1")})}, {"cells", refs({cell("1")})}}),
              OrvOk);
    EXPECT_THAT(milestones(),
                ElementsAre(kJoin,
                            "Router3.createMo(1, 'ManagedElement=1', 'Unit', 'unitId', '9', "
                            "{site: MoRef['ManagedElement=1,Site=1'], "
                            "cells: MoRef['ManagedElement=1,Cell=1']})",
                            "Model.getFirstBiDirAssociation('Unit')",
                            "Model.getFirstUniDirAssociation('Unit')",
                            "Model.getFirstBiDirAssociation('Unit')",
                            "VekRouter3.existsMo(1, 'ManagedElement=1,Cell=1')",
                            "VekRouter3.getMoAttribute(1, 'ManagedElement=1,Cell=1', 'unit')",
                            "VekRouter3.setMoAttribute(1, 'ManagedElement=1,Cell=1', 'unit', "
                            "MoRef['ManagedElement=1,Unit=9'])",
                            "Producer.release('ManagedElement=1,Cell=1.unit')",
                            "Model.getFirstUniDirAssociation('Unit')"));
}

TEST_F(Create, StructWithReferences_HasNoBookkeeping) {
    client().create(1, kRoot, "Unit", "unitId", "9",
                    {{"cells", structs({{member("to", refs({cell("1")}))}})}});
    EXPECT_THAT(host.calls("Model."), IsEmpty());
}

TEST_F(Create, RouterRefuses_JoinedAndNoBookkeeping) {
    waitFor("9");
    host.when("Router3.createMo").fails(-42);
    EXPECT_EQ(client().create(1, kRoot, "Cell", "cellId", "9", {{"unit", refs({unit("7")})}}), -42);
    EXPECT_THAT(host.calls("Model."), IsEmpty());
    EXPECT_THAT(host.calls("VekRouter3."), IsEmpty());
    EXPECT_EQ(client().create(2, kRoot, "Cell", "cellId", "9"), -42);
    EXPECT_THAT(host.calls("Transaction."),
                ElementsAre("Transaction.join(2, OrvOamSpiTransactionalResource)"));
}

TEST_F(Create, RouterThrows_IsAFailureAndNoBookkeeping) {
    host.when("Router3.createMo").throws(std::runtime_error("router"));
    EXPECT_EQ(client().create(1, kRoot, "Unit", "unitId", "9", {{"cells", refs({cell("1")})}}),
              OrvFailure);
    EXPECT_THAT(host.calls("Model."), IsEmpty());
}

TEST_F(Create, BookkeepingFails_IsNotSeen) {
    host.when("Model.getMocFromDn").fails(-42);
    EXPECT_EQ(client().create(1, kRoot, "Unit", "unitId", "9", {{"cells", refs({cell("1")})}}),
              OrvOk);
}

TEST_F(Create, BookkeepingThrows_IsAFailureWithTheMoCreated) {
    host.when("Model.getMocFromDn").once().throws(std::runtime_error("model"));
    EXPECT_EQ(client().create(1, kRoot, "Unit", "unitId", "9", {{"cells", refs({cell("1")})}}),
              OrvFailure);
    EXPECT_TRUE(host.world().exists(unitInside("9")));
}

TEST_F(Create, Interceptor_IsNotAsked) {
    host.interceptor("ManagedElement,Unit");
    host.interceptor("ManagedElement");
    EXPECT_EQ(client().create(1, kRoot, "Unit", "unitId", "9"), OrvOk);
    EXPECT_THAT(host.calls("Interceptor."), IsEmpty());
    EXPECT_EQ(host.calls("Router3.createMo").size(), 1U);
}

/// The two forms of the new DN: the one that the back-pointers get, and the one that the references
/// get.
struct Naming {
    std::string parent;
    std::string className;
    std::string attribute;
    std::string created;
    std::string plain;
};

void PrintTo(const Naming& naming, std::ostream* out) {
    *out << naming.created;
}

class CreatedDn : public Create, public testing::WithParamInterface<Naming> {};

TEST_P(CreatedDn, EachSubsystemGetsItsForm) {
    host.model().biDir({"unit", "cells"}, {"Cell", "other"}); // another class, with a small letter
    client().create(1, GetParam().parent, GetParam().className, GetParam().attribute, "9",
                    {{"cells", refs({})}});
    EXPECT_THAT(dnsLookedUp(),
                ElementsAre(quoted(GetParam().created.c_str()), quoted(GetParam().plain.c_str())));
}

INSTANTIATE_TEST_SUITE_P(
    Namings, CreatedDn,
    testing::Values(
        Naming{"Parent=1", "Unit", "unitId", "Parent=1,Unit=9", "Parent=1,Unit=9"},
        Naming{"Parent=1", "Unit", "label", "Parent=1,Unit.label=9", "Parent=1,Unit=9"},
        Naming{"Parent=1", "unit", "unitId", "Parent=1,unit=9", "Parent=1,unit=9"},
        Naming{"Parent=1", "Unit", "UnitId", "Parent=1,Unit.UnitId=9", "Parent=1,Unit=9"},
        Naming{"Parent=1", "Unit", "unitI", "Parent=1,Unit.unitI=9", "Parent=1,Unit=9"},
        Naming{"Parent=1", "Unit", "Id", "Parent=1,Unit.Id=9", "Parent=1,Unit=9"},
        Naming{"Parent=1", "Unit", "unitId2", "Parent=1,Unit.unitId2=9", "Parent=1,Unit=9"},
        Naming{kRoot, "Unit", "unitId", "ManagedElement=1,Unit=9", "ManagedElement=1,Unit=9"},
        Naming{"", "Unit", "unitId", ",Unit=9", ",Unit=9"},
        Naming{"", "Unit", "label", ",Unit.label=9", ",Unit=9"}));

// What others have waited for.

TEST_F(Create, AwaitedMo_GetsItsBackPointerAtOnce) {
    waitFor("9");
    EXPECT_EQ(client().create(1, kRoot, "Cell", "cellId", "9"), OrvOk);
    EXPECT_THAT(host.world().references(cellInside("9"), "unit"), ElementsAre(unitInside("7")));
    EXPECT_THAT(milestones(),
                ElementsAre("Router3.createMo(1, 'ManagedElement=1', 'Cell', 'cellId', '9', {})",
                            "VekRouter3.existsMo(1, 'ManagedElement=1,Cell=9')",
                            "VekRouter3.existsMo(1, 'ManagedElement=1,Cell=9')",
                            "VekRouter3.getMoAttribute(1, 'ManagedElement=1,Cell=9', 'unit')",
                            "VekRouter3.setMoAttribute(1, 'ManagedElement=1,Cell=9', 'unit', "
                            "MoRef['ManagedElement=1,Unit=7'])",
                            "Producer.release('ManagedElement=1,Cell=9.unit')"));
}

TEST_F(Create, NobodyWaits_TheRouterIsNotAskedAfterwards) {
    EXPECT_EQ(client().create(1, kRoot, "Cell", "cellId", "9"), OrvOk);
    EXPECT_THAT(host.calls("VekRouter3."), IsEmpty());
}

TEST_F(Create, AwaitedMoWithAnotherNamingAttribute_MatchesNothingThatWaits) {
    waitFor("9");
    EXPECT_EQ(client().create(1, kRoot, "Cell", "label", "9"), OrvOk);
    EXPECT_THAT(host.calls("VekRouter3."),
                ElementsAre("VekRouter3.existsMo(1, 'ManagedElement=1,Cell.label=9')"));
    EXPECT_THAT(host.world().references(cellInside("9"), "unit"), IsEmpty());
}

TEST_F(Create, AwaitedInAnotherTransaction_GetsNothing) {
    waitFor("9");
    EXPECT_EQ(client().create(2, kRoot, "Cell", "cellId", "9"), OrvOk);
    EXPECT_THAT(host.world().references(cellInside("9"), "unit"), IsEmpty());
}

TEST_F(Create, AwaitedTransactionFinished_GetsNothing) {
    waitFor("9");
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    EXPECT_EQ(client().create(1, kRoot, "Cell", "cellId", "9"), OrvOk);
    EXPECT_THAT(host.world().references(cellInside("9"), "unit"), IsEmpty());
}

TEST_F(Create, AwaitedTransactionFinishedAfterARestart_GetsNothing) {
    waitFor("9");
    ASSERT_EQ(host.stopComponent(), OrvOk); // the registry has no entry any more
    ASSERT_EQ(host.startComponent(), OrvOk);
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    EXPECT_EQ(client().create(1, kRoot, "Cell", "cellId", "9"), OrvOk);
    EXPECT_THAT(host.world().references(cellInside("9"), "unit"), IsEmpty());
}
