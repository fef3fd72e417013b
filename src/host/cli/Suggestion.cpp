// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Suggestion.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <numeric>

namespace OrvHost {

namespace {

char lower(char character) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
}

// Number of letters to insert, remove or exchange, case aside.
std::size_t distance(const std::string& left, const std::string& right) {
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < left.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < right.size(); ++j) {
            const std::size_t exchanged = diagonal + (lower(left[i]) == lower(right[j]) ? 0U : 1U);
            diagonal = row[j + 1];
            row[j + 1] = std::min({exchanged, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
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

std::string didYouMean(const std::string& word, const std::vector<std::string>& candidates) {
    const std::string found = closest(word, candidates);
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
