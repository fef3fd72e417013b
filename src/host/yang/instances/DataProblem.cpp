// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DataProblem.h"

#include "base/Suggestion.h"
#include "yang/instances/JsonEnd.h"
#include "yang/source/Hints.h"
#include "yang/source/ModuleStatements.h"
#include "yang/types/TypeDescription.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace OrvHost {
namespace {

constexpr Hint kHints[] = {
    {"must be namespace-qualified",
     "the outermost names are written with their module, as in \"module:Name\""},
    {"non-num64-encoded", "numbers of 64 bits are written in quotes"},
    {"non-string-encoded", "texts, numbers of 64 bits and decimal numbers are written in quotes"},
    {"non-number-encoded", "a number of up to 32 bits is written without quotes"},
    {"non-boolean-encoded", "true and false are written without quotes"},
    {"non-empty-encoded", "the value of an empty leaf is written as [null]"},
    {"Missing XML namespace",
     "the outermost elements name their module's namespace: xmlns=\"...\""},
    {"No module named",
     "the name before the colon is a module's, and the module must be loaded; to skip such "
     "data, see --skip-unknown"},
    {"No module with namespace",
     "the namespace is a module's, and the module must be loaded; to skip such data, see "
     "--skip-unknown"},
    {"not found as a child of",
     "the model has no such name there; to skip such data, see --skip-unknown"},
    {"missing its key", "every entry of a list has its key; it is the last part of the DN"},
    {"to be represented as JSON", "lists are written as [...], containers as {...}"}};

/// A path in data without the parts that identify the entries of lists.
std::string schemaPath(const std::string& dataPath) {
    std::string path;
    bool isInside = false;
    char quote = '\0';
    for (const char c : dataPath) {
        if (isInside) {
            quote = c == quote ? '\0' : (quote == '\0' && (c == '"' || c == '\'') ? c : quote);
            isInside = c != ']' || quote != '\0';
        } else if (c == '[') {
            isInside = true;
        } else {
            path += c;
        }
    }
    return path;
}

/// The node of the schema at a path in data, or null.
const lysc_node* nodeAt(const YangContext& context, const std::string& dataPath) {
    if (dataPath.empty()) {
        return nullptr;
    }
    const lysc_node* node = lys_find_path(context.get(), nullptr, schemaPath(dataPath).c_str(), 0);
    context.takeMessages(); // drops the message that there is no such node, which is expected here
    return node;
}

/// What was expected at a path in data, if it is the path of a value.
std::string expectedAt(const YangContext& context, const std::string& dataPath) {
    const lysc_node* node = nodeAt(context, dataPath);
    const bool isValue = node != nullptr && (node->nodetype & (LYS_LEAF | LYS_LEAFLIST)) != 0;
    return isValue ? "; expected: " + expectedBy(node) : "";
}

/// What stands in quotes after \p before; empty if \p text has no such thing.
std::string quotedAfter(const std::string& text, const std::string& before) {
    const std::size_t found = text.find(before + '"');
    if (found == std::string::npos) {
        return {};
    }
    const std::size_t begin = found + before.size() + 1;
    return text.substr(begin, text.find('"', begin) - begin);
}

/// " (Did you mean NAME?)", if the message is about a name that the modules do not have at that
/// place, and they have one that is near. A name of another module than that of the place comes
/// with its module.
std::string nearNameFor(const YangContext& context, const YangMessage& message) {
    const std::string wrong = quotedAfter(message.text, "Node ");
    const std::string module = quotedAfter(message.text, "not found in the ");
    const lysc_node* parent = nodeAt(context, message.path);
    const lys_module* home = parent != nullptr
                                 ? parent->module
                                 : ly_ctx_get_module_implemented(context.get(), module.c_str());
    if (message.text.find("not found") == std::string::npos || home == nullptr) {
        return {};
    }
    std::vector<std::string> names;
    std::vector<std::string> written;
    const lysc_node* node = nullptr;
    while ((node = lys_getnext(node, parent, parent == nullptr ? home->compiled : nullptr, 0)) !=
           nullptr) {
        names.emplace_back(node->name);
        written.push_back((node->module == home ? "" : std::string(node->module->name) + ":") +
                          node->name);
    }
    const auto found = std::find(names.begin(), names.end(), closest(wrong, names));
    return found == names.end()
               ? ""
               : " (Did you mean " + written[static_cast<std::size_t>(found - names.begin())] +
                     "?)";
}

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

/// Where a value ends and neither a mark nor the end of the data follows, the library quotes a
/// character that is not there.
std::string wordingOf(const YangMessage& message, std::string_view data) {
    std::string text = withSingleSpaces(message.text);
    const bool quotesNothing =
        endsWith(text, "character \"") || text.find("character sequence \"\"") != std::string::npos;
    if (!quotesNothing) {
        return text;
    }
    const bool isXml = data.find_first_not_of(" \t\r\n") == data.find('<');
    return std::string(isXml ? "the text ends too early" : missingInJson(data));
}

}

Problem takeDataProblem(const YangContext& context, const std::string& label,
                        std::string_view text) {
    const std::vector<YangMessage> messages = context.takeMessages();
    if (messages.empty()) {
        return {{label, 0}, "the data cannot be read"};
    }
    const YangMessage& message = messages.front();
    const std::string place = message.path.empty() ? "" : " at " + message.path;
    const std::string nearName = nearNameFor(context, message);
    return {{label, message.line},
            wordingOf(message, text) +
                (nearName.empty() ? hintFor(kHints, message.text) : nearName) + place +
                expectedAt(context, message.path)};
}

}
