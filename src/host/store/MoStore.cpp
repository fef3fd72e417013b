// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MoStore.h"

#include "TreeLoader.h"
#include "WriteCheck.h"
#include "base/DnView.h"

#include <thread>
#include <utility>

namespace OrvHost {

namespace {

// The steps above the last one are those of an object that exists, or the parent is not found.
void requireLastStep(DnView dn) {
    const bool hasEmptyParent = dn.hasParent() && dn.parent().isEmpty();
    if (!dn.last().isValid() || hasEmptyParent) {
        throw HostError(OrvInvalidArgument,
                        "this is no DN, expected steps Class=value with commas between");
    }
}

NodeId requireParent(const MoTree& tree, DnView dn) {
    const NodeId parent = dn.isEmpty() ? kRootNode : tree.find(dn.text(), kLatest);
    if (parent == kNoNode) {
        throw HostError(OrvNotExist, "the parent '" + std::string(dn.text()) +
                                         "' does not exist, expected parents before children");
    }
    return parent;
}

std::string initialAttributes(const ClassDef& moc, const std::string& name,
                              const std::vector<NamedValue>& attributes) {
    WriteCheck::name(moc, name);
    std::string bytes = WriteCheck::initial(moc, name, attributes, WriteCheck::Writer::System);
    const auto missing = WriteCheck::missing(moc, bytes, false);
    if (!missing.empty()) {
        throw HostError(OrvInvalidArgument, "the mandatory attribute '" + missing.front() +
                                                "' of class '" + moc.name + "' is missing");
    }
    return bytes;
}

void add(const Model& model, MoTree& tree, const std::string& dn,
         const std::vector<NamedValue>& attributes) {
    const DnView parts(dn);
    requireLastStep(parts);
    const DnStep step = parts.last();
    const ClassIndex moc = WriteCheck::requireClass(model, std::string(step.type()));
    const NodeId parent = requireParent(tree, parts.parent());
    WriteCheck::containment(
        model, parent == kRootNode ? nullptr : &model.classes[tree.node(parent).moc], moc);
    const std::string name(step.value());
    const std::string bytes = initialAttributes(model.classes[moc], name, attributes);
    if (tree.find(dn, kLatest) != kNoNode) {
        throw HostError(OrvAlreadyExist, "there is an object with this DN already");
    }
    tree.add(parent, moc, MoTree::hashOf(dn), MoRecord(name, bytes), 0);
}

// Objects that were loaded at start have no commit, so their place is that in the tree.
void visitLoaded(const MoTree& tree, const CommitLog::ObjectVisitor& take) {
    tree.eachAdded([&](NodeId id, const MoNode& node) {
        if (id >= kMaxPlaces) {
            throw HostError(OrvInvalidArgument, "a store cannot be filled with more than " +
                                                    std::to_string(kMaxPlaces - 1) + " objects");
        }
        take({objectId(0, id), objectId(0, node.parent), node.moc, node.record.name(),
              node.record.attributes(), 0});
    });
}

}

MoStore::MoStore(const Model& model)
    : mModel(model), mState(std::make_shared<CommittedState>(model)) {}

void MoStore::load(const std::string& dn, const std::vector<NamedValue>& attributes) {
    if (mLog) {
        throw HostError(OrvHostWrongState, "data is loaded before the commits go into a log, and "
                                           "they do already");
    }
    withDn(dn.empty() ? "an empty DN" : std::string_view(dn),
           [&] { state()->tree.load([&](MoTree& tree) { add(mModel, tree, dn, attributes); }); });
}

std::unique_ptr<StoreTransaction> MoStore::begin(TransactionId id, std::string author) {
    if (mIsFresh) {
        catchUp();
    }
    return std::make_unique<StoreTransaction>(mModel, state(), mFeed, mLog.get(), id,
                                              std::move(author));
}

LogCommitter::Loaded MoStore::takeFrom(CommitLog& log) {
    auto fresh = std::make_shared<CommittedState>(mModel);
    MoTree loaded(mModel);
    const TreeLoader loader(mModel, loaded);
    LogMark mark = log.load(loader);
    loader.requireCommitsUntil(mark.position);
    fresh->tree.replace(loaded, mark.position);
    return {std::move(fresh), std::move(mark)};
}

// Without a log it stays the same.
std::shared_ptr<CommittedState> MoStore::state() const {
    if (!mLog) {
        return mState;
    }
    const std::lock_guard<std::mutex> guard(mMutex);
    return mState;
}

// The former state may go with its last owner, which takes long: not under the lock.
void MoStore::use(std::shared_ptr<CommittedState> state) {
    const std::lock_guard<std::mutex> guard(mMutex);
    mState.swap(state);
}

void MoStore::attach(CommitLog& log, std::string host) {
    const std::shared_ptr<CommittedState> old = state();
    if (mLog || old->tree.last() > 0) {
        throw HostError(OrvHostWrongState,
                        mLog ? "the commits go into a log already"
                             : "a transaction has committed already, and a log must have all "
                               "commits");
    }
    LogCommitter::Loaded start{old, {}};
    old->tree.load([&](MoTree& tree) {
        if (tree.liveCount() > 0) {
            start.mark =
                log.fill([&](const CommitLog::ObjectVisitor& take) { visitLoaded(tree, take); });
        } else {
            start = takeFrom(log);
        }
    });
    use(start.state);
    mLog = std::make_unique<LogCommitter>(mModel, std::move(start.state), mFeed, log,
                                          std::move(host), std::move(start.mark));
}

LogCommitter& MoStore::requireLog() const {
    if (!mLog) {
        throw HostError(OrvHostWrongState, "the commits of this store go into no log");
    }
    return *mLog;
}

void MoStore::catchUp() {
    requireLog().catchUp();
}

void MoStore::catchUpTo(CommitNumber number, std::chrono::milliseconds patience,
                        const std::function<void()>& onPause) {
    constexpr std::chrono::milliseconds kPause{5};
    const auto end = std::chrono::steady_clock::now() + patience;
    while (lastCommit() < number) {
        catchUp();
        if (lastCommit() >= number) {
            return;
        }
        if (std::chrono::steady_clock::now() >= end) {
            throw LogUnavailable("commit " + std::to_string(number) + " has not come within " +
                                 std::to_string(patience.count()) + " ms; the last one is commit " +
                                 std::to_string(lastCommit()));
        }
        onPause();
        std::this_thread::sleep_for(kPause);
    }
}

void MoStore::reload() {
    requireLog().restart([this](CommitLog& log) { return takeFrom(log); },
                         [this](std::shared_ptr<CommittedState> fresh) { use(std::move(fresh)); });
}

std::uint64_t MoStore::size() const {
    return state()->tree.read([](const MoTree& tree) { return tree.liveCount(); });
}

StoreMemory MoStore::memory() const {
    return state()->tree.read([](const MoTree& tree) { return tree.memory(); });
}

}
