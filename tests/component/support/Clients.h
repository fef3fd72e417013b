// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_CLIENTS_H
#define ORV_TESTS_COMPONENT_SUPPORT_CLIENTS_H

#include "OrvOamSpiManagedObject_1.h"
#include "OrvOamSpiManagedObject_3.h"
#include "Value.h"
#include "VekOamSpiManagedObject_3_1.h"

#include <optional>
#include <string>
#include <vector>

namespace Scripted {

/// What a client holds after a single read or an action. Releases it, as a client must, when it
/// goes; only after a success.
class Read {
public:
    Read() = default;
    Read(Read&& other) noexcept;
    Read& operator=(Read&&) = delete;
    ~Read() { release(); }

    /// Nothing if the container is null.
    std::optional<Value> value() const { return readValue(record.container); }
    void release();

    OrvReturnT code = OrvOk;
    OrvMoAttributeValueResult_3 record = {nullptr, nullptr};
};

/// The same for a read of many attributes.
class ReadMany {
public:
    ReadMany() = default;
    ReadMany(ReadMany&& other) noexcept;
    ReadMany& operator=(ReadMany&&) = delete;
    ~ReadMany() { release(); }

    std::vector<Value> values() const;
    void release();

    OrvReturnT code = OrvOk;
    OrvMoAttributeValuesResult_3 record = {nullptr, nullptr};
};

/// A code with a second thing that came with it.
template <class Thing>
struct Answer {
    OrvReturnT code;
    Thing thing;
};

/// A client of version 3. Names and DNs are what a client passes: DNs external.
class Client3 {
public:
    explicit Client3(const OrvOamSpiManagedObject_3& offered) : table(&offered) {}

    Read get(unsigned long txHandle, const std::string& dn, const std::string& attribute) const;
    ReadMany getMany(unsigned long txHandle, const std::string& dn,
                     const std::vector<std::string>& attributes) const;
    OrvReturnT set(unsigned long txHandle, const std::string& dn, const std::string& attribute,
                   const Value& value) const;
    /// Without a value: the null pointer.
    OrvReturnT set(unsigned long txHandle, const std::string& dn,
                   const std::string& attribute) const;
    OrvReturnT create(unsigned long txHandle, const std::string& parent,
                      const std::string& className, const std::string& attribute,
                      const std::string& name, const NamedValues& attributes) const;
    /// Without attributes: the null pointer.
    OrvReturnT create(unsigned long txHandle, const std::string& parent,
                      const std::string& className, const std::string& attribute,
                      const std::string& name) const;
    OrvReturnT remove(unsigned long txHandle, const std::string& dn) const;
    Read action(unsigned long txHandle, const std::string& dn, const std::string& name,
                const NamedValues& parameters = {}) const;
    /// The thing is false at first.
    Answer<bool> exists(unsigned long txHandle, const std::string& dn) const;
    Answer<unsigned long long> count(unsigned long txHandle, const std::string& dn,
                                     const std::string& className) const;
    /// The thing is 0 at first.
    Answer<unsigned long long> open(unsigned long txHandle, const std::string& dn,
                                    const std::string& className) const;
    /// The thing is "(untouched)" at first, and "(null)" for a null pointer.
    Answer<std::string> next(unsigned long long iterator) const;
    OrvReturnT finalize(unsigned long long iterator) const;

    const OrvOamSpiManagedObject_3* table;
};

/// A client of version 3_1.
class Client3_1 {
public:
    explicit Client3_1(const VekOamSpiManagedObject_3_1& offered) : table(&offered) {}

    OrvReturnT set(unsigned long txHandle, const std::string& dn,
                   const NamedValues& attributes) const;

    const VekOamSpiManagedObject_3_1* table;
};

/// A client of version 1. What it receives it never gives back.
class Client1 {
public:
    explicit Client1(const OrvOamSpiManagedObject_1& offered) : table(&offered) {}

    /// The thing is null at first.
    Answer<OrvMoAttributeValueContainer*> get(unsigned long txHandle, const std::string& dn,
                                              const std::string& attribute) const;
    OrvReturnT set(unsigned long txHandle, const std::string& dn, const std::string& attribute,
                   const Value& value) const;
    OrvReturnT set(unsigned long txHandle, const std::string& dn,
                   const std::string& attribute) const;
    OrvReturnT create(unsigned long txHandle, const std::string& parent,
                      const std::string& className, const std::string& attribute,
                      const std::string& name) const;
    OrvReturnT remove(unsigned long txHandle, const std::string& dn) const;
    Answer<OrvMoAttributeValueContainer*> action(unsigned long txHandle, const std::string& dn,
                                                 const std::string& name,
                                                 const std::vector<Value>& parameters = {}) const;
    Answer<void*> open(unsigned long txHandle, const std::string& dn,
                       const std::string& className) const;
    Answer<std::string> next(void* iterator) const;

    const OrvOamSpiManagedObject_1* table;
};

}

#endif
