// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_SCRIPT_H
#define ORV_TESTS_COMPONENT_SUPPORT_SCRIPT_H

#include "Call.h"
#include "OrvReturn.h"

#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace Scripted {

/// What a scripted function does when nothing is said about it.
using Act = std::function<OrvReturnT()>;

/// One departure from the ordinary run of a function: first for which calls, then what. Without a
/// word on which, it holds for all of them; of several that hold, the latest wins.
///
///     host.when("Router3.getMoAttribute").on("Unit=7").nth(2).fails(-5);
class Departure {
public:
    explicit Departure(std::string call) : mCall(std::move(call)) {}

    /// Only calls whose text contains \p text.
    Departure& on(std::string text);
    /// Only the first of these calls.
    Departure& once() { return nth(1); }
    /// Only the \p number th of these calls, counted from 1.
    Departure& nth(int number);

    /// The function answers \p code and does nothing.
    void fails(OrvReturnT code);
    /// The function does what it always does, but answers \p code.
    void returns(OrvReturnT code);
    /// The function does nothing and throws.
    template <class Exception>
    void throws(Exception exception) {
        mAction = [exception](const Call&, const Act&) -> OrvReturnT { throw exception; };
    }
    /// The function does what it always does, then throws.
    template <class Exception>
    void throwsAfterwards(Exception exception) {
        mAction = [exception](const Call&, const Act& act) -> OrvReturnT {
            act();
            throw exception;
        };
    }
    /// \p work first, then what the function always does.
    void runs(std::function<void()> work);
    /// \p look at the call first, while its pointers are good, then what the function always does.
    void shows(std::function<void(const Call&)> look);
    /// \p answer takes the place of the function; \p Out is the type of what the function's out
    /// parameter points at.
    template <class Out>
    void answers(std::function<OrvReturnT(Out&)> answer) {
        mAction = [answer = std::move(answer)](const Call& call, const Act&) {
            return answer(*static_cast<Out*>(call.out));
        };
    }

private:
    friend class Script;
    using Action = std::function<OrvReturnT(const Call&, const Act&)>;

    bool takes(const Call& call);

    std::string mCall;
    std::string mText;
    int mNumber = 0; ///< 0: every one
    int mSeen = 0;
    Action mAction;
};

/// The journal of all calls in their order, and the departures from the ordinary run.
///
/// Threads: every operation, any thread. No lock is held while a function acts.
class Script {
public:
    /// \p call is one of the names in knownCalls(); another one ends the test with an exception.
    Departure& when(const std::string& call);

    /// Records \p call and answers it, ordinarily with \p act.
    OrvReturnT play(Call call, const Act& act);
    /// Records a call that has no answer.
    void record(Call call);

    /// The calls so far; with \p prefix those whose name begins with it.
    std::vector<Call> calls(const std::string& prefix = "") const;
    std::vector<std::string> texts(const std::string& prefix = "") const;
    void forgetCalls();

    /// False: calls are answered and not kept, for long runs.
    void keepCalls(bool keep);

private:
    void keep(Call call);
    std::shared_ptr<Departure> departureFor(const Call& call);

    mutable std::mutex mMutex;
    bool mKeep = true;
    std::vector<Call> mCalls;
    std::vector<std::shared_ptr<Departure>> mDepartures;
};

/// The name of every call that the scripted host can get.
const std::vector<std::string>& knownCalls();

}

#endif
