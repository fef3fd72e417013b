// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CellStateInterceptor.h"

#include "OperationalState.h"
#include "StateValue.h"
#include "StateValues.h"

#include <orv/ExtCmInterceptorRepository.h>
#include <orv/OwnedResult.h>
#include <orv/Refusal.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace {

// [moc-path]
// The class names from the root down to the class whose objects are served.
constexpr const char* mocPath = "ManagedElement,GNBDUFunction,NRCellDU";
// [/moc-path]

const char** endOf(const char** attrNames) {
    while (*attrNames != nullptr) {
        ++attrNames;
    }
    return attrNames;
}

// The names to ask the router for: each served attribute is replaced by the one that its value is
// computed from.
std::vector<const char*> namesForRouter(const char** attrNames) {
    std::vector<const char*> names(attrNames, endOf(attrNames));
    std::replace_if(names.begin(), names.end(), isServed, sourceAttribute);
    names.push_back(nullptr);
    return names;
}

bool isEmpty(const OrvMoAttributeValuesResult_3& result) {
    return result.containers == nullptr || result.containers[0] == nullptr;
}

}

// [enter]
OrvReturnT CellStateInterceptor::enter() {
    initialize();
    if (mo3Router == nullptr || mo3_1Router == nullptr || repository == nullptr) {
        return OrvFailure; // initialize has logged what is missing
    }
    return repository->registerClass(*this, mocPath);
}

void CellStateInterceptor::leave() {
    repository->deregisterClass(mocPath);
}
// [/enter]

// [get-one]
OrvReturnT CellStateInterceptor::getMoAttribute(unsigned long txHandle, const char* dn,
                                                const char* attrName,
                                                OrvMoAttributeValueResult_3* result) {
    if (!isServed(attrName)) {
        return MoInterceptorBase::getMoAttribute(txHandle, dn, attrName, result);
    }
    OrvMoAttributeValueResult_3 read = {nullptr, nullptr};
    const OrvReturnT code = MoInterceptorBase::getMoAttribute(txHandle, dn, sourceAttribute, &read);
    if (code != OrvOk) {
        return code;
    }
    const Orv::OwnedResult<OrvMoAttributeValueResult_3> source(read);
    auto state = std::make_unique<StateValue>(operationalState(source.get().container));
    result->release = &StateValue::release;
    result->container = state.release();
    return OrvOk;
}
// [/get-one]

// [get-many]
OrvReturnT CellStateInterceptor::getMoAttributes(unsigned long txHandle, const char* dn,
                                                 const char** attrNames,
                                                 OrvMoAttributeValuesResult_3* result) {
    if (std::none_of(attrNames, endOf(attrNames), isServed)) {
        return MoInterceptorBase::getMoAttributes(txHandle, dn, attrNames, result);
    }
    OrvMoAttributeValuesResult_3 read = {nullptr, nullptr};
    const OrvReturnT code =
        MoInterceptorBase::getMoAttributes(txHandle, dn, namesForRouter(attrNames).data(), &read);
    if (code != OrvOk) {
        return code;
    }
    Orv::OwnedResult<OrvMoAttributeValuesResult_3> source(read);
    if (isEmpty(read)) {
        return OrvFailure; // OrvOk without values is no answer
    }
    auto states = std::make_unique<StateValues>(attrNames, std::move(source));
    result->release = &StateValues::release;
    result->containers = states.release()->containers();
    return OrvOk;
}
// [/get-many]

// [refuse]
OrvReturnT CellStateInterceptor::judge(unsigned long txHandle, const char* dn, const char* attrName,
                                       const OrvMoAttributeValueContainer_3* value) {
    if (!isShutdown(attrName, value)) {
        return OrvOk;
    }
    OrvMoAttributeValueResult_3 read = {nullptr, nullptr};
    const OrvReturnT code = MoInterceptorBase::getMoAttribute(txHandle, dn, sourceAttribute, &read);
    if (code != OrvOk) {
        return code;
    }
    const Orv::OwnedResult<OrvMoAttributeValueResult_3> now(read);
    if (!isLocked(now.get().container)) {
        return OrvOk;
    }
    return Orv::refuse(OrvValidationFailed, "a cell that is LOCKED has nothing to shut down: only "
                                            "one that is UNLOCKED can become SHUTTINGDOWN");
}

OrvReturnT CellStateInterceptor::setMoAttribute(unsigned long txHandle, const char* dn,
                                                const char* attrName,
                                                const OrvMoAttributeValueContainer_3* value) {
    const OrvReturnT verdict = judge(txHandle, dn, attrName, value);
    return verdict != OrvOk ? verdict
                            : MoInterceptorBase::setMoAttribute(txHandle, dn, attrName, value);
}

OrvReturnT CellStateInterceptor::setMoAttributes(unsigned long txHandle, const char* dn,
                                                 VekMoNamedAttributeValueContainer_3** attributes) {
    for (auto** attribute = attributes; *attribute != nullptr; ++attribute) {
        const OrvReturnT verdict = judge(txHandle, dn, (*attribute)->name, &(*attribute)->value);
        if (verdict != OrvOk) {
            return verdict;
        }
    }
    return MoInterceptorBase::setMoAttributes(txHandle, dn, attributes);
}
// [/refuse]
