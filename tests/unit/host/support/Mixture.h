// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_HOST_SUPPORT_MIXTURE_H
#define ORV_TESTS_HOST_SUPPORT_MIXTURE_H

#include "store/CommitLog.h"
#include "store/MoStore.h"

#include <functional>
#include <istream>
#include <random>
#include <string>
#include <vector>

namespace OrvHost {

/// Transactions over the sample model (SampleStore.h) of several kinds that meet each other, and
/// what must hold after any of them, in whatever order and on however many hosts they were
/// committed:
///
/// | Transaction | Invariant |
/// |---|---|
/// | read a counter, add one, write | the counter is the number of such transactions |
/// | move between two of ten accounts | the sum stays |
/// | create or delete a child of a bounded class | there are one or two |
/// | create a subtree, or delete it and half the time create it again | no object without a parent
/// | | create, set or delete an object in such a subtree | the same |
///
/// Each transaction also creates a first and a last mark: both are there, or none.
class Mixture {
public:
    /// The state before the first transaction, for an empty store of the sample model.
    static void load(MoStore& store);

    /// \p name of the marks, and \p seed: different for each object of this class.
    Mixture(MoStore& store, std::string name, unsigned seed);

    /// Called with the name of the transaction after its commit.
    using Acknowledge = std::function<void(const std::string& mark)>;
    /// One transaction, which may be refused. Throws HostError for all but conflicts.
    void step(const Acknowledge& acknowledge);

    /// What does not hold in \p store, one text each. \p acknowledged: the names of transactions
    /// that must be there.
    static std::vector<std::string> violations(MoStore& store,
                                               const std::vector<std::string>& acknowledged);
    /// What does not hold in what \p log holds, and that its objects are not those which its
    /// entries lead to. \p start: the mark in front of the first entry; the state there is that of
    /// load().
    static std::vector<std::string> problems(CommitLog& log, const LogMark& start,
                                             const std::vector<std::string>& acknowledged);

private:
    unsigned below(unsigned end) {
        return std::uniform_int_distribution<unsigned>(0, end - 1)(mRandom);
    }
    void count(StoreTransaction& tx);
    void move(StoreTransaction& tx);
    void changeBounded(StoreTransaction& tx);
    void changeTree(StoreTransaction& tx);
    void changeInTree(StoreTransaction& tx);

    MoStore& mStore;
    const std::string mName;
    const TransactionId mFirstId; ///< transactions of one store have different ids
    std::mt19937 mRandom;
    unsigned mNumber = 0;
};

/// What is left of a text, line by line.
std::vector<std::string> linesOf(std::istream& text);

/// All that a reader can see, a line for each object: its DN and attributes, siblings in order.
std::vector<std::string> contentOf(MoStore& store);

}

#endif
