// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "XmlTags.h"

#include <algorithm>

namespace OrvHost {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

}

/// Goes on to a place, or to the end.
void XmlTags::goTo(std::size_t at) {
    const std::size_t end = std::min(at, mText.size());
    const std::string_view passed = mText.substr(mAt, end - mAt);
    mLine += static_cast<int>(std::count(passed.begin(), passed.end(), '\n'));
    mAt = end;
}

void XmlTags::skip(std::string_view end) {
    const std::size_t found = mText.find(end, mAt);
    goTo(found == std::string_view::npos ? found : found + end.size());
}

/// Where the ">" of the tag stands that begins here; the values of attributes may have one, too.
std::size_t XmlTags::endOfTag() const {
    char quote = '\0';
    std::size_t at = mAt;
    for (; at < mText.size() && (quote != '\0' || mText[at] != '>'); ++at) {
        const char letter = mText[at];
        if (quote != '\0') {
            quote = letter == quote ? '\0' : quote;
        } else if (letter == '"' || letter == '\'') {
            quote = letter;
        }
    }
    return at;
}

/// Notes the namespaces among the attributes of a tag.
void XmlTags::declare(std::string_view attributes) {
    while (true) {
        const std::size_t begin = attributes.find_first_not_of(kBlanks);
        const std::size_t equals = attributes.find('=');
        if (begin == std::string_view::npos || equals == std::string_view::npos || begin > equals) {
            return;
        }
        std::string_view name = attributes.substr(begin, equals - begin);
        name = name.substr(0, name.find_first_of(kBlanks));
        const std::size_t open = attributes.find_first_of("\"'", equals);
        const std::size_t close =
            open == std::string_view::npos ? open : attributes.find(attributes[open], open + 1);
        if (close == std::string_view::npos) {
            return;
        }
        const std::string_view value = attributes.substr(open + 1, close - open - 1);
        if (name == "xmlns") {
            mDeclarations.push_back({"", value, mDepth});
        } else if (name.starts_with("xmlns:")) {
            mDeclarations.push_back({name.substr(6), value, mDepth});
        }
        attributes.remove_prefix(close + 1);
    }
}

std::string_view XmlTags::namespaceOf(std::string_view prefix) const {
    const auto found = std::find_if(mDeclarations.rbegin(), mDeclarations.rend(),
                                    [&](const Declaration& one) { return one.prefix == prefix; });
    return found == mDeclarations.rend() ? std::string_view() : found->xmlNamespace;
}

std::optional<XmlTags::Tag> XmlTags::next() {
    while (true) {
        goTo(mText.find('<', mAt));
        const std::string_view rest = mText.substr(mAt);
        if (rest.empty()) {
            return std::nullopt;
        }
        if (rest.starts_with("<!--")) {
            skip("-->");
        } else if (rest.starts_with("<![CDATA[")) {
            skip("]]>");
        } else if (rest.starts_with("<?")) {
            skip("?>");
        } else {
            break;
        }
    }
    Tag tag;
    tag.line = mLine;
    const std::size_t end = endOfTag();
    std::string_view inside = mText.substr(mAt + 1, end - mAt - 1);
    goTo(end + 1);
    tag.begins = !inside.starts_with('/');
    tag.ends = !tag.begins || inside.ends_with('/');
    if (!tag.begins) {
        inside.remove_prefix(1);
    } else if (tag.ends) {
        inside.remove_suffix(1);
    }
    const std::string_view name = inside.substr(0, inside.find_first_of(kBlanks));
    const std::size_t colon = name.find(':');
    tag.name = colon == std::string_view::npos ? name : name.substr(colon + 1);
    if (tag.begins) {
        ++mDepth;
        declare(inside.substr(name.size()));
        tag.xmlNamespace =
            namespaceOf(colon == std::string_view::npos ? "" : name.substr(0, colon));
    }
    if (tag.ends) {
        while (!mDeclarations.empty() && mDeclarations.back().depth == mDepth) {
            mDeclarations.pop_back();
        }
        mDepth -= mDepth > 0 ? 1 : 0;
    }
    return tag;
}

}
