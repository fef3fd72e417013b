// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "JoinedLines.h"

#include <map>
#include <tuple>
#include <utility>

namespace OrvHost {

namespace {

/// How many references there are in each attribute, in the order of the first ones.
class Attributes {
public:
    void add(const std::string& name) {
        for (auto& [known, count] : mCounts) {
            if (known == name) {
                ++count;
                return;
            }
        }
        mCounts.emplace_back(name, 1);
    }

    std::string text() const {
        std::string text;
        for (const auto& [name, count] : mCounts) {
            text += (text.empty() ? "" : ", ") + name;
            text += count > 1 ? " ×" + std::to_string(count) : "";
        }
        return text;
    }

private:
    std::vector<std::pair<std::string, std::size_t>> mCounts;
};

struct Ends {
    Attributes from;
    Attributes to;
};

using Kind = std::tuple<std::size_t, std::size_t, LineKind, bool>;

}

std::vector<JoinedLine> joinLines(const PictureBoxes& boxes, const ReferenceLines& lines) {
    std::vector<std::pair<Kind, Ends>> joined;
    std::map<Kind, std::size_t> positions;
    for (const ReferenceLine& drawn : lines.all()) {
        std::size_t from = boxes.find(drawn.from).value();
        std::size_t to = boxes.find(drawn.to).value();
        const std::string* attribute = &drawn.attribute;
        const std::string* back = &drawn.back;
        // All lines both ways between two boxes are written in one direction.
        const bool isTurned = to < from || (to == from && *back < *attribute);
        if (drawn.kind == LineKind::BothWays && isTurned) {
            std::swap(from, to);
            std::swap(attribute, back);
        }
        const Kind kind{from, to, drawn.kind, !drawn.violation.empty()};
        const auto [known, isNew] = positions.emplace(kind, joined.size());
        if (isNew) {
            joined.emplace_back(kind, Ends());
        }
        Ends& ends = joined[known->second].second;
        ends.from.add(*attribute);
        if (!back->empty()) {
            ends.to.add(*back);
        }
    }
    std::vector<JoinedLine> result;
    for (const auto& [kind, ends] : joined) {
        const auto& [from, to, lineKind, isWrong] = kind;
        result.push_back({from, to, lineKind, isWrong, ends.from.text(), ends.to.text()});
    }
    return result;
}

}
