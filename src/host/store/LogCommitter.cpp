// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LogCommitter.h"

#include "CheckedBytes.h"
#include "LogChange.h"

#include <chrono>
#include <random>
#include <thread>
#include <utility>

namespace OrvHost {

namespace {

// Between two questions for the outcome of a commit.
constexpr std::chrono::milliseconds kPause{100};

std::string startOfIds() {
    std::random_device random;
    return std::to_string(std::uint64_t{random()} << 32U | random()) + "-";
}

ObjectId idOf(const MoNode& node) {
    return objectId(node.createdAt, node.place);
}

template <class Work>
std::exception_ptr failureOf(const Work& work) {
    try {
        work();
    } catch (...) {
        return std::current_exception();
    }
    return nullptr;
}

// Each thread gets an error of its own.
void rethrow(const std::exception_ptr& failure) {
    if (!failure) {
        return;
    }
    try {
        std::rethrow_exception(failure);
    } catch (const HostError& error) {
        throw HostError(error.code(), error.what());
    }
}

LogDiverged notNext(CommitNumber position, CommitNumber last) {
    return LogDiverged("the log has position " + std::to_string(position) +
                       ", and what was read from it ends at " + std::to_string(last));
}

}

LogCommitter::LogCommitter(const Model& model, std::shared_ptr<CommittedState> state,
                           CommitFeed& feed, CommitLog& log, std::string host, LogMark mark)
    : mModel(model),
      mFeed(feed),
      mLog(log),
      mHost(std::move(host)),
      mIdStart(startOfIds()),
      mState(std::move(state)),
      mMark(std::move(mark)),
      mCurrent(mState.get()) {}

std::string LogCommitter::nextId() {
    return mIdStart + std::to_string(++mIds);
}

std::string LogCommitter::fault() const {
    const std::lock_guard<std::mutex> guard(mMutex);
    return mFault;
}

void LogCommitter::setFault(const std::string& text) {
    const std::lock_guard<std::mutex> guard(mMutex);
    if (mFault.empty()) {
        mFault = text;
    }
}

void LogCommitter::requireNoFault() const {
    const std::string text = fault();
    if (!text.empty()) {
        throw LogUnavailable("nothing is committed any more: " + text);
    }
}

template <class Turn>
void LogCommitter::inTurn(std::unique_lock<std::mutex>& lock, const Turn& work) {
    mHasLeader = true;
    mLeader = std::this_thread::get_id();
    lock.unlock();
    work();
    lock.lock();
    mHasLeader = false;
    mLeader = {};
    mChanged.notify_all();
}

void LogCommitter::commit(Work work) {
    Pending mine{work};
    {
        std::unique_lock<std::mutex> lock(mMutex);
        mWaiting.push_back(&mine);
        mChanged.wait(lock, [&] { return mine.isDone || !mHasLeader; });
        if (!mine.isDone) {
            const std::vector<Pending*> all = std::exchange(mWaiting, {});
            inTurn(lock, [&] { lead(all); });
            for (Pending* const pending : all) {
                pending->isDone = true;
            }
        }
    }
    if (mine.failure) {
        std::rethrow_exception(mine.failure);
    }
}

// A look that has begun may have missed what was appended before this call.
void LogCommitter::catchUp() {
    std::unique_lock<std::mutex> lock(mMutex);
    if (mLeader == std::this_thread::get_id()) {
        return;
    }
    if (!mQuestion) {
        mQuestion = std::make_shared<Question>();
    }
    const std::shared_ptr<Question> question = mQuestion;
    mChanged.wait(lock, [&] { return question->isDone || !mHasLeader; });
    if (!question->isDone) {
        mQuestion.reset();
        inTurn(lock, [&] { question->failure = failureOf([this] { follow(); }); });
        question->isDone = true;
    }
    lock.unlock();
    rethrow(question->failure);
}

void LogCommitter::follow() {
    requireNoFault();
    const LogMark seen = mMark;
    try {
        mLog.follow(seen, [&](const LogEntry& entry) { applyForeign(entry); }, {});
    } catch (const LogDiverged& error) {
        reportForeign();
        setFault(error.what());
        throw;
    } catch (...) {
        reportForeign();
        throw;
    }
    reportForeign();
}

void LogCommitter::restart(
    const std::function<Loaded(CommitLog& log)>& load,
    const std::function<void(std::shared_ptr<CommittedState> state)>& publish) {
    std::unique_lock<std::mutex> lock(mMutex);
    mChanged.wait(lock, [&] { return !mHasLeader; });
    std::exception_ptr failure;
    inTurn(lock, [&] {
        failure = failureOf([&] {
            Loaded loaded = load(mLog);
            mState = std::move(loaded.state);
            mCurrent = mState.get();
            mMark = std::move(loaded.mark);
            mLastForeign = mMark.position;
            publish(mState);
        });
    });
    if (!failure) {
        mFault.clear();
    }
    lock.unlock();
    rethrow(failure);
}

std::size_t LogCommitter::waiting() const {
    const std::lock_guard<std::mutex> guard(mMutex);
    return mWaiting.size();
}

void LogCommitter::lead(const std::vector<Pending*>& all) noexcept {
    const auto failRest = [&all](const auto& failure) {
        for (Pending* const pending : all) {
            if (!pending->failure && !pending->isApplied) {
                pending->failure = failure();
            }
        }
    };
    try {
        appendTogetherOrAlone(all);
    } catch (const HostError& error) {
        // Each thread gets an error of its own.
        failRest([&] { return std::make_exception_ptr(HostError(error.code(), error.what())); });
    } catch (...) {
        failRest([] { return std::current_exception(); });
    }
}

// One that the log has no room for does not take those with it that came at the same time.
void LogCommitter::appendTogetherOrAlone(const std::vector<Pending*>& all) {
    try {
        append(all);
        return;
    } catch (const LogTooLarge&) {
        if (all.size() == 1) {
            throw;
        }
    }
    for (Pending* const pending : all) {
        if (!pending->failure) {
            lead({pending});
        }
    }
}

void LogCommitter::append(const std::vector<Pending*>& all) {
    requireNoFault();
    for (Pending* const pending : all) {
        pending->mark.id = nextId();
        if (mFeed.isWatched()) {
            pending->changes = pending->work.describe();
        }
    }
    mGoing.clear();
    mGoing.reserve(all.size());
    const LogMark seen = mMark;
    try {
        mLog.append(
            seen, [&](const LogEntry& entry) { applyForeign(entry); },
            [&](CommitNumber head) { return decide(all, head); });
    } catch (const LogDiverged& error) {
        reportForeign();
        setFault(error.what());
        throw;
    } catch (const LogInDoubt& doubt) {
        reportForeign();
        settle(doubt);
    } catch (...) {
        reportForeign();
        throw;
    }
    reportForeign();
    applyGoing();
}

// All entries of one append are in the log, or none of them. If they are there, it returns.
void LogCommitter::settle(const LogInDoubt& doubt) {
    if (mGoing.empty()) {
        throw LogUnavailable(std::string("nothing was committed: ") + doubt.what());
    }
    const LogMark& mark = mGoing.front()->mark;
    const auto end = std::chrono::steady_clock::now() + mLog.patience();
    while (doubt.until() == LogInDoubt::Until::Found && std::chrono::steady_clock::now() < end) {
        std::optional<CommitNumber> found;
        try {
            found = mLog.find(mark.id);
        } catch (const std::exception&) {
            std::this_thread::sleep_for(kPause);
            continue;
        }
        if (!found) {
            throw LogUnavailable(std::string("nothing was committed: ") + doubt.what());
        }
        if (*found == mark.position) {
            return;
        }
        setFault(notNext(*found, mMark.position).what());
        break;
    }
    throw LogInDoubt(std::string(doubt.what()) + "; the entry would be " + mark.id,
                     LogInDoubt::Until::NewStart);
}

// Without an entry of another store the claims alone have kept others away since the snapshot.
std::vector<LogEntry> LogCommitter::decide(const std::vector<Pending*>& all, CommitNumber head) {
    if (head != mMark.position) {
        throw notNext(head, mMark.position);
    }
    std::vector<LogEntry> entries;
    entries.reserve(all.size());
    for (Pending* const pending : all) {
        try {
            if (!isFor(pending->work.state)) {
                pending->work.guard.refuse(kLoadedAnew);
            }
            if (hasForeignAfter(pending->work.guard.snapshot())) {
                pending->work.guard.recheck();
            }
            pending->mark.position = head + entries.size() + 1;
            entries.push_back(entryOf(*pending));
            mGoing.push_back(pending);
        } catch (const HostError&) {
            pending->failure = std::current_exception();
        }
    }
    return entries;
}

LogEntry LogCommitter::entryOf(const Pending& pending) const {
    const CommitNumber position = pending.mark.position;
    const TreeChange& change = pending.work.change;
    if (change.created.size() > kMaxPlaces) {
        throw HostError(OrvInvalidArgument, "a transaction cannot create more than " +
                                                std::to_string(kMaxPlaces) + " objects");
    }
    const WriteGuard& guard = pending.work.guard;
    LogEntry entry;
    entry.mark = pending.mark;
    entry.author = toText({guard.owner(), guard.author()}) + (mHost.empty() ? "" : " on " + mHost);
    entry.change = pending.work.entry;
    tree().read([&](const MoTree& tree) {
        for (const NewMo& created : change.created) {
            entry.created.push_back(
                {objectId(position, entry.created.size()),
                 created.parent != kNoNode ? idOf(tree.node(created.parent))
                                           : objectId(position, created.parentIndex),
                 created.moc, created.record.name(), created.record.attributes(), position});
        }
        for (const auto& [node, record] : change.modified) {
            entry.changed.push_back(
                {idOf(tree.node(node)), 0, 0, {}, record.attributes(), position});
        }
        for (const NodeId node : change.deleted) {
            entry.deleted.push_back(idOf(tree.node(node)));
        }
    });
    return entry;
}

// The entries are durable: from here on nothing is refused. What memory has no room for now comes
// back in the next turn like an entry of another store.
void LogCommitter::applyGoing() {
    for (Pending* const pending : mGoing) {
        try {
            const WriteGuard& guard = pending->work.guard;
            mFeed.publish(
                [&] {
                    return pending->changes ? std::move(*pending->changes)
                                            : pending->work.describe();
                },
                [&] {
                    const CommitNumber number = pending->mark.position;
                    tree().commitEntry(number, pending->work.change,
                                       {guard.owner(), guard.author()},
                                       VersionedTree::Origin::Here);
                    // Together with the tree, and without anything that could fail.
                    mMark = std::move(pending->mark);
                    pending->isApplied = true;
                    return number;
                });
        } catch (const std::exception& error) {
            throw LogInDoubt(std::string("the commit is in the log, and will be visible after the "
                                         "next one: ") +
                             error.what());
        }
    }
}

void LogCommitter::applyForeign(const LogEntry& entry) {
    if (entry.mark.position != mMark.position + 1) {
        throw notNext(entry.mark.position, mMark.position);
    }
    LogMark next = entry.mark;
    try {
        const LogChange change = LogChange::decoded(entry.change);
        TreeChange treeChange =
            tree().read([&](const MoTree& tree) { return toTreeChange(change, mModel, tree); });
        const bool isWatched = mFeed.isWatched();
        ChangeSet changes;
        if (isWatched) {
            if (mReports.size() == mReports.capacity()) {
                mReports.reserve(2 * mReports.size() + 1);
            }
            changes.author = entry.author;
            changes.number = next.position;
            changes.objects =
                tree().read([&](const MoTree& tree) { return describe(change, mModel, tree); });
        }
        tree().commitEntry(next.position, treeChange, {kNoTransaction, entry.author},
                           VersionedTree::Origin::Elsewhere);
        // Together with the tree, and without anything that could fail.
        mMark = std::move(next);
        mLastForeign = mMark.position;
        if (isWatched) {
            mReports.push_back(std::move(changes));
        }
    } catch (const BytesError& error) {
        throw LogDiverged("the entry at position " + std::to_string(entry.mark.position) +
                          " of the log cannot be applied: " + error.what());
    }
}

void LogCommitter::reportForeign() noexcept {
    for (const ChangeSet& changes : mReports) {
        mFeed.report(changes);
    }
    mReports.clear();
}

}
