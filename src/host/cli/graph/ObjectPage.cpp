// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ObjectPage.h"

#include "cli/output/ValueJson.h"
#include "graph/ObjectPageText.h"

#include <cstdint>
#include <string_view>
#include <utility>

namespace OrvHost {

namespace {

constexpr std::string_view kPlaceOfData = "ORV_DATA";

constexpr std::int64_t kMostExact = (std::int64_t(1) << 53) - 1;

/// The same with texts for the integers that a browser would round.
JsonValue withExactNumbers(JsonValue value) {
    value.changeEach([](JsonValue& inner) { inner = withExactNumbers(std::move(inner)); });
    const bool isExact =
        !value.isInteger() ||
        (value.isUnsigned()
             ? value.get<std::uint64_t>() <= static_cast<std::uint64_t>(kMostExact)
             : value.get<std::int64_t>() >= -kMostExact && value.get<std::int64_t>() <= kMostExact);
    return isExact ? value : JsonValue(toLine(value));
}

JsonValue toJson(const PicturedObject& object, bool isOutside) {
    JsonValue entry{{"dn", object.dn}};
    if (object.parent) {
        entry["parent"] = *object.parent;
    }
    if (object.hiddenBelow > 0) {
        entry["below"] = object.hiddenBelow;
    }
    if (isOutside) {
        entry["outside"] = true;
    }
    entry["values"] = withExactNumbers(OrvHost::toJson(object.values));
    entry["links"] = JsonValue::array();
    for (const PicturedLink& link : object.links) {
        entry["links"].add({link.attribute, link.target});
    }
    return entry;
}

/// The document as it may stand in a script element: a "<" could end it, or begin a comment.
std::string toScriptData(const JsonValue& document) {
    std::string text;
    for (const char letter : toLine(document)) {
        if (letter == '<') {
            text += "\\u003c";
        } else {
            text += letter;
        }
    }
    return text;
}

}

std::string objectPage(const TreePicture& picture, const ReferenceLines& lines,
                       const std::vector<InstanceProblem>& violations) {
    std::string objects;
    for (const auto* part : {&picture.objects, &picture.outside}) {
        for (const PicturedObject& object : *part) {
            picture.throwIfCancelled();
            objects += objects.empty() ? "" : ",";
            objects += toScriptData(toJson(object, part == &picture.outside));
        }
    }
    const JsonValue rest{{"title", picture.title}, {"unread", lines.unread()}};
    std::string problems;
    for (const InstanceProblem& problem : violations) {
        picture.throwIfCancelled();
        problems += problems.empty() ? "" : ",";
        problems +=
            toScriptData({{"dn", problem.dn}, {"other", problem.otherDn}, {"text", problem.text}});
    }
    picture.throwIfCancelled();
    std::string page(kObjectPageText);
    return page.replace(page.find(kPlaceOfData), kPlaceOfData.size(),
                        "{\"objects\":[" + objects + "],\"violations\":[" + problems + "]," +
                            toScriptData(rest).substr(1));
}

}
