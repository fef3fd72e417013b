// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "client/edits/EditPlanner.h"

#include "MeIdTranslator.h"
#include "model/building/ModelBuilder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kSite = "Site=s";
constexpr const char* kMast = "Site=s,Mast=m";
constexpr const char* kOther = "Site=s,Mast=n";
constexpr const char* kUnit = "Site=s,Unit=u";
constexpr const char* kMissing = "Site=s,Unit=x";

AttributeValue text(const std::string& value) {
    return {ValueKind::String, {Value(value)}};
}

AttributeValue refs(const std::vector<std::string>& dns) {
    return {ValueKind::MoRef, std::vector<Value>(dns.begin(), dns.end())};
}

/// Objects in memory.
class MapState : public StateBefore {
public:
    std::map<std::string, std::map<std::string, AttributeValue>> objects;
    CancellationToken* cancelledByARead = nullptr; ///< of the values of kMast

    bool exists(const std::string& dn) override { return objects.count(dn) != 0; }

    std::vector<AttributeValue> attributes(const std::string& dn, const ClassDef& moc) override {
        if (cancelledByARead != nullptr && dn == kMast) {
            cancelledByARead->cancel();
        }
        std::vector<AttributeValue> values;
        for (const AttributeDef& def : moc.attributes) {
            const auto& all = objects.at(dn);
            const auto found = all.find(def.name);
            values.push_back(found != all.end() ? found->second
                             : def.defaultValue ? *def.defaultValue
                                                : AttributeValue{def.type.kind, {}});
        }
        return values;
    }

    std::vector<std::string> children(const std::string& dn,
                                      const std::string& className) override {
        const std::string prefix = (dn.empty() ? "" : dn + ",") + className + "=";
        std::vector<std::string> names;
        for (auto at = objects.lower_bound(prefix);
             at != objects.end() && at->first.compare(0, prefix.size(), prefix) == 0; ++at) {
            const std::string name = at->first.substr(prefix.size());
            if (name.find(',') == std::string::npos) {
                names.push_back(name);
            }
        }
        return names;
    }
};

class EditPlannerTest : public testing::Test {
protected:
    EditPlannerTest() {
        mState.objects = {{kSite, {}},
                          {kMast, {{"units", refs({kUnit})}}},
                          {kOther, {}},
                          {kUnit, {{"mast", refs({kMast})}, {"label", text("old")}}}};
    }

    static Model makeModel() {
        return ModelBuilder()
            .add(ClassDraft("Site").topLevel().key("siteId"))
            .add(ClassDraft("Mast")
                     .attribute(AttributeDraft::text("mastId").naming().checkedBy(
                         [](const std::string& name) {
                             return name == "M" ? std::string("it is reserved") : std::string();
                         }))
                     .attribute(AttributeDraft::reference("units", {"Unit"}).many())
                     .attribute(AttributeDraft::reference("owns", {"Unit"}).many()))
            .add(ClassDraft("Unit")
                     .key("unitId")
                     .attribute(AttributeDraft::text("label"))
                     .attribute(AttributeDraft::text("state").readOnly())
                     .attribute(AttributeDraft::text("need").mandatory())
                     .attribute(AttributeDraft::text("mode").defaultsTo(std::string("auto")))
                     .attribute(AttributeDraft::reference("mast", {"Mast"}))
                     .attribute(AttributeDraft::reference("near", {"Mast"}))
                     .attribute(AttributeDraft::reference("owners", {"Mast"}).many().readOnly()))
            .contain("Site", "Mast")
            .contain("Site", "Unit")
            .contain("Unit", "Unit")
            .biDir(ReferenceDraft("Unit", "mast"), ReferenceDraft("Mast", "units"))
            .biDir(ReferenceDraft("Mast", "owns").keepAtDelete(), ReferenceDraft("Unit", "owners"))
            .uniDir(ReferenceDraft("Unit", "near"), {"Mast"})
            .build();
    }

    /// The calls of the plan, one text each.
    std::vector<std::string> plan(const Wish& wish) {
        static const char* const kKinds[] = {"delete", "create", "set"};
        std::vector<std::string> texts;
        for (const PlannedCall& call : EditPlanner(mModel).plan(wish, mState).calls) {
            std::string line = std::string(kKinds[static_cast<int>(call.kind)]) + " " + call.dn;
            for (const NamedValue& named : call.attributes) {
                line += " " + named.first + "=[";
                for (const Value& one : named.second.values) {
                    line += (line.back() == '[' ? "" : " ") + toText(one);
                }
                line += "]";
            }
            texts.push_back(line);
        }
        return texts;
    }

    std::vector<std::string> problems(const Wish& wish) {
        std::vector<std::string> texts;
        try {
            EditPlanner(mModel).plan(wish, mState);
        } catch (const EditRefusedError& refusal) {
            for (const EditProblem& problem : refusal.problems()) {
                texts.push_back(problem.text);
            }
        }
        return texts;
    }

    static Wish edit(EditKind kind, const std::string& dn,
                     const std::vector<NamedValue>& attributes) {
        return {{{kind, dn, {{dn, attributes}}}}};
    }

    const Model mModel = makeModel();
    MapState mState;
};

TEST_F(EditPlannerTest, Merge_ANewObject_IsCreatedFirstAndReferredToLast) {
    EXPECT_THAT(
        plan(edit(EditKind::Merge, "Site=s,Unit=v",
                  {{"mast", refs({kOther})}, {"near", refs({kMast})}, {"need", text("n")}})),
        ElementsAre("create Site=s,Unit=v need=[n]",
                    std::string("set Site=s,Unit=v near=[") + kMast + "]",
                    std::string("set Site=s,Unit=v mast=[") + kOther + "]"));
}

TEST_F(EditPlannerTest, Merge_ValuesThatAreThere_AreNotWritten) {
    EXPECT_THAT(
        plan(edit(EditKind::Merge, kUnit,
                  {{"label", text("old")}, {"mode", text("auto")}, {"mast", refs({kMast})}})),
        IsEmpty());
}

TEST_F(EditPlannerTest, Move_BothSidesNamed_IsWrittenFromTheFirstSideOnly) {
    const Wish wish{{{EditKind::Set, kUnit, {{kUnit, {{"mast", refs({kOther})}}}}},
                     {EditKind::Set, kMast, {{kMast, {{"units", refs({})}}}}},
                     {EditKind::Set, kOther, {{kOther, {{"units", refs({kUnit})}}}}}}};
    EXPECT_THAT(plan(wish), ElementsAre(std::string("set ") + kUnit + " mast=[" + kOther + "]"));
}

TEST_F(EditPlannerTest, Move_OnlyBackPointersNamed_IsWrittenFromThem) {
    const Wish wish{{{EditKind::Set, kMast, {{kMast, {{"units", refs({})}}}}},
                     {EditKind::Set, kOther, {{kOther, {{"units", refs({kUnit})}}}}}}};
    EXPECT_THAT(plan(wish), ElementsAre(std::string("set ") + kMast + " units=[]",
                                        std::string("set ") + kOther + " units=[" + kUnit + "]"));
}

TEST_F(EditPlannerTest, Move_TheOldBackPointerIsRepeated_FollowsInAnEditAndContradictsInAState) {
    Wish wish{{{EditKind::Set, kUnit, {{kUnit, {{"mast", refs({kOther})}}}}},
               {EditKind::Set, kMast, {{kMast, {{"units", refs({kUnit})}}}}}}};
    EXPECT_THAT(plan(wish), ElementsAre(std::string("set ") + kUnit + " mast=[" + kOther + "]"));
    wish.repeated = Wish::Repeated::IsWished;
    EXPECT_THAT(
        problems(wish),
        ElementsAre("Site=s,Mast=m.units names Site=s,Unit=u, but Site=s,Unit=u.mast, which "
                    "the wish gives too, does not name Site=s,Mast=m"));
}

TEST_F(EditPlannerTest, Replace_WithoutTheBackPointers_LeavesThemAndTheObject) {
    EXPECT_THAT(plan(edit(EditKind::Replace, kMast, {})), IsEmpty());
    EXPECT_THAT(plan(edit(EditKind::Replace, kUnit, {{"need", text("n")}})),
                ElementsAre("set Site=s,Unit=u label=[] need=[n]"));
}

TEST_F(EditPlannerTest, State_ThatNamesNeitherSide_TakesThePairApart) {
    EXPECT_THAT(plan(wishedState(kSite, {{kSite, {}}, {kMast, {}}, {kUnit, {}}})),
                ElementsAre("delete Site=s,Mast=n", "set Site=s,Unit=u label=[]",
                            "set Site=s,Mast=m units=[]"));
}

TEST_F(EditPlannerTest, State_WithAnotherOrderOfTheFarSide_BringsItIntoThatOrder) {
    mState.objects["Site=s,Unit=v"] = {{"mast", refs({kMast})}};
    mState.objects[kMast]["units"] = refs({kUnit, "Site=s,Unit=v"});
    EXPECT_THAT(plan(edit(EditKind::Merge, kMast, {{"units", refs({"Site=s,Unit=v", kUnit})}})),
                IsEmpty());
    Wish wish = edit(EditKind::Merge, kMast, {{"units", refs({"Site=s,Unit=v", kUnit})}});
    wish.repeated = Wish::Repeated::IsWished;
    EXPECT_THAT(plan(wish), ElementsAre("set Site=s,Mast=m units=[Site=s,Unit=v Site=s,Unit=u]"));
}

TEST_F(EditPlannerTest, Siblings_Created_KeepTheOrderOfTheWish) {
    const Wish wish{
        {{EditKind::Merge,
          kSite,
          {{"Site=s,Unit=z,Unit=1", {}}, {"Site=s,Unit=z", {}}, {"Site=s,Unit=b", {}}}}}};
    EXPECT_THAT(plan(wish), ElementsAre("create Site=s,Unit=z", "create Site=s,Unit=b",
                                        "create Site=s,Unit=z,Unit=1"));
}

TEST_F(EditPlannerTest, Delete_OfASubtree_IsOneCall) {
    mState.objects["Site=s,Unit=u,Unit=1"] = {};
    const Wish wish{{{EditKind::Delete, "Site=s,Unit=u,Unit=1", {}},
                     {EditKind::Delete, kUnit, {}},
                     {EditKind::Remove, "Site=s,Unit=none", {}}}};
    EXPECT_THAT(plan(wish), ElementsAre("delete Site=s,Unit=u"));
}

TEST_F(EditPlannerTest, Problems_OfAllKinds_AreNamedInOneRefusal) {
    const Wish wish{
        {{EditKind::Create, kUnit, {{kUnit, {{"colour", text("red")}}}}},
         {EditKind::Merge, "Site=s,Street=1", {{"Site=s,Street=1", {}}}},
         {EditKind::Merge, "Site=s,Unit=x,Unit=1", {{"Site=s,Unit=x,Unit=1", {}}}},
         {EditKind::Merge, kSite, {{"Site=t", {}}}},
         {EditKind::Set, "Site=s,Unit=y", {{"Site=s,Unit=y", {}}}},
         {EditKind::Delete, "Site=s,Unit=z", {}},
         {EditKind::Delete, kOther, {}},
         {EditKind::Merge,
          "Site=s,Unit=w",
          {{"Site=s,Unit=w",
            {{"near", refs({kOther})}, {"mast", refs({kOther})}, {"state", text("up")}}}}},
         {EditKind::Merge, kUnit, {{kUnit, {{"label", text("a")}}}}},
         {EditKind::Merge, kUnit, {{kUnit, {{"label", text("b")}}}}}}};
    EXPECT_THAT(
        problems(wish),
        ElementsAre(
            HasSubstr("there is no class Street; classes under Site: Mast, Unit."),
            "Site=s,Unit=u is to be created, but it exists",
            "Site=s,Unit=u: class Unit has no attribute colour",
            "Site=s,Unit=u.label is wished with two different values",
            "Site=s,Unit=w.mast names Site=s,Mast=n, which the wish deletes",
            "Site=s,Unit=w.near names Site=s,Mast=n, which the wish deletes",
            HasSubstr("attribute 'state' of class 'Unit' is set by the system only"),
            "Site=s,Unit=x,Unit=1 has no parent: Site=s,Unit=x neither exists nor is created",
            "there is no object Site=s,Unit=y to be set",
            "there is no object Site=s,Unit=z to be deleted",
            "Site=t is not in the subtree of Site=s, which the edit is about"));
}

TEST_F(EditPlannerTest, Objects_OutsideTheSubtree_AreOneProblem) {
    const Wish wish{{{EditKind::Merge, kSite, {{"Site=t", {}}, {kSite, {}}, {"Site=u", {}}}}}};
    EXPECT_THAT(problems(wish),
                ElementsAre("Site=t is not in the subtree of Site=s, which the edit "
                            "is about; of all, 2 objects are not"));
}

TEST_F(EditPlannerTest, References_WithAnotherNameOfTheRoot_AreRefusedInEveryValue) {
    Orv::MeIdTranslator::instance()->configure("east", "");
    const std::string internal = "ManagedElement=1,Mast=m";
    const std::vector<std::string> found = problems(
        edit(EditKind::Merge, kUnit, {{"mast", refs({internal})}, {"near", refs({internal})}}));
    Orv::MeIdTranslator::instance()->configure("", "");
    const std::string why = " names ManagedElement=1,Mast=m: ManagedElement=1 is not known; "
                            "clients know it as ManagedElement=east";
    EXPECT_THAT(found, ElementsAre("Site=s,Unit=u.mast" + why, "Site=s,Unit=u.near" + why));
}

TEST_F(EditPlannerTest, Create_WithANameThatTheModelForbids_IsRefused) {
    const std::string mast = "Site=s,Mast=M";
    EXPECT_THAT(
        problems({{{EditKind::Merge, mast, {{mast, {}}}}, {EditKind::Delete, kUnit, {}}}}),
        ElementsAre("Site=s,Mast=M: 'M' cannot name an object of class 'Mast': it is reserved"));
}

TEST_F(EditPlannerTest, State_WithANewObjectThatWasReferredTo_TakesTheUnnamedPairApart) {
    mState.objects = {{kSite, {}}, {kMast, {{"units", refs({kMissing})}}}};
    EXPECT_THAT(plan(wishedState(kSite, {{kSite, {}}, {kMast, {}}, {kMissing, {}}})),
                ElementsAre("create Site=s,Unit=x", "set Site=s,Mast=m units=[]"));
}

TEST_F(EditPlannerTest, State_WithANewObjectThatNamesNoneOfThem_TakesThePairApart) {
    mState.objects = {{kSite, {}}, {kMast, {{"units", refs({kMissing})}}}};
    Wish wish = wishedState(kSite, {{kSite, {}}, {kMast, {}}, {kMissing, {{"mast", refs({})}}}});
    wish.repeated = Wish::Repeated::IsNoEdit;
    EXPECT_THAT(plan(wish), ElementsAre("create Site=s,Unit=x", "set Site=s,Mast=m units=[]"));
}

TEST_F(EditPlannerTest, Repeated_AReferenceToAnObjectThatIsCreated_AssociatesIt) {
    mState.objects[kMast]["units"] = refs({kUnit, kMissing});
    Wish wish{{{EditKind::Merge, kMast, {{kMast, {{"units", refs({kUnit, kMissing})}}}}},
               {EditKind::Create, kMissing, {{kMissing, {}}}}}};
    const std::vector<std::string> expected{
        "create Site=s,Unit=x", "set Site=s,Unit=x mast=[Site=s,Mast=m]",
        "set Site=s,Mast=m units=[Site=s,Unit=u Site=s,Unit=x]"};
    EXPECT_EQ(plan(wish), expected);
    // What is repeated for the other objects still follows.
    wish.edits.push_back({EditKind::Set, kUnit, {{kUnit, {{"mast", refs({kOther})}}}}});
    EXPECT_THAT(plan(wish), testing::Contains("set Site=s,Unit=u mast=[Site=s,Mast=n]"));
}

TEST_F(EditPlannerTest, Repeated_AReferenceToAnObjectThatIsCreatedWithoutIt_Contradicts) {
    mState.objects[kMast]["units"] = refs({kUnit, kMissing});
    const Wish wish{{{EditKind::Merge, kMast, {{kMast, {{"units", refs({kUnit, kMissing})}}}}},
                     {EditKind::Create, kMissing, {{kMissing, {{"mast", refs({kOther})}}}}}}};
    EXPECT_THAT(problems(wish),
                ElementsAre(HasSubstr("Site=s,Mast=m.units names Site=s,Unit=x, but")));
}

TEST_F(EditPlannerTest, Replace_ReferencesThatOnlyTheSystemSets_AreLeftAlone) {
    mState.objects = {{kSite, {}},
                      {kMast, {{"owns", refs({kUnit})}}},
                      {kUnit, {{"owners", refs({kMast, "Site=s,Mast=gone"})}}}};
    EXPECT_THAT(plan(wishedState(kSite, {{kSite, {}}, {kMast, {}}, {kUnit, {}}})), IsEmpty());
    EXPECT_THAT(plan(edit(EditKind::Merge, kMast, {{"owns", refs({})}})),
                ElementsAre("set Site=s,Mast=m owns=[]"));
}

TEST_F(EditPlannerTest, Merge_ANamedPairWithTwoReferencesBack_LeavesOne) {
    mState.objects[kMast]["units"] = refs({kUnit, kUnit});
    Wish wish = edit(EditKind::Merge, kUnit, {{"mast", refs({kMast})}});
    wish.repeated = Wish::Repeated::IsWished;
    EXPECT_THAT(plan(wish), ElementsAre("set Site=s,Mast=m units=[Site=s,Unit=u]"));
}

TEST_F(EditPlannerTest, Merge_ANamedSideWhoseFarSideStandsTwice_LeavesOne) {
    mState.objects[kMast]["units"] = refs({});
    mState.objects[kUnit]["mast"] = refs({kMast, kMast});
    EXPECT_THAT(plan(edit(EditKind::Merge, kMast, {{"units", refs({kUnit})}})),
                ElementsAre("set Site=s,Mast=m units=[Site=s,Unit=u]",
                            "set Site=s,Unit=u mast=[Site=s,Mast=m]"));
}

TEST_F(EditPlannerTest, Plan_ThatCannotBeFinished_IsAnErrorThatNamesTheAttribute) {
    mState.objects[kMast]["owns"] = refs({kUnit});
    mState.objects[kUnit]["owners"] = refs({kMast, kMast});
    Wish wish = edit(EditKind::Merge, kMast, {{"owns", refs({kUnit})}});
    wish.repeated = Wish::Repeated::IsWished;
    try {
        plan(wish);
        FAIL() << "a plan was made";
    } catch (const RequestError& error) {
        EXPECT_THAT(error.what(), HasSubstr("Site=s,Unit=u.owners"));
    }
}

// Slow as soon as the time grows with the square of a list.
TEST_F(EditPlannerTest, LongLists_RepeatedMovedAndTakenApart_ArePlannedInSeconds) {
    constexpr std::size_t kUnits = 20000;
    std::vector<std::string> units;
    std::vector<WishedObject> objects{{kSite, {}}, {kOther, {}}};
    mState.objects = {{kSite, {}}, {kMast, {}}, {kOther, {}}};
    for (std::size_t at = 0; at < kUnits; ++at) {
        units.push_back("Site=s,Unit=" + std::to_string(at));
        mState.objects[units.back()]["mast"] = refs({kMast});
        objects.push_back({units.back(), {{"mast", refs({kOther})}}});
    }
    mState.objects[kMast]["units"] = refs(units);

    // All units move, and the mast names them as before. The other mast wants them in an order in
    // which they do not come.
    Wish moves{{{EditKind::Replace, kSite, objects}}};
    moves.edits[0].objects.push_back({kMast, {{"units", refs(units)}}});
    moves.edits[0].objects[1].attributes = {{"units", refs(units)}};
    EXPECT_EQ(plan(moves).size(), kUnits + 1);
    // The mast goes with all that it names.
    EXPECT_EQ(plan({{{EditKind::Delete, kMast, {}}}}).size(), 1U);
    // Neither side is named.
    for (WishedObject& object : objects) {
        object.attributes.clear();
    }
    objects.push_back({kMast, {}});
    EXPECT_EQ(plan(wishedState(kSite, objects)).size(), 1U);
}

TEST_F(EditPlannerTest, Edit_OfADnThatIsNone_IsRefusedThoughItHasNoObjects) {
    for (const EditKind kind :
         {EditKind::Create, EditKind::Set, EditKind::Merge, EditKind::Replace}) {
        EXPECT_THAT(problems({{{kind, "Site=s,Untt=1", {}}}}),
                    ElementsAre(HasSubstr("there is no class Untt")));
    }
}

TEST_F(EditPlannerTest, Replace_AMandatoryValueNotNamed_IsRefused) {
    mState.objects[kUnit]["need"] = text("n");
    EXPECT_THAT(problems(edit(EditKind::Replace, kUnit, {})),
                ElementsAre("Site=s,Unit=u.need must have a value, and the wish gives none"));
}

TEST_F(EditPlannerTest, Plan_Cancelled_EndsWithoutAPlan) {
    CancellationToken early;
    early.cancel();
    EXPECT_THROW(EditPlanner(mModel, &early).plan(edit(EditKind::Merge, kUnit, {}), mState),
                 CancelledError);
    // All objects are known by then.
    CancellationToken late;
    mState.cancelledByARead = &late;
    const Wish wish{{{EditKind::Merge,
                      kSite,
                      {{kUnit, {{"label", text("new")}}}, {kMast, {{"units", refs({})}}}}}}};
    EXPECT_THROW(EditPlanner(mModel, &late).plan(wish, mState), CancelledError);
    mState.cancelledByARead = nullptr;
    const CancellationToken never;
    EXPECT_NO_THROW(EditPlanner(mModel, &never).plan(edit(EditKind::Merge, kUnit, {}), mState));
}

}
}
