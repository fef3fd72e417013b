// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_REPLAY_PLAYER_H
#define ORV_RECORD_REPLAY_PLAYER_H

#include "PlayedLibrary.h"
#include "Recording.h"
#include "Replay.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OrvRecord {

/// Plays a recording against a component: calls it as it was called, answers what it asks as it was
/// answered, and compares what it does.
///
/// The tables that the component gets are functions without an object, so there is one player at a
/// time in a process, and no host beside it. One thread.
class Player {
public:
    /// \p watch is told of each transaction that is finished; it may be empty. Throws
    /// std::runtime_error if the shared object at \p component cannot be loaded.
    Player(const Recording& recording, const std::string& component, TransactionWatch watch);
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;
    ~Player();

    PlayReport play();

private:
    friend class FakeHost; // what the component calls
    class Interceptors;

    struct Given {
        std::function<void()> release;
    };
    /// What a played host gave and waits for.
    struct Taken {
        std::unique_ptr<Arena> memory;
        std::uint64_t call = 0;
    };

    void playBlock(const Block& block);
    void playNotes();
    void playCall();
    void playInner();
    void playLife(const Event& begin);
    void playRelease(const Event& begin);
    template <class Table>
    void playTable(const Event& begin);
    template <class Table, auto member, class... Codecs, class... Arguments>
    void playSlot(const Event& begin, OrvReturnT (*function)(Arguments...));
    template <class Call, class Write>
    void compare(const Event& begin, const Call& call, const Write& write);
    void enter(const Event& note);
    void remove(const Event& note);
    void count(const Event& begin);

    bool isOver() const { return mReport.difference || !mReport.problem.empty(); }
    void fail(const std::string& problem);
    /// In the present block.
    void failHere(const std::string& problem);
    void differ(const std::string& recorded, const std::string& came);
    const Event* next() const { return mAt < mEvents.size() ? &mEvents[mAt] : nullptr; }
    void remember(const Event& begin, const Event& end);

    template <class Table>
    Table* offered() const;

    const Recording& mRecording;
    TransactionWatch mWatch;
    PlayedLibrary mLibrary;
    PlayReport mReport;

    const Block* mBlock = nullptr;
    std::vector<Event> mEvents; ///< of the block
    std::size_t mAt = 0;
    int mDepth = 0;
    Event mInside; ///< the innermost call of the component
    Event mBegin;  ///< of the call that ended last
    std::optional<Event> mEnd;
    bool mIsInitialized = false;

    Arena mLasting;
    TextPool mTexts;
    HandleMap mHandles;
    OrvMgmtSpiComponent_1* mComponent = nullptr;
    OrvOamSpiTransactionalResource_2* mResource = nullptr;
    std::multimap<std::uint64_t, Given> mGiven; ///< by the component, by number of call
    std::multimap<const void*, Taken> mTaken;
    std::vector<std::unique_ptr<Arena>> mUnreleased; ///< of results without a release
    std::unique_ptr<Interceptors> mInterceptors;
    std::map<std::uint64_t, std::uint64_t> mCallsOf; ///< by transaction
};

/// What \p call and its arguments \p values are, for people.
std::string describeCall(const CallName& name, std::string_view values);

}

#endif
