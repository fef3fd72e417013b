// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Client1.h"

#include "NamedRecords.h"
#include "OfferedTable.h"
#include "base/DnView.h"
#include "router/ContainerConversion.h"
#include "store/WriteCheck.h"

#include <algorithm>

namespace OrvHost {

namespace {

using Conversion = ContainerConversion<Records1>;
using NamedValues = std::vector<NamedValue>;

NamedValues::const_iterator findNamed(const NamedValues& values, const std::string& name) {
    return std::find_if(values.begin(), values.end(),
                        [&](const NamedValue& value) { return value.first == name; });
}

bool isKnown(const ActionDef& def, const std::string& name) {
    return std::any_of(def.parameters.begin(), def.parameters.end(),
                       [&](const AttributeDef& parameter) { return parameter.name == name; });
}

// The number of places up to the last parameter that is given.
std::size_t placesNeeded(const ActionDef& def, const NamedValues& parameters) {
    std::size_t places = def.parameters.size();
    while (places > 0 &&
           findNamed(parameters, def.parameters[places - 1].name) == parameters.end()) {
        --places;
    }
    return places;
}

AttributeValue valueOf(const AttributeDef& parameter, const NamedValues& parameters) {
    const auto given = findNamed(parameters, parameter.name);
    if (given != parameters.end()) {
        return given->second;
    }
    if (!parameter.defaultValue) {
        throw RequestError("interface version 1 identifies parameters by their position: " +
                           parameter.name + " cannot be left out before the others");
    }
    return *parameter.defaultValue;
}

/// The values that the name of a new object does not give it already. The other versions take them
/// in the creation; in this one each would be a set of its own, which a name does not permit.
NamedValues withoutName(const Model& model, const NewObject& object, NamedValues values) {
    const auto moc = model.findClass(object.className);
    if (!moc) {
        return values;
    }
    const ClassDef& def = model.classes[*moc];
    const auto isGiven = [&](const NamedValue& value) {
        const AttributeDef* attribute = def.findAttribute(value.first);
        return attribute != nullptr && attribute->isGivenByName() &&
               value.second == WriteCheck::nameValue(def, *attribute, object.name);
    };
    values.erase(std::remove_if(values.begin(), values.end(), isGiven), values.end());
    return values;
}

}

std::vector<NamedValue> inOrderOf(const ActionDef& def, const std::vector<NamedValue>& parameters) {
    NamedValues ordered;
    const std::size_t places = placesNeeded(def, parameters);
    for (std::size_t place = 0; place < places; ++place) {
        const AttributeDef& parameter = def.parameters[place];
        ordered.emplace_back(parameter.name, valueOf(parameter, parameters));
    }
    std::copy_if(parameters.begin(), parameters.end(), std::back_inserter(ordered),
                 [&](const NamedValue& given) { return !isKnown(def, given.first); });
    return ordered;
}

Client1::Client1(Host& host)
    : Client(host),
      mTable(requireOffered<OrvOamSpiManagedObject_1>(host, OrvOamSpiManagedObject_1_ExtCmId)) {}

ReadValue Client1::get(unsigned long txHandle, const std::string& writtenDn,
                       const std::string& attribute, const ClassDef* moc) {
    const std::string dn = shortForm(writtenDn);
    OrvMoAttributeValueContainer* result = nullptr;
    check(mTable->getMoAttribute(txHandle, dn.c_str(), tableName(moc, attribute).c_str(), &result),
          {"getMoAttribute", dn, {}, {attribute}});
    return toReadValue(result, definitionOf(moc, attribute));
}

std::vector<NamedReadValue> Client1::get(unsigned long txHandle, const std::string& dn,
                                         const std::vector<std::string>& attributes,
                                         const ClassDef* moc) {
    std::vector<NamedReadValue> values;
    values.reserve(attributes.size());
    for (const std::string& attribute : attributes) {
        values.emplace_back(attribute, get(txHandle, dn, attribute, moc));
    }
    return values;
}

ChildIterator Client1::openChildren(unsigned long txHandle, const std::string& writtenDn,
                                    const std::string& className) {
    const std::string dn = shortForm(writtenDn);
    void* handle = nullptr;
    check(mTable->newMoIterator(txHandle, dn.c_str(), className.c_str(), &handle),
          {"newMoIterator", dn, className, {}});
    return {dn, className, handle};
}

std::optional<std::string> Client1::nextChild(const ChildIterator& iterator) {
    char* name = nullptr;
    check(mTable->nextMo(std::get<void*>(iterator.handle), &name),
          {"nextMo", iterator.dn, iterator.className, {}});
    return name != nullptr ? std::optional<std::string>(name) : std::nullopt;
}

void Client1::closeChildren(const ChildIterator&) {}

void Client1::create(unsigned long txHandle, const NewObject& writtenObject,
                     const std::vector<NamedValue>& written) {
    const NewObject object = shortForm(writtenObject);
    const std::vector<NamedValue> attributes = shortForm(written);
    check(mTable->createMo(txHandle, object.parentDn.c_str(), object.className.c_str(),
                           object.namingAttribute.c_str(), object.name.c_str()),
          {"createMo", object.parentDn, object.className, {}});
    setAll(txHandle, DnView(object.parentDn).child(object.className, object.name),
           withoutName(model(), object, attributes), {"the object is created"});
}

void Client1::set(unsigned long txHandle, const std::string& writtenDn,
                  const std::vector<NamedValue>& written) {
    const std::vector<NamedValue> attributes = shortForm(written);
    const std::string dn = shortForm(writtenDn);
    setAll(txHandle, dn, attributes, {});
}

void Client1::setAll(unsigned long txHandle, const std::string& dn,
                     const std::vector<NamedValue>& attributes, std::vector<std::string> done) {
    for (const NamedValue& attribute : attributes) {
        Orv::AutoMemory memory;
        OrvMoAttributeValueContainer record{};
        Conversion::fill(record, attribute.second, memory);
        check(mTable->setMoAttribute(txHandle, dn.c_str(), attribute.first.c_str(), &record),
              {"setMoAttribute", dn, {}, {attribute.first}, {}, done});
        done.push_back(attribute.first + " is set");
    }
}

void Client1::remove(unsigned long txHandle, const std::string& writtenDn) {
    const std::string dn = shortForm(writtenDn);
    check(mTable->deleteMo(txHandle, dn.c_str()), {"deleteMo", dn, {}, {}});
}

ReadValue Client1::action(unsigned long txHandle, const std::string& writtenDn,
                          const std::string& name, const std::vector<NamedValue>& written,
                          const ActionDef* def) {
    const std::vector<NamedValue> parameters = shortForm(written);
    const std::string dn = shortForm(writtenDn);
    const NamedValues ordered = def != nullptr ? inOrderOf(*def, parameters) : parameters;
    Orv::AutoMemory memory;
    std::vector<OrvMoAttributeValueContainer> records(ordered.size());
    std::vector<OrvMoAttributeValueContainer*> pointers;
    for (std::size_t at = 0; at < ordered.size(); ++at) {
        Conversion::fill(records[at], ordered[at].second, memory);
        pointers.push_back(&records[at]);
    }
    pointers.push_back(nullptr);
    OrvMoAttributeValueContainer* result = nullptr;
    check(mTable->action(txHandle, dn.c_str(), name.c_str(), pointers.data(), &result),
          {"action", dn, {}, {}, name});
    return toReadValue(result, resultOf(def));
}

}
