// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_THREADCONTEXT_H
#define ORV_HOST_STORE_THREADCONTEXT_H

#include "VekMgmtSpiThreadContext_2.h"
#include "model/OnlyOne.h"

#include <cstddef>
#include <string>
#include <vector>

namespace OrvHost {

/// Messages for the client of the calling thread, offered to components as the table
/// VekMgmtSpiThreadContext_2 and taken from this class by whoever runs a client's request.
///
/// Each thread has a list of its own; nothing is locked and no thread sees another's messages. The
/// table's functions know no object, so one ThreadContext at a time lives in a process.
class ThreadContext {
public:
    /// Kind of the messages that come through the table: why a request or a transaction is refused.
    static constexpr int Verdict = 1;
    /// Kind of the messages with which the router explains a code that it answers. A component may
    /// have asked on its own account and ignored the code, so a client's request that succeeded can
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

    /// The table, under "VekMgmtSpiThreadContextService", "VekMgmtSpiThreadContext", "2". Lives as
    /// long as this object. Its addMessage answers OrvInvalidArgument for a null text.
    VekMgmtSpiThreadContext_2* getInterface() { return &mInterface; }

    void addMessage(int kind, std::string text);

    /// Number of messages that wait for the calling thread's client.
    std::size_t size() const;
    /// Takes the messages out, all of them or those behind the first \p mark, oldest first.
    std::vector<Message> take(std::size_t mark = 0);
    void clear();

private:
    OnlyOne<ThreadContext> mOnlyOne;
    VekMgmtSpiThreadContext_2 mInterface;
};

}

#endif
