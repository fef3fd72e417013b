// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SYSTEM_TERMINAL_H
#define ORV_TESTS_SYSTEM_TERMINAL_H

#include <string>
#include <vector>

#include <sys/types.h>

namespace SystemTest {

/// What the program shows when it waits for a command outside of transactions.
constexpr const char* kPrompt = "orvhost> ";
constexpr const char* kControlC = "\x03";
constexpr const char* kControlD = "\x04";

/// orvhost on a pseudo-terminal; the test types.
class Terminal {
public:
    /// \p pager is the value of the variable PAGER; empty: there is none.
    explicit Terminal(const std::vector<std::string>& arguments, const std::string& pager = {});
    /// Ends the program if it is still running.
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    void type(const std::string& keys);

    /// Reads until \p text has appeared since the last call; false if it does not appear in time.
    /// The text that was read is in seen().
    bool waitFor(const std::string& text);

    /// The text since the last successful waitFor, including what that has read.
    const std::string& seen() const { return mSeen; }

    /// Waits for the end of the program and returns its exit status.
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
