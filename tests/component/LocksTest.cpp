// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Which locks the component holds in what order, and how far it comes when one of them fails. The
// two functions below take the place of the system's for every shared object in the process, so
// these tests have a program of their own.

#include "Network.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dlfcn.h>
#include <pthread.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>
#include <vector>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

using SystemFunction = int (*)(pthread_mutex_t*);

SystemFunction systemFunction(const char* name) {
    return reinterpret_cast<SystemFunction>(dlsym(RTLD_NEXT, name));
}

// The shared object that an address lies in, by where it begins. The component's locks lie in its
// one object, which is a static of its own.
const void* sharedObjectOf(const void* address) {
    Dl_info found = {};
    return dladdr(address, &found) != 0 ? found.dli_fbase : nullptr;
}

struct Step {
    bool taken;
    const pthread_mutex_t* mutex;
};

// Of the watched thread and the watched shared object only.
thread_local const void* watched = nullptr;
std::vector<Step> steps;
const pthread_mutex_t* failing = nullptr;

bool isWatched(const pthread_mutex_t* mutex) {
    return watched != nullptr && sharedObjectOf(mutex) == watched;
}

}

extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
    static const SystemFunction lock = systemFunction("pthread_mutex_lock");
    if (!isWatched(mutex)) {
        return lock(mutex);
    }
    if (mutex == failing) {
        failing = nullptr;
        return EINVAL;
    }
    steps.push_back({true, mutex});
    return lock(mutex);
}

extern "C" int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept {
    static const SystemFunction unlock = systemFunction("pthread_mutex_unlock");
    if (isWatched(mutex)) {
        steps.push_back({false, mutex});
    }
    return unlock(mutex);
}

/// The network, with the component's locks known by what the host sees of them: each is held while
/// one of its functions is called.
class Locks : public Network {
protected:
    Locks() {
        watched = sharedObjectOf(reinterpret_cast<const void*>(host.record().start));
        know("registry", "Transaction.join", [this] { open(kEarlier); });
        know("back-pointers", "VekRouter3.existsMo", [this] {
            EXPECT_EQ(client().set(kEarlier, unit("8"), "cells", refs({cell("3")})), OrvOk);
        });
        const Value twoSites = refs({site("1"), site("1")});
        EXPECT_EQ(client().set(kEarlier, unit("8"), "site", twoSites), OrvOk);
        know("references", "ThreadContext.addMessage", [this] { validate(kEarlier); });
        EXPECT_EQ(host.resource().finish(kEarlier), OrvOk);
        knowIterators();
        host.forget();
        steps.clear();
    }

    ~Locks() override {
        watched = nullptr;
        failing = nullptr;
    }

    unsigned long long open(unsigned long txHandle) const {
        const auto opened = client().open(txHandle, kRoot, "Unit");
        EXPECT_EQ(opened.code, OrvOk);
        return opened.thing;
    }

    void* open1(unsigned long txHandle) const {
        const auto opened = host.client1().open(txHandle, kRoot, "Unit");
        EXPECT_EQ(opened.code, OrvOk);
        return opened.thing;
    }

    const pthread_mutex_t* lockOf(const std::string& name) const {
        const auto found = std::find_if(known.begin(), known.end(),
                                        [&](const auto& entry) { return entry.second == name; });
        return found->first;
    }

    /// The lock that was taken last of those that are held.
    static const pthread_mutex_t* innermost() {
        std::vector<const pthread_mutex_t*> held;
        for (const Step& step : steps) {
            if (step.taken) {
                held.push_back(step.mutex);
            } else {
                held.pop_back();
            }
        }
        return held.empty() ? nullptr : held.back();
    }

    /// What has been locked and unlocked since \p work began.
    template <class Work>
    std::vector<std::string> stepsOf(const Work& work) const {
        steps.clear();
        work();
        std::vector<std::string> texts;
        for (const Step& step : std::exchange(steps, {})) {
            texts.push_back((step.taken ? "lock " : "unlock ") + nameOf(step.mutex));
        }
        return texts;
    }

    static const unsigned long kEarlier = 50; ///< a transaction that is over when the test begins

private:
    template <class Work>
    void know(const std::string& name, const std::string& call, const Work& work) {
        const pthread_mutex_t* held = nullptr;
        host.when(call).once().runs([&held] { held = innermost(); });
        steps.clear();
        work();
        add(held, name);
    }

    void knowIterators() {
        const auto iterator = open(kEarlier);
        void* const old = open1(kEarlier);
        steps.clear();
        EXPECT_EQ(client().next(iterator).code, OrvOk);
        add(steps.empty() ? nullptr : steps.front().mutex, "iterators");
        steps.clear();
        EXPECT_EQ(host.client1().next(old).code, OrvOk);
        add(steps.empty() ? nullptr : steps.front().mutex, "iterators of version 1");
        EXPECT_EQ(host.resource().finish(kEarlier), OrvOk);
    }

    void add(const pthread_mutex_t* mutex, const std::string& name) {
        EXPECT_NE(mutex, nullptr) << name;
        EXPECT_EQ(nameOf(mutex), "another") << "two locks in one: " << name;
        known.emplace_back(mutex, name);
    }

    std::string nameOf(const pthread_mutex_t* mutex) const {
        for (const auto& [address, name] : known) {
            if (address == mutex) {
                return name;
            }
        }
        return "another";
    }

    std::vector<std::pair<const pthread_mutex_t*, std::string>> known;
};

// It is recorded under the same lock, for the validation.
TEST_F(Locks, ReferenceTakenBack_TheFarSideIsWrittenUnderTheLock) {
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), OrvOk);
    const pthread_mutex_t* held = nullptr;
    host.when("VekRouter3.setMoAttribute").once().runs([&held] { held = innermost(); });
    steps.clear();
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({})), OrvOk);
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), IsEmpty());
    EXPECT_EQ(held, lockOf("back-pointers"));
}

TEST_F(Locks, Interceptor_IsRegisteredFoundAndDeregisteredUnderALock) {
    const auto isLocked = ElementsAre("lock another", "unlock another");
    const std::string path = "ManagedElement,Unit";
    Interceptor& interceptor = host.bareInterceptor(path);
    interceptor.initialize();
    EXPECT_THAT(stepsOf([&] { EXPECT_EQ(interceptor.registerClass(path), OrvOk); }), isLocked);
    EXPECT_THAT(stepsOf([&] { EXPECT_EQ(client().get(1, unit("7"), "cells").code, OrvOk); }),
                isLocked);
    EXPECT_THAT(stepsOf([&] { interceptor.deregisterClass(path); }), isLocked);
}

// What the transaction keeps goes under the lock of the registry, and everything else before.
TEST_F(Locks, Finish_PendingAdditionsThenReferencesThenTheMemory) {
    open(1);
    open1(1);
    EXPECT_THAT(stepsOf([&] { EXPECT_EQ(host.resource().finish(1), OrvOk); }),
                ElementsAre("lock back-pointers", "unlock back-pointers", "lock references",
                            "unlock references", "lock registry", "lock iterators",
                            "unlock iterators", "lock iterators of version 1",
                            "unlock iterators of version 1", "unlock registry"));
}

TEST_F(Locks, FinishOfAnUnknownTransaction_TakesTheSameLocks) {
    EXPECT_THAT(stepsOf([&] { EXPECT_EQ(host.resource().finish(99), OrvOk); }),
                ElementsAre("lock back-pointers", "unlock back-pointers", "lock references",
                            "unlock references", "lock registry", "unlock registry"));
}

TEST_F(Locks, Stop_TheRegistrysLockIsNotTaken) {
    open(1);
    EXPECT_THAT(stepsOf([&] { EXPECT_EQ(host.stopComponent(), OrvOk); }),
                ElementsAre("lock another", "unlock another", "lock another", "unlock another",
                            "lock another", "unlock another", "lock iterators", "unlock iterators",
                            "lock references", "unlock references"));
}

// What is living then has lost its router.
TEST_F(Locks, StopThatFailsAtTheLastService_AnOpenIteratorIsNotServed) {
    const auto iterator = open(1);
    steps.clear();
    EXPECT_EQ(host.stopComponent(), OrvOk);
    const pthread_mutex_t* const lastService = steps.at(4).mutex;
    EXPECT_EQ(host.startComponent(), OrvOk);
    EXPECT_EQ(client().next(iterator).code, OrvNotActive) << "ended with the first stop";
    const auto living = open(2);
    failing = lastService;
    EXPECT_EQ(host.stopComponent(), OrvFailure);
    EXPECT_EQ(failing, nullptr) << "the lock was not reached";
    host.forget();
    EXPECT_EQ(client().next(living).code, OrvNotActive);
    EXPECT_THAT(host.calls(), IsEmpty());
}

// The validator of back-pointers is stopped by then: it judges nothing, and says why.
TEST_F(Locks, StopThatFailsAtTheReferences_BackPointersAreNoLongerJudged) {
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), OrvOk);
    failing = lockOf("references");
    EXPECT_EQ(host.stopComponent(), OrvFailure);
    EXPECT_EQ(failing, nullptr) << "the lock was not reached";
    host.forget();
    EXPECT_FALSE(validate(1));
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_THAT(
        host.logs(),
        Contains("log 3 validateBiDirs: Transaction 1 cannot be validated without router and "
                 "model repository"));
}

// Back-pointers themselves are let go of last. Only an operation that is on its way sees that,
// which is why a host must not stop the component under one.
TEST_F(Locks, StopThatFailsAtTheReferences_BackPointersAreStillEdited) {
    host.interceptor("ManagedElement,Unit");
    host.when("VekRouter3.existsMo").once().runs([this] {
        failing = lockOf("references");
        EXPECT_EQ(host.stopComponent(), OrvFailure);
    });
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), OrvOk);
    EXPECT_EQ(failing, nullptr) << "the lock was not reached";
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), ElementsAre(unitInside("7")));
}
