// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_ACTOR_H
#define ORV_TESTS_SOAK_ACTOR_H

#include "Cast.h"
#include "Random.h"
#include "client/Client.h"

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace Soak {

class Ledger;
class Scene;

/// A client in one transaction. It draws the next step, runs it through one of the three versions
/// and checks each answer: a code that the state does not explain is reported to the tally.
///
/// After a write that is refused because of another writer, the transaction can only be aborted.
/// One thread.
class Actor {
public:
    /// \p ledger is null for a cast that others write as well. All arguments must outlive this
    /// object.
    Actor(Scene& scene, unsigned long txHandle, Random& random, const Cast& cast, Ledger* ledger);

    /// Runs one or several operations on one subject.
    void step();
    /// Reads a shared counter and writes the next number, each in one of the versions.
    void increment(std::size_t counter);
    /// Gives a reference attribute more values than the model allows.
    void violate();

    bool isDoomed() const { return mIsDoomed; }
    const std::vector<std::string>& doubts() const { return mDoubts; }
    std::uint64_t operations() const { return mOperations; }
    /// Iterators that were not finalized.
    const std::vector<OrvHost::ChildIterator>& leftOpen() const { return mLeftOpen; }

private:
    /// An object of the cast.
    struct Subject {
        std::size_t role = 0;
        std::size_t number = 0;
        std::string dn;
    };

    // The possible steps.
    void toggle();
    void setReferences();
    void setSeveral();
    void setText();
    void readReferences();
    void readSeveral();
    void readInVersion1();
    void iterate();
    void iterateInVersion1();
    void countAndFind();
    void act();
    void setStruct();
    void createBeforeTarget();
    void setOneWay();
    void rebuildUnit();
    void toggleInVersion1();
    void askForNonsense();

    Subject draw();
    Subject subject(std::size_t role, std::size_t number) const;
    bool exists(const std::string& dn);
    bool ensure(const Subject& subject);
    bool create(const Subject& subject, const std::vector<OrvHost::NamedValue>& references);
    bool remove(const Subject& subject);
    bool set(const std::string& dn, const std::string& attribute,
             const OrvHost::AttributeValue& value);
    /// Reads one attribute in version 3; nothing if it is refused.
    std::optional<OrvHost::ReadValue> read(const std::string& dn, const std::string& attribute,
                                           std::initializer_list<OrvReturnT> alsoRight = {});
    std::vector<std::string> references(const std::string& dn, const std::string& attribute);
    std::vector<std::string> drawTargets(const Subject& subject, const Slot& slot);
    std::string drawText();
    void remember(const std::string& dn, const std::string& text);

    /// Makes the call, counts it and checks its code. True for OrvOk.
    bool run(const char* operation, const std::string& dn, const std::function<void()>& call,
             std::initializer_list<OrvReturnT> alsoRight = {});
    void check(bool isRight, const std::string& what);

    Scene& mScene;
    unsigned long mTx;
    Random& mRandom;
    const Cast& mCast;
    Ledger* mLedger;
    std::uint64_t mOperations = 0;
    bool mIsDoomed = false;
    std::vector<std::string> mDoubts;
    std::vector<OrvHost::ChildIterator> mLeftOpen;
};

}

#endif
