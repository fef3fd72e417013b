// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptRunner.h"

#include "base/TextFile.h"
#include "cli/input/ScriptReader.h"

#include <fstream>

namespace OrvHost {

namespace {

constexpr int kMostScripts = 20;

}

ExitStatus ScriptRunner::run(std::istream& script, const std::string& name, bool keepGoing) {
    ExitStatus first = ExitOk;
    ScriptReader reader(script);
    while (!mIsEnded() && reader.next()) {
        const ExitStatus status =
            mRunLine(reader.line(), name + ":" + std::to_string(reader.number()));
        first = first == ExitOk ? status : first;
        if (first != ExitOk && !keepGoing) {
            break;
        }
    }
    return first;
}

ExitStatus ScriptRunner::source(Words words) {
    const std::string file = words.take("the FILE");
    words.end();
    if (mDepth == kMostScripts) {
        throw AnswerError(file + ": more than " + std::to_string(kMostScripts) +
                          " scripts run one another");
    }
    if (const std::string problem = whyNotReadable(file); !problem.empty()) {
        throw AnswerError(file + ": " + problem);
    }
    std::ifstream script(file);
    ++mDepth;
    const ExitStatus status = run(script, file, false);
    --mDepth;
    return status;
}

}
