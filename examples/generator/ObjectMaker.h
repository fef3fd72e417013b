// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXAMPLES_GENERATOR_OBJECTMAKER_H
#define ORV_EXAMPLES_GENERATOR_OBJECTMAKER_H

#include "yang/instances/DataObject.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace RanGenerator {

/// Builds one object; its attributes keep the order in which they are added.
class ObjectMaker {
public:
    explicit ObjectMaker(std::string dn) { mObject.dn = std::move(dn); }

    ObjectMaker& text(std::string name, std::string value);
    ObjectMaker& texts(std::string name, std::vector<std::string> values);
    ObjectMaker& choice(std::string name, std::string enumerator);
    ObjectMaker& flag(std::string name, bool value);
    ObjectMaker& number(std::string name, std::int64_t value);
    ObjectMaker& count(std::string name, std::uint64_t value);
    ObjectMaker& counts(std::string name, const std::vector<std::uint64_t>& values);
    ObjectMaker& decimal(std::string name, double value);
    /// Adds no attribute if there are no references.
    ObjectMaker& references(std::string name, std::vector<std::string> dns);
    ObjectMaker& reference(std::string name, std::string dn);
    /// Adds one struct value for each of the makers; their attributes are the members.
    ObjectMaker& structs(std::string name, std::vector<ObjectMaker> values);

    OrvHost::DataObject take() { return std::move(mObject); }

private:
    ObjectMaker& add(std::string name, OrvHost::ValueKind kind, std::vector<OrvHost::Value> values);

    OrvHost::DataObject mObject;
};

/// The members of a struct.
inline ObjectMaker members() {
    return ObjectMaker("");
}

}

#endif
