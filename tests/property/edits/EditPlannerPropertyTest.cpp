// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Generated wishes, planned and carried out through the component. Each ends in the state that a
// plain recount of pairs expects, or in one refusal that names all that is wrong; in any order; and
// what is committed is consistent when it is counted in the store.

#include "EditOracle.h"
#include "EditWorld.h"
#include "WishMaker.h"
#include "client/edits/ClientState.h"
#include "client/edits/EditPlanner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <random>
#include <sstream>

namespace EditTests {
namespace {

// Under a sanitizer each wish takes ten times as long.
#ifdef ORV_SANITIZED
constexpr std::uint64_t kWishes = 2000;
constexpr std::uint64_t kStates = 100;
#else
constexpr std::uint64_t kWishes = 10000;
constexpr std::uint64_t kStates = 500;
#endif

std::string textOf(const AttributeValue& value) {
    std::string text;
    for (const Value& one : value.values) {
        text += (text.empty() ? "" : " ") + toText(one);
    }
    return "[" + text + "]";
}

void print(std::ostream& out, const std::vector<NamedValue>& attributes) {
    for (const NamedValue& named : attributes) {
        out << " " << named.first << "=" << textOf(named.second);
    }
    out << "\n";
}

std::string textOf(const State& state) {
    std::ostringstream out;
    for (const auto& [dn, attributes] : state) {
        out << "  " << dn;
        print(out, {attributes.begin(), attributes.end()});
    }
    return out.str();
}

std::string textOf(const Wish& wish) {
    static const char* const kKinds[] = {"create", "set", "merge", "replace", "delete", "remove"};
    std::ostringstream out;
    out << (wish.repeated == Wish::Repeated::IsWished ? "repeated values are wished\n" : "");
    for (const Edit& edit : wish.edits) {
        out << "  " << kKinds[static_cast<int>(edit.kind)] << " " << edit.dn << "\n";
        for (const WishedObject& object : edit.objects) {
            out << "    " << object.dn;
            print(out, object.attributes);
        }
    }
    return out.str();
}

std::string textOf(const EditPlan& plan) {
    static const char* const kKinds[] = {"delete", "create", "set"};
    std::ostringstream out;
    for (const PlannedCall& call : plan.calls) {
        out << "  " << kKinds[static_cast<int>(call.kind)] << " " << call.dn;
        print(out, call.attributes);
    }
    return out.str();
}

std::string textOf(const std::set<Problem>& problems) {
    std::ostringstream out;
    for (const auto& [kind, dn, attribute] : problems) {
        out << "  " << static_cast<int>(kind) << " " << dn << " " << attribute << "\n";
    }
    return out.str();
}

/// What came of a wish.
struct Outcome {
    std::set<Problem> problems; ///< of a refusal
    EditPlan plan;
    State state;
    Dns order; ///< the objects of the state, siblings in their order
};

class EditPlannerPropertyTest : public testing::Test {
protected:
    Outcome apply(const Wish& wish, unsigned long txHandle) {
        return outcomeOf(
            txHandle, [&] { return applyWish(wish, mWorld.model(), mWorld.clients(), txHandle); });
    }

    // The same, call by call, with a look at what each one changes.
    Outcome applySlowly(const Wish& wish, const State& seen, unsigned long txHandle) {
        return outcomeOf(txHandle, [&] {
            ClientState before(mWorld.clients().version3(), txHandle);
            EditPlan plan = EditPlanner(mWorld.model()).plan(wish, before);
            std::set<std::string> created;
            for (const PlannedCall& call : plan.calls) {
                if (call.kind == PlannedCall::Kind::Create) {
                    created.insert(call.dn);
                }
                checkNotInVain(call, created, seen, txHandle);
                runPlan({{call}}, mWorld.model(), mWorld.clients(), txHandle);
            }
            return plan;
        });
    }

    template <class Apply>
    Outcome outcomeOf(unsigned long txHandle, const Apply& applied) {
        Outcome outcome;
        try {
            outcome.plan = applied();
        } catch (const EditRefusedError& refusal) {
            for (const EditProblem& problem : refusal.problems()) {
                EXPECT_FALSE(problem.text.empty());
                outcome.problems.emplace(problem.kind, problem.dn, problem.attribute);
            }
        }
        outcome.state = mWorld.read(txHandle, &outcome.order);
        return outcome;
    }

    // In vain: the value is there already. Allowed, and counted, is only a reference that waited
    // for an object which the plan creates: the component may take it away by itself.
    void checkNotInVain(const PlannedCall& call, const std::set<std::string>& created,
                        const State& before, unsigned long txHandle) {
        if (call.kind != PlannedCall::Kind::Set) {
            return;
        }
        const Model& model = mWorld.model();
        const ClassDef& moc = model.classes[*model.findClass(classNameOf(call.dn))];
        const auto values =
            ClientState(mWorld.clients().version3(), txHandle).attributes(call.dn, moc);
        EXPECT_FALSE(call.attributes.empty()) << call.dn;
        for (const NamedValue& named : call.attributes) {
            if (values[*moc.findAttributeIndex(named.first)].values != named.second.values) {
                continue;
            }
            EXPECT_EQ(named.second.kind, ValueKind::MoRef) << call.dn << "." << named.first;
            const Dns waiting = refsIn(before, call.dn, named.first);
            EXPECT_TRUE(std::any_of(waiting.begin(), waiting.end(),
                                    [&](const std::string& dn) { return created.count(dn) != 0; }))
                << call.dn << "." << named.first << " is set in vain";
            ++mInVain;
        }
    }

    unsigned long begin() { return mWorld.host().transactions().begin(); }
    void abort(unsigned long txHandle) { mWorld.host().transactions().abort(txHandle); }

    // True if the outcome is as expected; prints the case if it is not.
    bool check(const State& before, const Wish& wish, const Outcome& outcome,
               const Expected& expected) {
        const bool isRefused = !expected.problems.empty();
        const State& wanted = isRefused ? before : expected.state;
        const State state =
            isRefused ? outcome.state : normalised(mWorld.model(), outcome.state, expected);
        if (outcome.problems == expected.problems && state == wanted) {
            return true;
        }
        ADD_FAILURE() << "before\n"
                      << textOf(before) << "wish\n"
                      << textOf(wish) << "plan\n"
                      << textOf(outcome.plan) << "problems\n"
                      << textOf(outcome.problems) << "expected problems\n"
                      << textOf(expected.problems) << "state\n"
                      << textOf(state) << "expected state\n"
                      << textOf(wanted);
        return false;
    }

    // Siblings that stay keep their order, and new ones follow in the order of the wish. Returns
    // the number of new ones that follow another new one.
    std::size_t checkOrder(const Dns& before, const Wish& wish, const Outcome& outcome) {
        Dns expected;
        std::set<std::string> seen;
        const auto add = [&](const std::string& dn) {
            if (outcome.state.count(dn) != 0 && seen.insert(dn).second) {
                expected.push_back(dn);
            }
        };
        for (const std::string& dn : before) {
            add(dn);
        }
        const std::size_t old = expected.size();
        for (const Edit& edit : wish.edits) {
            for (const WishedObject& object : edit.objects) {
                add(object.dn);
            }
        }
        EXPECT_EQ(bySiblings(outcome.order), bySiblings(expected))
            << textOf(wish) << textOf(outcome.plan);
        std::size_t followers = 0;
        for (const auto& [siblings, dns] :
             bySiblings(Dns(expected.begin() + static_cast<std::ptrdiff_t>(old), expected.end()))) {
            followers += dns.size() - 1;
        }
        return followers;
    }

    // In their order, by parent and class.
    static std::map<std::string, Dns> bySiblings(const Dns& dns) {
        std::map<std::string, Dns> siblings;
        for (const std::string& dn : dns) {
            siblings[parentDnOf(dn) + "," + classNameOf(dn)].push_back(dn);
        }
        return siblings;
    }

    // An object that stays is neither deleted nor created.
    void checkPlan(const State& before, const Outcome& outcome) {
        std::size_t last = 0;
        for (const PlannedCall& call : outcome.plan.calls) {
            const auto rank = static_cast<std::size_t>(call.kind);
            EXPECT_LE(last, rank) << "deletes, creates, sets\n" << textOf(outcome.plan);
            last = rank;
            if (call.kind == PlannedCall::Kind::Delete) {
                EXPECT_EQ(outcome.state.count(call.dn), 0U) << textOf(outcome.plan);
            } else if (call.kind == PlannedCall::Kind::Create) {
                EXPECT_EQ(before.count(call.dn), 0U) << textOf(outcome.plan);
            }
        }
    }

    EditWorld mWorld;
    std::size_t mInVain = 0; ///< writes
};

bool isRepeatable(const Wish& wish) {
    return std::all_of(wish.edits.begin(), wish.edits.end(), [](const Edit& edit) {
        return edit.kind != EditKind::Create && edit.kind != EditKind::Delete;
    });
}

TEST_F(EditPlannerPropertyTest, GeneratedWishes_InAnyOrder_EndAsTheRecountOfPairsExpects) {
    std::map<std::string, std::size_t> counts;
    std::map<std::string, std::size_t> refusals;
    unsigned long open = begin();
    Dns order;
    State before = mWorld.read(open, &order);
    for (std::uint64_t seed = 1; seed <= kWishes && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        WishMaker maker(mWorld.model(), before, seed);
        const MadeWish made = maker.make();
        const Expected expected = expect(mWorld.model(), before, made.wish);
        // Another order, in a transaction that sees the same: only where nothing is open.
        const bool isFresh = counts["wishes"] == 0 || counts["in this transaction"] == 0;
        if (isFresh) {
            const unsigned long other = begin();
            const Wish shuffled = maker.shuffled(made.wish);
            check(before, shuffled, apply(shuffled, other), expected);
            abort(other);
            ++counts["carried out in a second order"];
        }
        const Outcome outcome = applySlowly(made.wish, before, open);
        if (!check(before, made.wish, outcome, expected) || HasFailure()) {
            std::cout << "before\n"
                      << textOf(before) << "wish\n"
                      << textOf(made.wish) << "plan\n"
                      << textOf(outcome.plan);
            break;
        }
        checkPlan(before, outcome);
        ++counts["wishes"];
        for (const std::string& trait : made.traits) {
            ++counts[trait];
        }
        if (!expected.problems.empty()) {
            ++counts["refused"];
            for (const auto& [kind, dn, attribute] : expected.problems) {
                ++refusals[std::to_string(static_cast<int>(kind))];
            }
            continue;
        }
        counts["new siblings in order"] += checkOrder(order, made.wish, outcome);
        ++counts["ended in the wished state"];
        ++counts["in this transaction"];
        counts["calls"] += outcome.plan.calls.size();
        if (isRepeatable(made.wish) && made.wish.repeated == Wish::Repeated::IsWished) {
            ClientState after(mWorld.clients().version3(), open);
            EXPECT_TRUE(EditPlanner(mWorld.model()).plan(made.wish, after).calls.empty())
                << textOf(made.wish);
            ++counts["wished again, and nothing to do"];
        }
        if (maker.endsTransaction()) {
            const TransactionOutcome ended = mWorld.host().transactions().commit(open);
            ++counts[ended.accepted ? "committed" : "not valid"];
            counts["in this transaction"] = 0;
            const std::vector<std::string> problems = mWorld.recount();
            EXPECT_TRUE(problems.empty()) << problems.front() << "\n" << textOf(made.wish);
            open = begin();
            before = mWorld.read(open, &order);
        } else {
            before = outcome.state;
            order = outcome.order;
        }
    }
    abort(open);
    counts.erase("in this transaction");
    counts["writes in vain"] = mInVain;
    for (const auto& [what, count] : counts) {
        std::cout << what << ": " << count << "\n";
    }
    for (const auto& [kind, count] : refusals) {
        std::cout << "problems of kind " << kind << ": " << count << "\n";
    }
    EXPECT_EQ(counts["wishes"], kWishes);
    // The generator must not run dry.
    EXPECT_GT(counts["ended in the wished state"], kWishes / 2);
    EXPECT_GT(counts["refused"], kWishes / 10);
    EXPECT_GT(counts["committed"], kWishes / 10);
    EXPECT_LE(mInVain, kWishes / 1000);
    for (const char* const often :
         {"carried out in a second order", "wished again, and nothing to do", "move", "replace",
          "delete", "create", "both sides named", "old values named"}) {
        EXPECT_GT(counts[often], kWishes / 20) << often;
    }
    EXPECT_GT(counts["a kept reference finds a new object"], kWishes / 200);
    EXPECT_GT(counts["new siblings in order"], kWishes / 200);
    EXPECT_EQ(refusals.size(), 9U) << "each kind of problem";
}

// Version 1 moves no far sides, so its writes leave references whose far side is missing.
void breakReferences(EditWorld& world, const State& state, unsigned long txHandle,
                     std::mt19937_64& engine) {
    Dns dns;
    for (const auto& [dn, attributes] : state) {
        dns.push_back(dn);
    }
    const auto pick = [&](const Dns& list) { return list[engine() % list.size()]; };
    for (int writes = 0; writes < 6; ++writes) {
        const std::string dn = pick(dns);
        const ClassDef& moc = world.model().classes[*world.model().findClass(classNameOf(dn))];
        for (const AttributeDef& def : moc.attributes) {
            if (def.type.kind == ValueKind::MoRef && engine() % 3 == 0) {
                Dns values = refsIn(state, dn, def.name);
                values.push_back(pick(dns));
                values.push_back(engine() % 2 == 0 ? values.front() : pick(dns));
                values.erase(values.begin());
                const NamedValue value(def.name, refs(values));
                world.clients().version1().set(txHandle, dn, {value});
            }
        }
    }
}

// References without a far side, references that stand twice, and references of wrong classes.
TEST_F(EditPlannerPropertyTest, BrokenAssociations_AWishForAStateThatHoldsBothSides_AreMended) {
    std::size_t broken = 0;
    unsigned long open = begin();
    for (std::uint64_t seed = 1; seed <= kStates && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const State before = mWorld.read(open);
        WishMaker maker(mWorld.model(), before, seed);
        const State target = maker.changed();
        std::vector<WishedObject> objects;
        for (const auto& [dn, attributes] : target) {
            objects.push_back({dn, {attributes.begin(), attributes.end()}});
        }
        std::mt19937_64 engine(seed);
        breakReferences(mWorld, before, open, engine);
        broken += mWorld.read(open) == before ? 0 : 1;
        const Wish wish = maker.shuffled(wishedState(kRoot, objects));
        const Outcome outcome = apply(wish, open);
        EXPECT_EQ(outcome.state, target)
            << textOf(before) << textOf(wish) << textOf(outcome.plan) << textOf(outcome.state);
        if (maker.endsTransaction()) {
            const TransactionOutcome ended = mWorld.host().transactions().commit(open);
            EXPECT_TRUE(ended.accepted) << ended.reason;
            const std::vector<std::string> problems = mWorld.recount();
            EXPECT_TRUE(problems.empty()) << problems.front();
            open = begin();
        }
    }
    abort(open);
    EXPECT_GT(broken, kStates / 2);
}

}
}
