// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SHELL_SCRIPTRUNNER_H
#define ORV_HOST_CLI_SHELL_SCRIPTRUNNER_H

#include "cli/errors/CliErrors.h"
#include "cli/input/Words.h"

#include <functional>
#include <istream>
#include <string>

namespace OrvHost {

/// Runs scripts, and scripts that they run, line by line. One thread.
class ScriptRunner {
public:
    /// Runs one line; \p place, "file:12", comes before its errors.
    using RunLine = std::function<ExitStatus(const std::string& line, const std::string& place)>;

    /// \p isEnded says whether no further line is to be run.
    ScriptRunner(RunLine runLine, std::function<bool()> isEnded)
        : mRunLine(std::move(runLine)), mIsEnded(std::move(isEnded)) {}

    /// Runs a script until its end, the session's end, or, unless \p keepGoing, the first error.
    /// Returns the first status that was not ExitOk.
    ExitStatus run(std::istream& script, const std::string& name, bool keepGoing);

    /// Runs the file that the words of `source` name, until the first error. Throws UsageError and
    /// AnswerError.
    ExitStatus source(Words words);

private:
    RunLine mRunLine;
    std::function<bool()> mIsEnded;
    int mDepth = 0; ///< of scripts that run scripts
};

}

#endif
