// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_HOST_SUPPORT_REPLAYLOG_H
#define ORV_TESTS_HOST_SUPPORT_REPLAYLOG_H

#include "store/CommitLog.h"

#include <utility>

namespace OrvHost {

/// The state at the start, then the entries of another log. It is only read.
class ReplayLog : public CommitLog {
public:
    /// \p start: the mark in front of the first entry of \p log, which must outlive the object.
    ReplayLog(CommitLog& log, LogMark start) : mLog(log), mStart(std::move(start)) {}

    bool isNew() override { return false; }
    LogMark load(const ObjectVisitor&) override { return mStart; }
    LogMark fill(const ObjectSource&) override { return mStart; }
    void append(const LogMark&, const CatchUp&, const Decide&) override {
        throw LogUnavailable("this log is only read");
    }
    void follow(const LogMark& seen, const CatchUp& catchUp,
                std::chrono::milliseconds patience) override {
        mLog.follow(seen, catchUp, patience);
    }
    std::optional<CommitNumber> find(const std::string& id) override { return mLog.find(id); }

private:
    CommitLog& mLog;
    const LogMark mStart;
};

}

#endif
