// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SYSTEM_TERMINAL_H
#define ORV_TESTS_SYSTEM_TERMINAL_H

#include <string>
#include <vector>

#include <sys/types.h>

namespace SystemTest {

/// orvhost on a pseudo-terminal, with somebody who types.
class Terminal {
public:
    explicit Terminal(const std::vector<std::string>& arguments);
    /// Ends the program if it still runs.
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    void type(const std::string& keys);

    /// Reads until \p text has come since the last call; false if it does not come in time. What
    /// was read is in seen().
    bool waitFor(const std::string& text);

    /// What came since the last successful waitFor, that included.
    const std::string& seen() const { return mSeen; }

    /// Waits for the end of the program and gives its exit status.
    int finish();

private:
    bool readSome();

    pid_t mChild = -1;
    int mMaster = -1;
    std::string mUnread;
    std::string mSeen;
};

}

#endif
