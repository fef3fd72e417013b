// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AlignedText.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace OrvHost {

namespace {

std::string padded(const std::string& text, std::size_t columns) {
    const std::size_t taken = shownColumns(text);
    return text + std::string(columns > taken ? columns - taken : 0, ' ');
}

bool holdsStructs(const JsonValue& value) {
    return !value.elements().empty() && value.elements().front().isObject();
}

std::size_t nameColumns(const JsonValue& object) {
    std::size_t columns = 0;
    for (const auto& [name, value] : object.members()) {
        if (!value.isObject() && !holdsStructs(value)) {
            columns = std::max(columns, shownColumns(name));
        }
    }
    return columns;
}

std::string layOutStruct(const std::string& name, const JsonValue& value, std::size_t indent) {
    return std::string(indent, ' ') + name + "\n" + layOut(value, indent + 2);
}

std::string layOutValues(const std::string& name, const JsonValue& values, std::size_t indent,
                         std::size_t columns) {
    std::string text;
    for (const JsonValue& value : values.elements()) {
        text += std::string(indent, ' ') + padded(text.empty() ? name : "", columns) + "  " +
                scalarText(value) + "\n";
    }
    return text;
}

std::string layOutMember(const std::string& name, const JsonValue& value, std::size_t indent,
                         std::size_t columns) {
    if (value.isObject()) {
        return layOutStruct(name, value, indent);
    }
    if (holdsStructs(value)) {
        std::string text;
        std::size_t position = 0;
        for (const JsonValue& element : value.elements()) {
            text += layOutStruct(name + "[" + std::to_string(position++) + "]", element, indent);
        }
        return text;
    }
    if (!value.elements().empty()) {
        return layOutValues(name, value, indent, columns);
    }
    return layOutValues(name, JsonValue::array({value.isArray() ? JsonValue() : value}), indent,
                        columns);
}

}

std::string withoutControls(std::string_view text, std::string_view kept) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        auto byte = static_cast<unsigned char>(text[at]);
        // U+0080 to U+009F are two bytes; to some terminals U+009B is the same as ESC and "[".
        const bool isOfSecondSet = byte == 0xc2U && at + 1 < text.size() &&
                                   (static_cast<unsigned char>(text[at + 1]) & 0xe0U) == 0x80U;
        const bool isControl = byte < 0x20U || byte == 0x7fU || isOfSecondSet;
        if (!isControl || kept.find(text[at]) != std::string_view::npos) {
            result += text[at];
        } else if (text[at] == '\n') {
            result += "\\n";
        } else {
            byte = static_cast<unsigned char>(text[isOfSecondSet ? ++at : at]);
            char code[8];
            std::snprintf(code, sizeof code, "\\x%02x", static_cast<unsigned int>(byte));
            result += code;
        }
    }
    return result;
}

// Continuation bytes of UTF-8 have no width.
std::size_t shownColumns(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xc0U) != 0x80U;
    }));
}

std::string layOutColumns(const std::vector<std::string>& texts, std::size_t columns) {
    std::size_t widest = 0;
    for (const std::string& text : texts) {
        widest = std::max(widest, shownColumns(text));
    }
    const std::size_t perLine = std::max<std::size_t>(1, (columns + 2) / (widest + 2));
    std::string result;
    for (std::size_t at = 0; at < texts.size(); ++at) {
        const bool isLast = (at + 1) % perLine == 0 || at + 1 == texts.size();
        result += isLast ? texts[at] + "\n" : padded(texts[at], widest + 2);
    }
    return result;
}

std::string scalarText(const JsonValue& scalar) {
    if (scalar.isNull()) {
        return "-";
    }
    if (scalar.isText()) {
        const std::string text = withoutControls(scalar.get<std::string>(), {});
        return text.empty() ? "\"\"" : text;
    }
    return toLine(scalar);
}

std::string layOut(const JsonValue& object, std::size_t indent) {
    const std::size_t columns = nameColumns(object);
    std::string text;
    for (const auto& [name, value] : object.members()) {
        text += layOutMember(name, value, indent, columns);
    }
    return text;
}

std::string layOutValue(const JsonValue& value) {
    if (value.isObject()) {
        return layOut(value);
    }
    if (!value.isArray()) {
        return scalarText(value) + "\n";
    }
    std::string text;
    std::size_t position = 0;
    for (const JsonValue& element : value.elements()) {
        // It must be visible where one struct ends and the next begins.
        text += element.isObject()
                    ? layOutStruct("[" + std::to_string(position++) + "]", element, 0)
                    : layOutValue(element);
    }
    return text;
}

std::string layOutTable(const std::vector<std::string>& headings,
                        const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> columns(headings.size());
    for (std::size_t column = 0; column < headings.size(); ++column) {
        columns[column] = shownColumns(headings[column]);
        for (const auto& row : rows) {
            columns[column] = std::max(columns[column], shownColumns(row[column]));
        }
    }
    const auto line = [&](const std::vector<std::string>& cells) {
        std::string text;
        for (std::size_t column = 0; column + 1 < cells.size(); ++column) {
            text += padded(cells[column], columns[column]) + "  ";
        }
        text += cells.back();
        text.erase(text.find_last_not_of(' ') + 1);
        return text + "\n";
    };
    std::string text = line(headings);
    for (const auto& row : rows) {
        text += line(row);
    }
    return text;
}

std::string wrapped(const std::string& text, std::size_t columns, std::size_t indent) {
    std::string result;
    std::string line; // of the paragraph, not ended yet
    const auto endLine = [&] {
        result += line.empty() ? "" : line + "\n";
        line.clear();
    };
    std::istringstream lines(text);
    for (std::string given; std::getline(lines, given);) {
        if (given.empty() || given.front() == ' ') {
            endLine();
            result += given + "\n";
            continue;
        }
        std::istringstream words(given);
        for (std::string word; words >> word;) {
            if (!line.empty() && shownColumns(line) + 1 + shownColumns(word) > columns) {
                endLine();
                line = std::string(indent, ' ') + word;
            } else {
                line += (line.empty() ? "" : " ") + word;
            }
        }
    }
    endLine();
    return result;
}

}
