// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RouterTable3.h"

#include "ContainerConversion.h"
#include "ResultBlock.h"

#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

RouterTable3::RouterTable3(RouterCore& core)
    : mCore(core),
      mBinder(OrvOamSpiManagedObject_3_RouterId, *this),
      mVekInterface(*mBinder.getInterface()) {
    mVekInterface.identity = VekOamSpiManagedObject_3_RouterId;
}

OrvReturnT RouterTable3::setMoAttribute(unsigned long txHandle, const char* dn,
                                        const char* attrName,
                                        const OrvMoAttributeValueContainer_3* value) {
    return mCore.answer(txHandle, [&] {
        requireGiven(value, "the value");
        mCore.set<Records3>(txHandle, dn, attrName, *value);
    });
}

OrvReturnT RouterTable3::getMoAttribute(unsigned long txHandle, const char* dn,
                                        const char* attrName, OrvMoAttributeValueResult_3* result) {
    return mCore.answer(txHandle, [&] {
        requireGiven(result, "the result");
        *result = makeResult(mCore.transaction(txHandle)->store->look(
            mCore.requireDn(dn), requireText(attrName, "the attribute name")));
    });
}

OrvReturnT RouterTable3::getMoAttributes(unsigned long txHandle, const char* dn,
                                         const char** attrNames,
                                         OrvMoAttributeValuesResult_3* result) {
    return mCore.answer(txHandle, [&] {
        requireGiven(result, "the result");
        requireGiven(attrNames, "the array of attribute names");
        std::vector<std::string_view> names;
        for (const char** next = attrNames; *next != nullptr; ++next) {
            names.emplace_back(*next);
        }
        *result = makeResult(mCore.transaction(txHandle)->store->look(mCore.requireDn(dn), names));
    });
}

OrvReturnT RouterTable3::newMoIterator(unsigned long txHandle, const char* dn,
                                       const char* className, unsigned long long* iterator) {
    return mCore.answer(txHandle, [&] {
        requireGiven(iterator, "the place for the iterator");
        *iterator = mCore.newIterator(txHandle, mCore.requireDn(dn),
                                      requireText(className, "the class name"));
    });
}

OrvReturnT RouterTable3::nextMo(unsigned long long iterator, char** result) {
    return mCore.answer([&] {
        requireGiven(result, "the place for the name");
        *result = mCore.next(iterator);
    });
}

OrvReturnT RouterTable3::createMo(unsigned long txHandle, const char* dn, const char* className,
                                  const char* attrName, const char* attrValue,
                                  OrvMoNamedAttributeValueContainer_3** attributes) {
    return mCore.answer(txHandle, [&] {
        mCore.transaction(txHandle)->store->create(
            mCore.requireDn(dn), requireText(className, "the class name"),
            requireText(attrName, "the naming attribute"),
            requireText(attrValue, "the naming value"),
            mCore.withShortReferences(toNamedValues(attributes)));
    });
}

OrvReturnT RouterTable3::deleteMo(unsigned long txHandle, const char* dn) {
    return mCore.answer(txHandle,
                        [&] { mCore.transaction(txHandle)->store->remove(mCore.requireDn(dn)); });
}

OrvReturnT RouterTable3::action(unsigned long txHandle, const char* dn, const char* name,
                                OrvMoNamedAttributeValueContainer_3** parameters,
                                OrvMoAttributeValueResult_3* result) {
    return mCore.answer(txHandle, [&] {
        requireGiven(result, "the result");
        *result = makeResult(mCore.action(txHandle, std::string(mCore.requireDn(dn)),
                                          std::string(requireText(name, "the action name")),
                                          mCore.withShortReferences(toNamedValues(parameters))));
    });
}

OrvReturnT RouterTable3::finalizeMoIterator(unsigned long long iterator) {
    return mCore.answer([&] { mCore.finalize(iterator); });
}

OrvReturnT RouterTable3::existsMo(unsigned long txHandle, const char* dn, bool* exists) {
    return mCore.answer(txHandle, [&] {
        requireGiven(exists, "the place for the answer");
        *exists = mCore.transaction(txHandle)->store->exists(mCore.requireDn(dn));
    });
}

OrvReturnT RouterTable3::countMoChildren(unsigned long txHandle, const char* dn,
                                         const char* className, unsigned long long* count) {
    return mCore.answer(txHandle, [&] {
        requireGiven(count, "the place for the count");
        *count = mCore.transaction(txHandle)->store->count(
            mCore.requireDn(dn), requireText(className, "the class name"));
    });
}

}
