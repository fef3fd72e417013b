// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_GRAPHVIZ_H
#define ORV_HOST_CLI_GRAPH_GRAPHVIZ_H

#include <string>

namespace OrvHost {

/// The picture of a DOT text as SVG, made by the program dot of Graphviz, which is found in PATH
/// and run as a child. Throws AnswerError if it is not there or fails, with what it said. Blocks
/// until it has ended.
std::string renderSvg(const std::string& dot);

}

#endif
