// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Suggestion.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <iterator>
#include <numeric>
#include <string_view>

namespace OrvHost {

namespace {

char lower(char character) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
}

// The number of letters to insert, remove or replace, or of neighbours to swap; upper and lower
// case count as equal.
std::size_t distance(const std::string& left, const std::string& right) {
    std::vector<std::vector<std::size_t>> steps(left.size() + 1,
                                                std::vector<std::size_t>(right.size() + 1));
    std::iota(steps[0].begin(), steps[0].end(), std::size_t{0});
    for (std::size_t i = 1; i <= left.size(); ++i) {
        steps[i][0] = i;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const bool isSame = lower(left[i - 1]) == lower(right[j - 1]);
            steps[i][j] = std::min({steps[i - 1][j - 1] + (isSame ? 0U : 1U), steps[i - 1][j] + 1,
                                    steps[i][j - 1] + 1});
            const bool isSwapped = i > 1 && j > 1 && lower(left[i - 1]) == lower(right[j - 2]) &&
                                   lower(left[i - 2]) == lower(right[j - 1]);
            if (isSwapped) {
                steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
            }
        }
    }
    return steps.back().back();
}

}

std::string closest(const std::string& word, const std::vector<std::string>& candidates) {
    const std::size_t tolerated = 1 + word.size() / 4;
    std::size_t best = tolerated + 1;
    std::string found;
    for (const std::string& candidate : candidates) {
        const std::size_t needed = distance(word, candidate);
        if (needed < best && needed < std::max(word.size(), candidate.size())) {
            best = needed;
            found = candidate;
        }
    }
    return found;
}

std::vector<std::string> namesakes(const std::string& word,
                                   const std::vector<std::string>& candidates) {
    const auto bareName = [](const std::string& name) {
        return std::string_view(name).substr(name.rfind(':') + 1);
    };
    std::vector<std::string> found;
    std::copy_if(candidates.begin(), candidates.end(), std::back_inserter(found),
                 [&](const std::string& candidate) {
                     return candidate != word && bareName(candidate) == bareName(word);
                 });
    return found;
}

std::string noClass(const std::string& name, const std::vector<std::string>& classes) {
    const std::vector<std::string> others = namesakes(name, classes);
    return "there is no class " + name + (others.empty() ? "" : ", but " + enumerate(others));
}

std::string didYouMean(const std::string& word, const std::vector<std::string>& candidates) {
    const std::vector<std::string> others = namesakes(word, candidates);
    if (others.size() > 1) {
        return {};
    }
    const std::string found = others.empty() ? closest(word, candidates) : others.front();
    return found.empty() ? std::string() : " Did you mean " + found + "?";
}

std::string enumerate(const std::vector<std::string>& names, std::size_t limit) {
    if (names.empty()) {
        return "none";
    }
    std::string text;
    for (std::size_t position = 0; position < std::min(limit, names.size()); ++position) {
        text += (position > 0 ? ", " : "") + names[position];
    }
    if (names.size() > limit) {
        text += " and " + std::to_string(names.size() - limit) + " more";
    }
    return text;
}

}
