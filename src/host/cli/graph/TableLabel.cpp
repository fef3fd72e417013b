// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TableLabel.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace OrvHost {

namespace {

constexpr std::size_t kTitleColumns = 40;
constexpr std::size_t kRowColumns = 44;
constexpr int kRowSize = 8;
constexpr const char* kReplacement = "\xEF\xBF\xBD";

/// The length of the letter that \p text, which is not empty, begins with; 0: it is not UTF-8.
std::size_t letterLength(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    std::size_t length = 0;
    if (first < 0x80) {
        length = 1;
    } else if (first >= 0xC2 && first < 0xF5) {
        length = first < 0xE0 ? 2 : (first < 0xF0 ? 3 : 4);
    }
    if (length == 0 || text.size() < length) {
        return 0;
    }
    std::uint32_t code = length == 1 ? first : first & (0xFFU >> (length + 1));
    for (const char letter : text.substr(1, length - 1)) {
        const auto byte = static_cast<unsigned char>(letter);
        if ((byte & 0xC0U) != 0x80U) {
            return 0;
        }
        code = code << 6U | (byte & 0x3FU);
    }
    // Too long a form, half of a pair, beyond the last letter, and two that XML does not have.
    const bool isWrong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000) ||
                         (code >= 0xD800 && code < 0xE000) || code > 0x10FFFF || code == 0xFFFE ||
                         code == 0xFFFF;
    return isWrong ? 0 : length;
}

std::vector<std::string> lettersOf(std::string_view text) {
    std::vector<std::string> letters;
    while (!text.empty()) {
        const std::size_t length = letterLength(text);
        const auto first = static_cast<unsigned char>(text[0]);
        const bool isControl = (first < 0x20 && first != '\n') || first == 0x7F;
        if (length == 0) {
            letters.emplace_back(kReplacement);
        } else if (!isControl) {
            letters.emplace_back(text.substr(0, length));
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return letters;
}

std::string escaped(const std::string& line) {
    std::string result;
    for (const char letter : line) {
        switch (letter) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += letter;
        }
    }
    return result;
}

std::string cell(const std::string& attributes, const std::string& markup,
                 const std::string& colour, int size) {
    return "<TR><TD ALIGN=\"LEFT\"" + attributes + "><FONT COLOR=\"" + colour + "\" POINT-SIZE=\"" +
           std::to_string(size) + "\">" + markup + "</FONT></TD></TR>";
}

}

std::vector<std::string> wrapped(const std::string& text, std::size_t columns) {
    std::vector<std::string> lines(1);
    std::vector<std::string> line; // letter by letter
    const auto endLine = [&](std::size_t length) {
        for (std::size_t at = 0; at < length; ++at) {
            lines.back() += line[at];
        }
        line.erase(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(length));
    };
    for (const std::string& letter : lettersOf(text)) {
        if (letter == "\n") {
            endLine(line.size());
            lines.emplace_back();
            continue;
        }
        if (line.size() >= columns && letter != " ") {
            std::size_t length = line.size();
            while (length > columns / 2 && line[length - 1] != " " && line[length - 1] != ",") {
                --length;
            }
            endLine(length > columns / 2 ? length : line.size());
            lines.emplace_back();
        }
        line.push_back(letter);
    }
    endLine(line.size());
    return lines;
}

std::string markupText(const std::string& text, std::size_t columns) {
    std::string markup;
    const std::vector<std::string> lines = wrapped(text, columns);
    for (const std::string& line : lines) {
        // An empty element is an error.
        markup += line.empty() ? " " : escaped(line);
        markup += lines.size() > 1 ? "<BR ALIGN=\"LEFT\"/>" : "";
    }
    return markup;
}

std::string markupRow(const std::string& markup, const std::string& colour, int size) {
    return cell("", markup, colour, size);
}

TableLabel::TableLabel(const std::string& title, const std::string& colour)
    : mTitle("<FONT COLOR=\"" + colour + "\"><B>" + markupText(title, kTitleColumns) +
             "</B></FONT>") {}

void TableLabel::note(const std::string& text, const std::string& colour) {
    mNotes += cell("", markupText(text, kRowColumns), colour, kRowSize);
}

std::string TableLabel::port(const std::string& text, const std::string& colour) {
    const std::pair<std::string, std::string> row(text, colour);
    const auto known = std::find(mPorts.begin(), mPorts.end(), row);
    const auto number = known - mPorts.begin();
    if (known == mPorts.end()) {
        mPorts.push_back(row);
    }
    return "p" + std::to_string(number);
}

std::string TableLabel::markup(const Look& look) const {
    std::string table = "<TABLE CELLBORDER=\"0\" CELLSPACING=\"0\" CELLPADDING=\"2\" BORDER=\"";
    table += look.border.empty() ? "0\">"
                                 : std::string(look.isThick ? "2" : "1") + "\" COLOR=\"" +
                                       look.border + "\" BGCOLOR=\"" + look.fill + "\"" +
                                       (look.isDashed ? " STYLE=\"DASHED\"" : "") + ">";
    table += "<TR><TD ALIGN=\"LEFT\" PORT=\"title\">" + mTitle + "</TD></TR>";
    for (std::size_t number = 0; number < mPorts.size(); ++number) {
        table +=
            cell(" PORT=\"p" + std::to_string(number) + "\"",
                 markupText(mPorts[number].first, kRowColumns), mPorts[number].second, kRowSize);
    }
    return table + mNotes + "</TABLE>";
}

}
