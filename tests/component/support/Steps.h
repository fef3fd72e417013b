// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_STEPS_H
#define ORV_TESTS_COMPONENT_SUPPORT_STEPS_H

#include "HostCode.h"
#include "OrvReturn.h"

#include <cstdint>
#include <string>

namespace Scripted {

/// What is called.
enum class Called {
    Component, ///< a step of the host
    Host       ///< what the component asks of it
};

/// True if orv-validate runs this process: it is told each call, to have them if the process does
/// not get to its end. Otherwise telling does nothing. Any thread.
bool isStoryKept();

/// One call, which orv-validate is told of when this is made and when it goes. On one thread, those
/// that are made last go first.
///
///     Step step(Called::Component, [] { return std::string("orvLCMinit()"); });
///     return step.answered(init());
class Step {
public:
    /// \p makeText gives the call as a person reads it; it is asked only if the story is kept.
    template <class MakeText>
    Step(Called called, const MakeText& makeText) {
        if (isStoryKept()) {
            const HostCode here;
            begin(called, makeText());
        }
    }
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;
    /// Without an answer the call has returned, or thrown.
    ~Step();

    /// The answer of the call, and \p more that came with it. Gives back the code.
    OrvReturnT answered(OrvReturnT code, const std::string& more = "");

private:
    void begin(Called called, const std::string& text);
    void end(const char* outcome);

    Called mCalled = Called::Component;
    std::uint64_t mNumber = 0; ///< 0: not told, or has ended
    int mExceptions = 0;
};

}

#endif
