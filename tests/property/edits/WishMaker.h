// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_PROPERTY_EDITS_WISHMAKER_H
#define ORV_TESTS_PROPERTY_EDITS_WISHMAKER_H

#include "EditWorld.h"
#include "client/edits/Wish.h"

#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <utility>

namespace EditTests {

/// A generated wish, and the words for what it is made of, for counting.
struct MadeWish {
    Wish wish;
    std::set<std::string> traits;
};

/// Makes wishes: changes the state before at random, and wishes for the outcome, in one of several
/// forms, sometimes with mistakes. The same seed and state give the same wish on every machine.
class WishMaker {
public:
    WishMaker(const Model& model, const State& before, std::uint64_t seed)
        : mModel(model), mBefore(before), mTarget(before), mEngine(seed) {}

    MadeWish make();

    /// The state before with some changes, consistent in itself, without empty attributes and
    /// without references to what is gone.
    State changed();

    /// The same wish with edits, objects and attributes in another order.
    Wish shuffled(Wish wish);

    /// Whether the transaction should end after this wish.
    bool endsTransaction() { return oneIn(2); }

private:
    enum class Sides { Both, First, Second, Random };

    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(mEngine() % bound); }
    bool oneIn(std::size_t bound) { return below(bound) == 0; }
    template <class List>
    const typename List::value_type& pick(const List& list) {
        return list[below(list.size())];
    }
    template <class List>
    void shuffle(List& list);

    Dns presentOnly(Dns dns) const;
    Dns notDeleted(Dns dns) const;
    Dns objectsOf(const State& state, const std::string& className) const;
    std::string anyObject(const State& state);
    std::string newDn();
    void change();
    void createObject();
    Dns keptButMissing();
    void deleteObject();
    void moveLink();
    void changeValue();
    void link(const BiDirAssociation& association, const std::string& x, const std::string& y);
    void unlink(const BiDirAssociation& association, const std::string& x, const std::string& y);
    void unlinkAll(const std::string& dn);
    void insert(const std::string& dn, const std::string& name, const std::string& target);
    void erase(const std::string& dn, const std::string& name, const std::string& target);

    bool isNamed(const std::string& className, const std::string& name, Sides sides);
    bool mustName(const std::string& dn, const std::string& name);
    WishedObject wished(const std::string& dn, Sides sides);
    void wishState(MadeWish& made);
    void wishEdits(MadeWish& made);
    void addStale(MadeWish& made);
    void addMistake(MadeWish& made);
    WishedObject* anyWished(Wish& wish);

    const Model& mModel;
    const State& mBefore;
    State mTarget;
    bool mHasMoved = false;   ///< a reference that may have one value got another one
    bool mHasRevived = false; ///< an object was created that a reference named already
    bool mAreEdits = false;   ///< the wish is a list of edits
    std::mt19937_64 mEngine;
};

}

#endif
