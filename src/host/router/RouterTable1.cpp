// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RouterTable1.h"

#include "ContainerConversion.h"
#include "ResultBlock.h"

#include <cstdint>
#include <string>
#include <vector>

namespace OrvHost {

namespace {

using Conversion = ContainerConversion<Records1>;

OrvMoAttributeValueContainer* makeContainer(const AttributeValue& value, Orv::AutoMemory& memory) {
    auto* const container = memory.malloc<OrvMoAttributeValueContainer>(1);
    requireGiven(container, "memory for a value");
    Conversion::fill(*container, value, memory);
    return container;
}

}

RouterTable1::RouterTable1(RouterCore& core)
    : mCore(core), mBinder(OrvOamSpiManagedObject_1_RouterId, *this) {}

OrvReturnT RouterTable1::setMoAttribute(unsigned long txHandle, const char* dn,
                                        const char* attrName,
                                        const OrvMoAttributeValueContainer* value) {
    return mCore.answer(txHandle, [&] {
        requireGiven(value, "the value");
        mCore.set<Records1>(txHandle, dn, attrName, *value);
    });
}

OrvReturnT RouterTable1::getMoAttribute(unsigned long txHandle, const char* dn,
                                        const char* attrName,
                                        OrvMoAttributeValueContainer** result) {
    return mCore.answer(txHandle, [&] {
        requireGiven(result, "the result");
        const auto current = mCore.transaction(txHandle);
        *result = makeResult(
            current->store->look(mCore.requireDn(dn), requireText(attrName, "the attribute name")),
            current->memory);
    });
}

OrvReturnT RouterTable1::newMoIterator(unsigned long txHandle, const char* dn,
                                       const char* className, void** iterator) {
    return mCore.answer(txHandle, [&] {
        requireGiven(iterator, "the place for the iterator");
        const IteratorHandle handle = mCore.newIterator(txHandle, mCore.requireDn(dn),
                                                        requireText(className, "the class name"));
        // A handle in the form of a pointer, never dereferenced.
        // NOLINTNEXTLINE(performance-no-int-to-ptr)
        *iterator = reinterpret_cast<void*>(static_cast<std::uintptr_t>(handle));
    });
}

OrvReturnT RouterTable1::nextMo(void* iterator, char** result) {
    return mCore.answer([&] {
        requireGiven(result, "the place for the name");
        *result = mCore.next(reinterpret_cast<std::uintptr_t>(iterator));
    });
}

OrvReturnT RouterTable1::createMo(unsigned long txHandle, const char* dn, const char* className,
                                  const char* attrName, const char* attrValue) {
    return mCore.answer(txHandle, [&] {
        mCore.transaction(txHandle)->store->create(mCore.requireDn(dn),
                                                   requireText(className, "the class name"),
                                                   requireText(attrName, "the naming attribute"),
                                                   requireText(attrValue, "the naming value"), {});
    });
}

OrvReturnT RouterTable1::deleteMo(unsigned long txHandle, const char* dn) {
    return mCore.answer(txHandle,
                        [&] { mCore.transaction(txHandle)->store->remove(mCore.requireDn(dn)); });
}

OrvReturnT RouterTable1::action(unsigned long txHandle, const char* dn, const char* name,
                                OrvMoAttributeValueContainer** parameters,
                                OrvMoAttributeValueContainer** result) {
    return mCore.answer(txHandle, [&] {
        requireGiven(result, "the result");
        std::vector<AttributeValue> values;
        for (auto** next = parameters; next != nullptr && *next != nullptr; ++next) {
            values.push_back(mCore.withShortReferences(Conversion::toValue(**next)));
        }
        const AttributeValue value =
            mCore.action(txHandle, std::string(mCore.requireDn(dn)),
                         std::string(requireText(name, "the action name")), values);
        *result = makeContainer(value, mCore.transaction(txHandle)->memory);
    });
}

}
