// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "JoinedLines.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

namespace OrvHost {

namespace {

using Kind = std::tuple<std::size_t, std::size_t, LineKind, bool>;

}

void LineEnd::add(const std::string& attribute, std::size_t count) {
    const auto place = std::lower_bound(
        attributes.begin(), attributes.end(), attribute,
        [](const auto& known, const std::string& name) { return known.first < name; });
    if (place != attributes.end() && place->first == attribute) {
        place->second += count;
    } else {
        attributes.emplace(place, attribute, count);
    }
}

std::string LineEnd::text() const {
    std::string text;
    for (const auto& [name, count] : attributes) {
        text += (text.empty() ? "" : ", ") + name;
        text += count > 1 ? " ×" + std::to_string(count) : "";
    }
    return text;
}

std::vector<JoinedLine> joinLines(const TreePicture& picture, const PictureBoxes& boxes,
                                  const ReferenceLines& lines) {
    std::vector<JoinedLine> joined;
    std::map<Kind, std::size_t> positions;
    for (const ReferenceLine& drawn : lines.all()) {
        picture.throwIfCancelled();
        std::size_t from = boxes.find(drawn.from).value();
        std::size_t to = boxes.find(drawn.to).value();
        std::pair<const std::string*, std::size_t> there{&drawn.attribute, drawn.count};
        std::pair<const std::string*, std::size_t> back{&drawn.back, drawn.backCount};
        // All lines both ways between two boxes are written in one direction.
        const bool isTurned =
            to < from || (to == from && !drawn.back.empty() && drawn.back < drawn.attribute);
        if (drawn.kind == LineKind::BothWays && isTurned) {
            std::swap(from, to);
            std::swap(there, back);
        }
        const bool isWrong = !drawn.violation.empty();
        const auto [known, isNew] =
            positions.emplace(Kind{from, to, drawn.kind, isWrong}, joined.size());
        if (isNew) {
            joined.push_back({from, to, drawn.kind, isWrong, {}, {}});
        }
        JoinedLine& line = joined[known->second];
        line.fromEnd.add(*there.first, there.second);
        if (!back.first->empty()) {
            line.toEnd.add(*back.first, back.second);
        }
    }
    return joined;
}

}
