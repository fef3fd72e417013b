// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_INPUT_LOGLEVEL_H
#define ORV_HOST_CLI_INPUT_LOGLEVEL_H

#include <string>
#include <vector>

namespace OrvHost {

/// A level of logging from a word (off, error, warning, info, trace) or a number. Throws
/// UsageError.
unsigned int parseLogLevel(const std::string& text);

/// The word for the messages that a level lets through.
std::string logLevelWord(unsigned int level);

/// The words for levels, the quietest first.
std::vector<std::string> logLevelWords();

}

#endif
