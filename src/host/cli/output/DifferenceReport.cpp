// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DifferenceReport.h"

namespace OrvHost {

namespace {

const char* wordOf(ObjectDifference::Kind kind) {
    switch (kind) {
    case ObjectDifference::Kind::Deleted:
        return "deleted";
    case ObjectDifference::Kind::Created:
        return "created";
    case ObjectDifference::Kind::Changed:
        break;
    }
    return "changed";
}

const char* signOf(ObjectDifference::Kind kind) {
    switch (kind) {
    case ObjectDifference::Kind::Deleted:
        return "- ";
    case ObjectDifference::Kind::Created:
        return "+ ";
    case ObjectDifference::Kind::Changed:
        break;
    }
    return "~ ";
}

JsonValue documentOf(const ObjectDifference& object) {
    JsonValue attributes = JsonValue::object();
    for (const AttributeDifference& each : object.attributes) {
        attributes[each.def->name] = {{"before", toJson(each.before, *each.def)},
                                      {"after", toJson(each.after, *each.def)}};
    }
    return {{"change", wordOf(object.kind)}, {"dn", object.dn}, {"attributes", attributes}};
}

std::string headOf(const ObjectDifference& object, const Colours& colours) {
    const std::string text = signOf(object.kind) + object.dn;
    switch (object.kind) {
    case ObjectDifference::Kind::Deleted:
        return colours.removed(text);
    case ObjectDifference::Kind::Created:
        return colours.added(text);
    case ObjectDifference::Kind::Changed:
        break;
    }
    return colours.changed(text);
}

std::string valuesOf(const AttributeDifference& attribute, ObjectDifference::Kind kind) {
    std::string before = toLine(toJson(attribute.before, *attribute.def));
    std::string after = toLine(toJson(attribute.after, *attribute.def));
    switch (kind) {
    case ObjectDifference::Kind::Deleted:
        return before;
    case ObjectDifference::Kind::Created:
        return after;
    case ObjectDifference::Kind::Changed:
        break;
    }
    return before + " -> " + after;
}

}

JsonValue toJson(const std::vector<ObjectDifference>& differences) {
    JsonValue documents = JsonValue::array();
    for (const ObjectDifference& object : differences) {
        documents.add(documentOf(object));
    }
    return documents;
}

std::string toText(const std::vector<ObjectDifference>& differences, const Colours& colours) {
    std::string text;
    for (const ObjectDifference& object : differences) {
        text += headOf(object, colours) + '\n';
        for (const AttributeDifference& attribute : object.attributes) {
            text += "    " + attribute.def->name + ": " + valuesOf(attribute, object.kind) + '\n';
        }
    }
    return text;
}

}
