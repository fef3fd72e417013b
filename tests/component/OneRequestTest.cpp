// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// A client's write of a reference, from its table slot to the end of the transaction: each call
// that the host gets, in its place, and none besides.

#include "Network.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

using namespace Scripted;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

using Calls = std::vector<std::string>;

Calls inOrder(std::initializer_list<Calls> parts) {
    Calls all;
    for (const Calls& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

const Calls kJoin = {"Transaction.join(1, OrvOamSpiTransactionalResource)"};

Calls classOfDn(const std::string& dn) {
    return {"Model.getMocFromDn('" + dn + "', 1)"};
}

/// The bidirectional associations of a class: there is one.
Calls associationsOf(const std::string& moc) {
    return {"Model.getFirstBiDirAssociation('" + moc + "')",
            "Model.getNextBiDirAssociation('Unit.cells<->Cell.unit', '" + moc + "')"};
}

const Calls kBothEnds = {"Model.getFirstEnd('Unit.cells<->Cell.unit')",
                         "Model.getSecondEnd('Unit.cells<->Cell.unit')",
                         "Model.getEndMoc('unit@Unit')", "Model.getEndMoc('cells@Cell')"};

Calls nameOfEnd(const std::string& end) {
    return {"Model.getEndGeneralProperties('" + end + "')",
            "Model.getGeneralStringProperty('properties of " + end + "', 0)"};
}

/// Which end lies at the unit, and what the other one is called.
const Calls kEndsSeenFromTheUnit = inOrder({kBothEnds,
                                            nameOfEnd("unit@Unit"),
                                            {"Model.getFirstEnd('Unit.cells<->Cell.unit')",
                                             "Model.getSecondEnd('Unit.cells<->Cell.unit')"},
                                            nameOfEnd("cells@Cell"),
                                            {"Model.getEndMoc('cells@Cell')"}});

/// The back-pointers' work before the far sides of a written attribute of unit 7 are edited.
Calls whatCameAndWent(const std::string& attribute) {
    return inOrder(
        {classOfDn("ManagedElement=1,Unit=7"),
         associationsOf("Unit"),
         {"VekRouter3.getMoAttribute(1, 'ManagedElement=1,Unit=7', '" + attribute + "')"},
         kEndsSeenFromTheUnit});
}

const Calls kUnit7IsAddedToCell1 =
    inOrder({classOfDn("ManagedElement=1,Cell=1"),
             nameOfEnd("unit@Unit"),
             {"VekRouter3.existsMo(1, 'ManagedElement=1,Cell=1')",
              "VekRouter3.getMoAttribute(1, 'ManagedElement=1,Cell=1', 'unit')",
              "VekRouter3.setMoAttribute(1, 'ManagedElement=1,Cell=1', 'unit', "
              "MoRef['ManagedElement=1,Unit=7'])",
              "Producer.release('ManagedElement=1,Cell=1.unit')"}});

/// Is the attribute the end of a unidirectional association? The only one of the class is `site`.
const Calls kIsItTheSite =
    inOrder({classOfDn("ManagedElement=1,Unit=7"),
             {"Model.getFirstUniDirAssociation('Unit')", "Model.getUniDirEnd('Unit.site->Site')",
              "Model.getEndStringProperty('site@Site', 0)"}});

/// All that the bookkeeping asks and does when unit 7 begins to use cell 1.
const Calls kCell1IsUsed = inOrder({whatCameAndWent("cells"),
                                    kUnit7IsAddedToCell1,
                                    {"Producer.release('ManagedElement=1,Unit=7.cells')"},
                                    kIsItTheSite,
                                    {"Model.getNextUniDirAssociation('Unit.site->Site')"}});

const Calls kCell1IsPassedOn = {"Router3.setMoAttribute(1, 'ManagedElement=1,Unit=7', 'cells', "
                                "MoRef['ManagedElement=1,Cell=1'])"};

Calls nameOfAttribute(const std::string& attribute) {
    return {"Model.getAttributeGeneralProperties('" + attribute + "')",
            "Model.getGeneralStringProperty('properties of " + attribute + "', 0)"};
}

Calls attributeIsPassedOver(const std::string& attribute) {
    return inOrder({nameOfAttribute(attribute), {"Model.getNextAttribute('" + attribute + "')"}});
}

/// The attribute \p name of \p moc and its type, reached over the attributes in front of it.
Calls typeOf(const std::string& moc, const std::vector<std::string>& inFront,
             const std::string& name) {
    Calls calls = {"Model.getFirstAttribute('" + moc + "')"};
    for (const std::string& attribute : inFront) {
        calls = inOrder({calls, attributeIsPassedOver(attribute)});
    }
    return inOrder(
        {calls,
         nameOfAttribute(name),
         {"Model.getAttributeType('" + name + "')", "Model.getTypeCode('type of " + name + "')"}});
}

/// A pair of a DN and an attribute is examined: it is there, and its number of values is allowed.
Calls valueIsRead(const std::string& dn, const std::string& attribute, const Calls& type,
                  const std::string& typeName) {
    return inOrder({{"VekRouter3.existsMo(1, '" + dn + "')",
                     "VekRouter3.getMoAttribute(1, '" + dn + "', '" + attribute + "')"},
                    classOfDn(dn),
                    type,
                    {"Model.getTypeIntProperty('type of " + typeName + "', 0)",
                     "Model.getTypeIntProperty('type of " + typeName + "', 1)"}});
}

Calls endIsWithinItsBounds(const std::string& end) {
    return {"Model.getEndIntProperty('" + end + "', 0)",
            "Model.getEndIntProperty('" + end + "', 1)",
            "Model.getEndStringProperty('" + end + "', 1)",
            "Model.getEndStringProperty('" + end + "', 0)"};
}

Calls nameOfClass(const std::string& moc) {
    return {"Model.getMocGeneralProperties('" + moc + "')",
            "Model.getGeneralStringProperty('properties of " + moc + "', 0)"};
}

/// The classes of the values are compared with \p declared, the class that the attribute refers to.
Calls valuesAreOf(const std::string& dn, const Calls& type, const std::string& typeName,
                  const std::string& declared, const std::vector<std::string>& values) {
    Calls calls = inOrder({classOfDn(dn),
                           type,
                           {"Model.getReferencedMoc('type of " + typeName + "')"},
                           nameOfClass(declared)});
    for (const std::string& value : values) {
        calls = inOrder({calls, classOfDn(value), nameOfClass(declared)});
    }
    return calls;
}

const Calls kTypeOfUnitOfCell = typeOf("Cell", {}, "Cell.unit");
const Calls kTypeOfCells = typeOf("Unit", {"Unit.label"}, "Unit.cells");
const Calls kTypeOfSite = typeOf("Unit", {"Unit.label", "Unit.cells"}, "Unit.site");

const Calls kCell1IsJudged = inOrder(
    {valueIsRead("ManagedElement=1,Cell=1", "unit", kTypeOfUnitOfCell, "Cell.unit"),
     associationsOf("Cell"),
     kBothEnds,
     {"Model.getFirstEnd('Unit.cells<->Cell.unit')", "Model.getEndStringProperty('unit@Unit', 0)",
      "Model.getEndAttribute('cells@Cell')", "Model.getAttributeMoc('Unit.cells')"},
     classOfDn("ManagedElement=1,Unit=7"),
     endIsWithinItsBounds("unit@Unit"),
     valuesAreOf("ManagedElement=1,Cell=1", kTypeOfUnitOfCell, "Cell.unit", "Unit",
                 {"ManagedElement=1,Unit=7"}),
     {"Producer.release('ManagedElement=1,Cell=1.unit')"}});

/// The other end, seen from the unit, bears the name of the attribute if there is more to ask.
const Calls kOtherEndSeenFromTheUnit = inOrder(
    {kBothEnds,
     {"Model.getFirstEnd('Unit.cells<->Cell.unit')", "Model.getSecondEnd('Unit.cells<->Cell.unit')",
      "Model.getEndStringProperty('cells@Cell', 0)"}});

const Calls kCellsOfUnit7AreJudged =
    inOrder({valueIsRead("ManagedElement=1,Unit=7", "cells", kTypeOfCells, "Unit.cells"),
             associationsOf("Unit"),
             kOtherEndSeenFromTheUnit,
             {"Model.getEndAttribute('unit@Unit')", "Model.getAttributeMoc('Cell.unit')"},
             classOfDn("ManagedElement=1,Cell=1"),
             endIsWithinItsBounds("cells@Cell"),
             valuesAreOf("ManagedElement=1,Unit=7", kTypeOfCells, "Unit.cells", "Cell",
                         {"ManagedElement=1,Cell=1"}),
             {"Producer.release('ManagedElement=1,Unit=7.cells')"}});

/// The attribute of no association that is followed on both sides: only its values' class counts.
const Calls kSiteOfUnit7IsJudged =
    inOrder({valueIsRead("ManagedElement=1,Unit=7", "site", kTypeOfSite, "Unit.site"),
             associationsOf("Unit"),
             kOtherEndSeenFromTheUnit,
             valuesAreOf("ManagedElement=1,Unit=7", kTypeOfSite, "Unit.site", "Site",
                         {"ManagedElement=1,Site=1", "ManagedElement=1,Site=1"}),
             {"Producer.release('ManagedElement=1,Unit=7.site')"}});

/// The second validator: what was recorded for the site, against the end's bounds.
const Calls kRecordedSitesAreCounted =
    inOrder({classOfDn("ManagedElement=1,Site=1"),
             classOfDn("ManagedElement=1,Site=1"),
             {"Model.getUniDirEnd('Unit.site->Site')", "Model.getEndStringProperty('site@Site', 0)",
              "Model.getEndMoc('site@Site')"},
             nameOfClass("Site"),
             {"Model.getEndIntProperty('site@Site', 0)", "Model.getEndIntProperty('site@Site', 1)",
              "Model.getNextUniDirAssociation('Unit.site->Site')"}});

const std::string kTooManySites =
    "Attribute site in ManagedElement=1,Unit=7 contains 2 Site which is not within cardinality "
    "range (0..1).";

}

class OneRequest : public Network {
protected:
    OrvReturnT useCell1() const { return client().set(1, unit("7"), "cells", refs({cell("1")})); }

    OrvReturnT standOnOneSiteTwice() const {
        return client().set(1, unit("7"), "site", refs({site("1"), site("1")}));
    }
};

TEST_F(OneRequest, WriteOfAReference_EveryCallInItsPlaceAndNoOther) {
    EXPECT_EQ(useCell1(), OrvOk);
    EXPECT_THAT(host.calls(), ElementsAreArray(inOrder({kJoin, kCell1IsUsed, kCell1IsPassedOn})));
}

TEST_F(OneRequest, Intercepted_OnlyTheLastCallIsAnother) {
    host.interceptor("ManagedElement,Unit");
    host.when("Interceptor.setMoAttribute").fails(-42);
    EXPECT_EQ(useCell1(), -42);
    EXPECT_THAT(host.calls(),
                ElementsAreArray(inOrder(
                    {kJoin,
                     kCell1IsUsed,
                     {"Interceptor.setMoAttribute('ManagedElement,Unit', 1, "
                      "'ManagedElement=1,Unit=7', 'cells', MoRef['ManagedElement=1,Cell=1'])"}})));
}

TEST_F(OneRequest, FarSideNotThereYet_IsLookedForAndNotTouched) {
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("9")})), OrvOk);
    EXPECT_THAT(host.calls(), ElementsAreArray(inOrder(
                                  {kJoin,
                                   whatCameAndWent("cells"),
                                   classOfDn("ManagedElement=1,Cell=9"),
                                   nameOfEnd("unit@Unit"),
                                   {"VekRouter3.existsMo(1, 'ManagedElement=1,Cell=9')",
                                    "Producer.release('ManagedElement=1,Unit=7.cells')"},
                                   kIsItTheSite,
                                   {"Model.getNextUniDirAssociation('Unit.site->Site')",
                                    "Router3.setMoAttribute(1, 'ManagedElement=1,Unit=7', 'cells', "
                                    "MoRef['ManagedElement=1,Cell=9'])"}})));
}

TEST_F(OneRequest, SecondWriteOfTheTransaction_OneSidedReference_IsRecordedOnly) {
    ASSERT_EQ(useCell1(), OrvOk);
    host.forget();
    EXPECT_EQ(standOnOneSiteTwice(), OrvOk);
    EXPECT_THAT(host.calls(),
                ElementsAreArray(
                    inOrder({whatCameAndWent("site"),
                             {"Producer.release('ManagedElement=1,Unit=7.site')"},
                             kIsItTheSite,
                             {"Router3.setMoAttribute(1, 'ManagedElement=1,Unit=7', 'site', "
                              "MoRef['ManagedElement=1,Site=1', 'ManagedElement=1,Site=1'])"}})));
}

TEST_F(OneRequest, Validate_ThePairsInTheirOrderAndThenTheTree) {
    ASSERT_EQ(useCell1(), OrvOk);
    ASSERT_EQ(standOnOneSiteTwice(), OrvOk);
    host.forget();
    bool result = true;
    EXPECT_EQ(host.resource().validate(1, &result), OrvOk);
    EXPECT_FALSE(result);
    EXPECT_THAT(host.calls(), ElementsAreArray(inOrder(
                                  {kCell1IsJudged,
                                   kCellsOfUnit7AreJudged,
                                   kSiteOfUnit7IsJudged,
                                   kRecordedSitesAreCounted,
                                   {"ThreadContext.addMessage(1, '" + kTooManySites + "')"}})));
    EXPECT_THAT(host.messages(), ElementsAre(kTooManySites));
}

TEST_F(OneRequest, Validate_AllWell_SaysSoWithoutAWord) {
    ASSERT_EQ(useCell1(), OrvOk);
    host.forget();
    bool result = false;
    EXPECT_EQ(host.resource().validate(1, &result), OrvOk);
    EXPECT_TRUE(result);
    EXPECT_THAT(host.calls(), ElementsAreArray(inOrder({kCell1IsJudged, kCellsOfUnit7AreJudged})));
    EXPECT_THAT(host.messages(), IsEmpty());
}

TEST_F(OneRequest, Finish_CallsNobodyAndLeavesNothingOfTheTransaction) {
    ASSERT_EQ(useCell1(), OrvOk);
    ASSERT_EQ(standOnOneSiteTwice(), OrvOk);
    ASSERT_EQ(client().set(1, unit("8"), "cells", refs({cell("9")})), OrvOk);
    const auto iterator = client().open(1, kRoot, "Unit");
    host.forget();
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    EXPECT_THAT(host.calls(), IsEmpty());

    EXPECT_EQ(client().next(iterator.thing).code, OrvNotActive);
    EXPECT_TRUE(validate(1)) << "the recorded site is forgotten";
    host.forget();
    EXPECT_EQ(client().create(1, kRoot, "Cell", "cellId", "9"), OrvOk);
    EXPECT_THAT(host.calls(), ElementsAre(kJoin.front(), "Router3.createMo(1, 'ManagedElement=1', "
                                                         "'Cell', 'cellId', '9', {})"))
        << "nobody waits for the cell any more";
}
