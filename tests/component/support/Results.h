// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_RESULTS_H
#define ORV_TESTS_COMPONENT_SUPPORT_RESULTS_H

#include "Records.h"
#include "Value.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Scripted {

class Script;

/// Hands out result records as a producer (router or interceptor) does, and watches that each comes
/// back exactly once, with its own pointer. What comes back is freed at once, so that a later use
/// is an error that AddressSanitizer sees. There is one such object at a time.
///
/// Threads: every operation, any thread.
class Results {
public:
    /// Each return of a result is recorded in \p script as "Producer.release('label')".
    explicit Results(Script& script);
    Results(const Results&) = delete;
    Results& operator=(const Results&) = delete;
    ~Results();

    /// Fills \p out with \p value.
    void give(const std::string& label, const Value& value, OrvMoAttributeValueResult_3& out);
    /// Fills \p out with one container for each of \p values.
    void giveAll(const std::string& label, const std::vector<Value>& values,
                 OrvMoAttributeValuesResult_3& out);

    /// The call that handed out \p given failed: the receiver need not give it back.
    void forgive(const void* given);

    /// True if \p given has been handed out and has not come back.
    bool isOut(const void* given) const;

    /// The number of results that were handed out, have not come back and were not forgiven.
    std::size_t outstanding() const;
    /// What has gone wrong so far, for people; the outstanding ones included.
    std::vector<std::string> complaints() const;

private:
    struct Loan {
        std::string label;
        bool forgiven = false;
        std::unique_ptr<Records> records;
    };

    static void release(OrvMoAttributeValueContainer_3* container);
    static void releaseAll(OrvMoAttributeValueContainer_3** containers);
    void lend(const void* given, const std::string& label, std::unique_ptr<Records> records);
    void takeBack(const void* given, const char* function);

    Script& mScript;
    mutable std::mutex mMutex;
    std::map<const void*, Loan> mLoans;
    std::vector<std::string> mComplaints;
    static Results* sCurrent;
};

}

#endif
