// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_GRAPHVIZ_H
#define ORV_HOST_CLI_GRAPH_GRAPHVIZ_H

#include "client/CancellationToken.h"

#include <chrono>
#include <string>

namespace OrvHost {

/// Converts a DOT text into an SVG picture with the program dot of Graphviz, which is found in PATH
/// and run as a child process. Throws AnswerError if it is missing or fails, with its error output.
/// Waits until it has ended; to end it means to end what it has started, too. If \p cancellation is
/// cancelled, before or meanwhile, ends it and throws CancelledError. Signals of the terminal, such
/// as Ctrl-C, do not reach it: at Ctrl-C, it would draw a part of the picture, and report success.
/// If it has not ended after \p limit, ends it and throws AnswerError, whose text ends with \p
/// advice: what the user can do then.
std::string renderSvg(const std::string& dot, std::chrono::seconds limit, const std::string& advice,
                      const CancellationToken& cancellation);

}

#endif
