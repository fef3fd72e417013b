// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_SUGGESTION_H
#define ORV_HOST_BASE_SUGGESTION_H

#include <string>
#include <vector>

namespace OrvHost {

/// The candidate that \p word most likely means, one or a few letters away; empty if none is near.
std::string closest(const std::string& word, const std::vector<std::string>& candidates);

/// The candidates that have the same name after their last ":", or instead of one: for "Cell"
/// "radio:Cell", and the other way round.
std::vector<std::string> namesakes(const std::string& word,
                                   const std::vector<std::string>& candidates);

/// "there is no class NAME", and if there are classes of that name ", but A, B".
std::string noClass(const std::string& name, const std::vector<std::string>& classes);

/// " Did you mean NAME?", or nothing. Nothing also if several candidates have the same name after
/// their last ":".
std::string didYouMean(const std::string& word, const std::vector<std::string>& candidates);

/// "A, B, C", cut off after \p limit names with a count of the others; "none" if there are no
/// names.
std::string enumerate(const std::vector<std::string>& names, std::size_t limit = 30);

}

#endif
