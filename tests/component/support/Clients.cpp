// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Clients.h"

#include "Records.h"
#include "Steps.h"

#include <utility>

namespace Scripted {

namespace {

char kUntouched[] = "(untouched)";

std::string textOrNull(const char* text) {
    return text != nullptr ? text : "(null)";
}

}

Read::Read(Read&& other) noexcept
    : code(other.code), record(std::exchange(other.record, {nullptr, nullptr})) {}

void Read::release() {
    if (code == OrvOk && record.release != nullptr && record.container != nullptr) {
        const Step step(Called::Component, [] { return std::string("release of a value"); });
        record.release(record.container);
    }
    record = {nullptr, nullptr};
}

ReadMany::ReadMany(ReadMany&& other) noexcept
    : code(other.code), record(std::exchange(other.record, {nullptr, nullptr})) {}

std::vector<Value> ReadMany::values() const {
    std::vector<Value> values;
    for (auto* const* each = record.containers; each != nullptr && *each != nullptr; ++each) {
        values.push_back(*readValue(*each));
    }
    return values;
}

void ReadMany::release() {
    if (code == OrvOk && record.release != nullptr && record.containers != nullptr) {
        const Step step(Called::Component, [] { return std::string("release of values"); });
        record.release(record.containers);
    }
    record = {nullptr, nullptr};
}

Read Client3::get(unsigned long txHandle, const std::string& dn,
                  const std::string& attribute) const {
    Read read;
    read.code = table->getMoAttribute(txHandle, dn.c_str(), attribute.c_str(), &read.record);
    return read;
}

ReadMany Client3::getMany(unsigned long txHandle, const std::string& dn,
                          const std::vector<std::string>& attributes) const {
    std::vector<const char*> names;
    for (const std::string& attribute : attributes) {
        names.push_back(attribute.c_str());
    }
    names.push_back(nullptr);
    ReadMany read;
    read.code = table->getMoAttributes(txHandle, dn.c_str(), names.data(), &read.record);
    return read;
}

OrvReturnT Client3::set(unsigned long txHandle, const std::string& dn, const std::string& attribute,
                        const Value& value) const {
    Records records;
    return table->setMoAttribute(txHandle, dn.c_str(), attribute.c_str(), records.container(value));
}

OrvReturnT Client3::set(unsigned long txHandle, const std::string& dn,
                        const std::string& attribute) const {
    return table->setMoAttribute(txHandle, dn.c_str(), attribute.c_str(), nullptr);
}

OrvReturnT Client3::create(unsigned long txHandle, const std::string& parent,
                           const std::string& className, const std::string& attribute,
                           const std::string& name, const NamedValues& attributes) const {
    Records records;
    return table->createMo(txHandle, parent.c_str(), className.c_str(), attribute.c_str(),
                           name.c_str(), records.named(attributes));
}

OrvReturnT Client3::create(unsigned long txHandle, const std::string& parent,
                           const std::string& className, const std::string& attribute,
                           const std::string& name) const {
    return table->createMo(txHandle, parent.c_str(), className.c_str(), attribute.c_str(),
                           name.c_str(), nullptr);
}

OrvReturnT Client3::remove(unsigned long txHandle, const std::string& dn) const {
    return table->deleteMo(txHandle, dn.c_str());
}

Read Client3::action(unsigned long txHandle, const std::string& dn, const std::string& name,
                     const NamedValues& parameters) const {
    Records records;
    Read read;
    read.code =
        table->action(txHandle, dn.c_str(), name.c_str(), records.named(parameters), &read.record);
    return read;
}

Answer<bool> Client3::exists(unsigned long txHandle, const std::string& dn) const {
    bool exists = false;
    const OrvReturnT code = table->existsMo(txHandle, dn.c_str(), &exists);
    return {code, exists};
}

Answer<unsigned long long> Client3::count(unsigned long txHandle, const std::string& dn,
                                          const std::string& className) const {
    unsigned long long count = 0;
    const OrvReturnT code = table->countMoChildren(txHandle, dn.c_str(), className.c_str(), &count);
    return {code, count};
}

Answer<unsigned long long> Client3::open(unsigned long txHandle, const std::string& dn,
                                         const std::string& className) const {
    unsigned long long iterator = 0;
    const OrvReturnT code =
        table->newMoIterator(txHandle, dn.c_str(), className.c_str(), &iterator);
    return {code, iterator};
}

Answer<std::string> Client3::next(unsigned long long iterator) const {
    char* name = kUntouched;
    const OrvReturnT code = table->nextMo(iterator, &name);
    return {code, textOrNull(name)};
}

OrvReturnT Client3::finalize(unsigned long long iterator) const {
    return table->finalizeMoIterator(iterator);
}

OrvReturnT Client3_1::set(unsigned long txHandle, const std::string& dn,
                          const NamedValues& attributes) const {
    Records records;
    return table->setMoAttributes(txHandle, dn.c_str(), records.named(attributes));
}

Answer<OrvMoAttributeValueContainer*> Client1::get(unsigned long txHandle, const std::string& dn,
                                                   const std::string& attribute) const {
    OrvMoAttributeValueContainer* result = nullptr;
    const OrvReturnT code = table->getMoAttribute(txHandle, dn.c_str(), attribute.c_str(), &result);
    return {code, result};
}

OrvReturnT Client1::set(unsigned long txHandle, const std::string& dn, const std::string& attribute,
                        const Value& value) const {
    Records1 records;
    return table->setMoAttribute(txHandle, dn.c_str(), attribute.c_str(), records.container(value));
}

OrvReturnT Client1::set(unsigned long txHandle, const std::string& dn,
                        const std::string& attribute) const {
    return table->setMoAttribute(txHandle, dn.c_str(), attribute.c_str(), nullptr);
}

OrvReturnT Client1::create(unsigned long txHandle, const std::string& parent,
                           const std::string& className, const std::string& attribute,
                           const std::string& name) const {
    return table->createMo(txHandle, parent.c_str(), className.c_str(), attribute.c_str(),
                           name.c_str());
}

OrvReturnT Client1::remove(unsigned long txHandle, const std::string& dn) const {
    return table->deleteMo(txHandle, dn.c_str());
}

Answer<OrvMoAttributeValueContainer*> Client1::action(unsigned long txHandle, const std::string& dn,
                                                      const std::string& name,
                                                      const std::vector<Value>& parameters) const {
    Records1 records;
    OrvMoAttributeValueContainer* result = nullptr;
    const OrvReturnT code =
        table->action(txHandle, dn.c_str(), name.c_str(), records.array(parameters), &result);
    return {code, result};
}

Answer<void*> Client1::open(unsigned long txHandle, const std::string& dn,
                            const std::string& className) const {
    void* iterator = nullptr;
    const OrvReturnT code =
        table->newMoIterator(txHandle, dn.c_str(), className.c_str(), &iterator);
    return {code, iterator};
}

Answer<std::string> Client1::next(void* iterator) const {
    char* name = kUntouched;
    const OrvReturnT code = table->nextMo(iterator, &name);
    return {code, textOrNull(name)};
}

}
