// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_TRANSACTIONS_THREADCONTEXT_H
#define ORV_HOST_TRANSACTIONS_THREADCONTEXT_H

#include "VekMgmtSpiThreadContext_2.h"
#include "base/OnlyOne.h"

#include <cstddef>
#include <string>
#include <vector>

namespace OrvHost {

/// Messages for the client of the calling thread. Components add them through the table
/// VekMgmtSpiThreadContext_2; the code that runs a client's request takes them out with this class.
///
/// Each thread has its own list; nothing is locked and no thread sees another's messages. The
/// table's functions get no object argument, so only one ThreadContext at a time can live in a
/// process.
class ThreadContext {
public:
    /// The kind of messages that come through the table: why a request or a transaction is refused.
    static constexpr int Verdict = 1;
    /// The kind of messages with which the router explains a code that it returns. A component may
    /// have called the router itself and ignored the code, so a client's request that succeeded can
    /// leave such messages, too.
    static constexpr int Explanation = 2;

    struct Message {
        int kind = Verdict;
        std::string text;
    };

    /// \throws std::logic_error if there is one already
    ThreadContext();
    ~ThreadContext();
    ThreadContext(const ThreadContext&) = delete;
    ThreadContext& operator=(const ThreadContext&) = delete;

    /// The table, under VekMgmtSpiThreadContext_2_Id. Lives as long as this object. Its addMessage
    /// returns OrvInvalidArgument for a null text.
    VekMgmtSpiThreadContext_2* getInterface() { return &mInterface; }

    void addMessage(int kind, std::string text);

    /// The number of messages that wait on the calling thread.
    std::size_t size() const;
    /// Takes the messages out, oldest first: all of them, or all except the first \p mark.
    std::vector<Message> take(std::size_t mark = 0);
    void clear();

private:
    OnlyOne<ThreadContext> mOnlyOne;
    VekMgmtSpiThreadContext_2 mInterface;
};

}

#endif
