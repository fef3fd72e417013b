// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "audit/AssociationAudit.h"

#include "SampleModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OrvHost {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Kind = InstanceProblemKind;

NamedValue refs(std::string attribute, std::vector<Value> dns) {
    return {std::move(attribute), {ValueKind::MoRef, std::move(dns)}};
}

struct GivenObject {
    std::string dn;
    std::vector<NamedValue> attributes;
};

std::vector<InstanceProblem> audit(const std::vector<GivenObject>& objects) {
    const Model model = sampleModel();
    std::vector<Instance> instances;
    for (const GivenObject& object : objects) {
        instances.push_back({object.dn, object.attributes});
    }
    return auditAssociations(model, InstanceSpan(instances));
}

std::vector<Kind> kindsOf(const std::vector<InstanceProblem>& problems) {
    std::vector<Kind> kinds;
    for (const InstanceProblem& problem : problems) {
        kinds.push_back(problem.kind);
    }
    return kinds;
}

// The first step may have any value as long as its class is right, since clients name it
// differently from the router.
const std::string kCell = "Network=north,Node=1,Cell=1";
const std::string kAntenna = "Network=north,Node=1,Antenna=1";

}

TEST(AssociationAudit, BothSidesThere_IsInOrderWithoutParentsAndOtherAttributes) {
    EXPECT_THAT(
        audit({{kCell, {refs("antennas", {kAntenna})}}, {kAntenna, {refs("cell", {kCell})}}}),
        IsEmpty());
}

TEST(AssociationAudit, OneSided_IsReportedFromTheSideThatIsThere) {
    const auto problems =
        audit({{kCell, {refs("antennas", {})}}, {kAntenna, {refs("cell", {kCell})}}});
    ASSERT_THAT(kindsOf(problems), ElementsAre(Kind::MissingBackPointer));
    EXPECT_EQ(problems[0].dn, kAntenna);
    EXPECT_EQ(problems[0].attribute, "cell");
    EXPECT_EQ(problems[0].otherDn, kCell);
}

TEST(AssociationAudit, DanglingReference_IsReported) {
    EXPECT_THAT(kindsOf(audit({{kAntenna, {refs("cell", {kCell})}}})), ElementsAre(Kind::NoTarget));
}

TEST(AssociationAudit, NumberOutOfBounds_IsReported) {
    EXPECT_THAT(kindsOf(audit({{kAntenna, {refs("cell", {})}}})), ElementsAre(Kind::NoReference));
}

TEST(AssociationAudit, ForbiddenAndImpossibleClasses_AreReported) {
    EXPECT_THAT(kindsOf(audit({{kCell, {refs("antennas", {kCell, "Nothing=1"})}}})),
                ElementsAre(Kind::ForbiddenClass, Kind::NoTargetClass));
}

TEST(AssociationAudit, ReferenceGivenTwice_IsReported) {
    EXPECT_THAT(kindsOf(audit({{kCell, {refs("antennas", {kAntenna, kAntenna})}},
                               {kAntenna, {refs("cell", {kCell})}}})),
                ElementsAre(Kind::RepeatedTarget));
}

}
