// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Moves.h"
#include "associations/PendingAdditions.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

namespace PropertyTests {
namespace {

using OrvExtCmRouterService::PendingAdditions;

bool beginsWith(const std::string& text, const std::string& prefix) {
    return text.starts_with(prefix);
}

/// The waiting additions, as (target, source, attribute, transaction), and the effect of the
/// operations on them, computed by simple walks.
class NaiveQueue {
public:
    using Waiting = std::tuple<std::string, std::string, std::string, unsigned long>;

    void add(const Waiting& addition) {
        mWaiting.insert(std::upper_bound(mWaiting.begin(), mWaiting.end(), addition, byTarget),
                        addition);
    }
    template <class Test>
    void dropIf(const Test& test) {
        std::erase_if(mWaiting, test);
    }
    const std::vector<Waiting>& all() const { return mWaiting; }

private:
    static bool byTarget(const Waiting& left, const Waiting& right) {
        return std::get<0>(left) < std::get<0>(right);
    }

    std::vector<Waiting> mWaiting; ///< sorted by target; for one target in order of insertion
};

std::vector<NaiveQueue::Waiting> contentOf(const PendingAdditions::Store& store) {
    std::vector<NaiveQueue::Waiting> content;
    for (const auto& [target, addition] : store) {
        content.emplace_back(target, addition.sourceDn, addition.sourceAttribute,
                             addition.txHandle);
    }
    return content;
}

/// Applies one move to both.
void play(const Move& move, PendingAdditions& pending, NaiveQueue& naive) {
    using Waiting = NaiveQueue::Waiting;
    static const Dns attributes = {"a", "ab", "b"};
    const unsigned long tx = move.transaction % 3;
    const std::string& source = objectOf(move);
    const std::string& attribute = pick(attributes, move.attribute);
    const auto isOfSource = [&](const Waiting& each) {
        return std::get<3>(each) == tx && std::get<1>(each).starts_with(source);
    };
    switch (move.kind) {
    case Move::Kind::Create: // the source's targets are created
        for (const std::string& target : referencesOf(move)) {
            for (const PendingAdditions::Record record : pending.activeRecords(tx, target)) {
                pending.drop(record);
            }
            naive.dropIf([&](const Waiting& each) {
                return std::get<0>(each) == target && std::get<3>(each) == tx;
            });
        }
        break;
    case Move::Kind::Set:
        for (const std::string& target : referencesOf(move)) {
            pending.add(target.c_str(), {tx, "xs", 1, source, true, attribute});
            naive.add({target, source, attribute, tx});
        }
        break;
    case Move::Kind::Delete:
        pending.dropSources(tx, source, &beginsWith);
        naive.dropIf(isOfSource);
        break;
    case Move::Kind::Commit:
        pending.dropTransaction(tx);
        naive.dropIf([&](const Waiting& each) { return std::get<3>(each) == tx; });
        break;
    case Move::Kind::Abort: // the source drops a target
        pending.dropSources(tx, source, attribute, &beginsWith);
        naive.dropIf([&](const Waiting& each) {
            return isOfSource(each) && std::get<2>(each) == attribute;
        });
        break;
    }
}

RC_GTEST_PROP(PendingProperties, TakingOut_LeavesWhatAPlainWalkLeaves, ()) {
    PendingAdditions::Store store;
    PendingAdditions pending(store);
    NaiveQueue naive;
    const std::vector<Move> moves = *movesGenerator();
    for (const Move& move : moves) {
        RC_LOG() << move << "\n";
        play(move, pending, naive);
        RC_ASSERT(contentOf(store) == naive.all());
    }
}

}
}
