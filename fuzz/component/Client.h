// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_COMPONENT_CLIENT_H
#define ORV_FUZZ_COMPONENT_CLIENT_H

#include "Arguments.h"
#include "Host.h"
#include "Interceptors.h"
#include "LoadedComponent.h"

#include <initializer_list>
#include <optional>
#include <vector>

namespace Fuzz {

/// The clients of one run, and the host's hand on the component's life. Each operation is made from
/// bytes, and what it answers is judged by what it was given and by what the host has answered.
class Client {
public:
    static constexpr unsigned long kTransactions = 3;

    Client(Host& host, ByteSource& source, bool asksOtherThread);
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    void start();
    /// One operation.
    void operate();
    /// Ends all transactions and looks for what they have left. The host is honest from then on.
    void endAll();

private:
    enum class Life { Stopped, Started, Unknown };

    /// What an operation has answered; no code if something else than a std::exception came out.
    using Outcome = std::optional<OrvReturnT>;

    /// What is known of a call before it is made.
    struct Demand {
        bool lacks = false;       ///< something is missing that the component must read
        const char* dn = nullptr; ///< that must be translated
        bool mayBeEmpty = false;  ///< an empty DN is no failure
        OrvReturnT whenStopped = OrvNotActive;
        bool hasGate = true; ///< a stopped service answers before it looks
    };

    struct Iterator {
        unsigned long txHandle;
        unsigned long long handle;
        bool isLiving;
    };

    // Version 3 and 3_1.
    void set();
    void get();
    void getMany();
    void iterate();
    void next();
    void create();
    void remove();
    void action();
    void finalize();
    void exists();
    void count();
    void setMany();
    // Version 1.
    void set1();
    void get1();
    void iterate1();
    void next1();
    void create1();
    void remove1();
    void action1();
    // The transactional resource.
    void join();
    void prepare();
    void commit();
    void abort();
    void finish();
    void validate();
    // Around the operations.
    void intercept();
    void letThrough();
    void stop();
    void restart();
    void changeIdentity();
    void changeLogLevel();

    template <class Function>
    Outcome call(const char* name, const Demand& demand, const Function& function);
    void judge(const Demand& demand, const Outcome& outcome, std::size_t calls);
    /// The code must be that of the one of the functions that was called last, or OrvFailure
    /// where \p mayFail is true.
    void judgeByCallee(const Outcome& outcome, std::initializer_list<Slot> callees, bool mayFail);
    void requireThat(bool isTrue, const char* what) const;
    bool hasJoinFailed(unsigned long txHandle) const;

    void useAndRelease(const OrvMoAttributeValueResult_3& result);
    void useAndRelease(const OrvMoAttributeValuesResult_3& result);
    template <class Function>
    void release(bool isHosts, const Function& function);
    template <class Handle, class Table>
    void openWith(const Table& table, std::vector<Iterator>& iterators, const char* name,
                  Slot callee);
    template <class Handle, class Table>
    void stepWith(const Table& table, const std::vector<Iterator>& iterators,
                  const std::vector<Iterator>& others, const char* name, Slot callee);
    void phase(const char* name, OrvReturnT (*function)(unsigned long));

    unsigned long transaction();
    void finishTransaction(unsigned long txHandle);
    void letIteratorsDie(const std::optional<unsigned long>& txHandle);
    void lookForWaiting(unsigned long txHandle);
    void lookForReferences(unsigned long txHandle);
    void touchAllLocks(bool stops);

    Host& mHost;
    ByteSource& mSource;
    Interceptors mInterceptors;
    std::vector<Iterator> mIterators;
    std::vector<Iterator> mIterators1;
    Life mLife = Life::Stopped;
    bool mAsksOtherThread;
};

template <class Function>
Client::Outcome Client::call(const char* name, const Demand& demand, const Function& function) {
    mHost.begin(name);
    const std::size_t calls = mHost.journal.calls();
    Outcome outcome;
    try {
        outcome = function();
        mHost.journal.word("gives").number(*outcome).end();
    } catch (const OtherException&) {
        mHost.journal.word("lets pass").end();
    }
    judge(demand, outcome, mHost.journal.calls() - calls);
    return outcome;
}

}

#endif
