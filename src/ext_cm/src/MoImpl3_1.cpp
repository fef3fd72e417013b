// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MoImpl3_1.h"

#include "DnUtil.h"
#include "MoInterceptorBase.h"
#include "associations/AssociationRecord.h"
#include "interceptors/InterceptorLookup.h"
#include "life/ComponentName.h"
#include "life/OpeningSteps.h"
#include "life/ServiceLife.h"
#include "messages/Tracing.h"
#include "values/ConversionMemory.h"
#include "values/KnownAttributes.h"
#include "values/ValueCheck.h"
#include "values/ValueConversion.h"

#include <string>
#include <vector>

namespace OrvExtCmRouterService {

namespace {

// The check of ids passes an attribute without values over, so its slots need not be readable.
bool canBeSet(const VekMoNamedAttributeValueContainer_3& attribute) {
    return isReadableAs(attribute.name, attribute.value.count != 0 ? &attribute.value : nullptr);
}

// The value of the first id that must not stand in a DN, or null. Unlike in version 3, an attribute
// without values is not looked at.
const VekMoAttributeValueContainer_3*
findRefusedId(VekMoNamedAttributeValueContainer_3* const* attributes) {
    for (; *attributes != nullptr; ++attributes) {
        const VekMoNamedAttributeValueContainer_3& attribute = **attributes;
        if (isNetworkManagedElementId(attribute.name) && attribute.value.count != 0 &&
            idSlotOf(&attribute.value).isRefused()) {
            return &attribute.value;
        }
    }
    return nullptr;
}

// Class by class from the end; equal to what Orv::DnUtil::getMocPath gives.
std::string mocPathOf(std::string dn) {
    std::vector<std::string> classes;
    std::string leaf;
    while (Orv::DnUtil::popLeafClass(dn, leaf)) {
        classes.push_back(leaf);
    }
    std::string path;
    for (auto next = classes.rbegin(); next != classes.rend(); ++next) {
        path.append(next != classes.rbegin() ? "," : "").append(*next);
    }
    return path;
}

}

MoImpl3_1::MoImpl3_1(IdMappings& ids, TransactionData& transactions, BiDirUtils& utils,
                     UniDirValidator& validator)
    // GCOVR_EXCL_START: all that is counted here undoes the mutex, and a binder does not throw
    : binder(offered(VekOamSpiManagedObject_3_1_ExtCmId), *this),
      // GCOVR_EXCL_STOP
      idMappings(ids),
      txData(transactions),
      biDirUtils(utils),
      uniDirValidator(validator) {}

OrvReturnT MoImpl3_1::init(OrvMgmtSpiInterfacePortal_1* hostPortal,
                           ExtCmInterceptorRepository* interceptorRepository) {
    portal = hostPortal;
    interceptors = interceptorRepository;
    return OrvOk;
}

OrvReturnT MoImpl3_1::start(OrvStateChangeReason) {
    return startService(ORV_TRACE_POINT, portal, VekOamSpiManagedObject_3_1_RouterId, router,
                        started);
}

OrvReturnT MoImpl3_1::stop(OrvStateChangeReason) {
    return stopService(ORV_TRACE_POINT, mMutex, router, started);
}

VekOamSpiManagedObject_3_1* MoImpl3_1::getMoInterface() {
    return binder.getInterface();
}

Orv::AutoMemory* MoImpl3_1::getTxData(unsigned long txHandle) {
    return txData.getTxData(ORV_TRACE_POINT, txHandle);
}

// GCOVR_EXCL_START: an operation of the class that nothing calls
VekOamSpiManagedObject_3_1* MoImpl3_1::getCmRouter() {
    return router;
}
// GCOVR_EXCL_STOP

OrvReturnT MoImpl3_1::setMoAttributes(unsigned long txHandle, const char* dn,
                                      VekMoNamedAttributeValueContainer_3** attributes) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu, dn: %s, ", txHandle, shown(dn));
    const auto canBeRead = [&] { return areThere(attributes) && allOf(attributes, canBeSet); };
    const Opened opened = openOperation(started, idMappings, dn, canBeRead);
    if (opened.code != OrvOk) {
        return ORV_TRACE_RESULT(opened.code);
    }
    getTxData(txHandle);
    // All ids are asked before any attribute is recorded: a refusal changes no store.
    const VekMoAttributeValueContainer_3* const refusedId = findRefusedId(attributes);
    if (refusedId != nullptr) {
        ORV_TRACE("Validation of networkManagedElementId failed: %s",
                  idSlotOf(refusedId).shownText());
        return ORV_TRACE_RESULT(OrvInvalidArgument);
    }
    ConversionMemory memory;
    VekMoNamedAttributeValueContainer_3** const converted =
        convertAndRecord(txHandle, opened.dn, attributes, memory);
    MoInterceptorBase* const interceptor =
        interceptorOf(*interceptors, [&] { return mocPathOf(opened.dn); });
    return ORV_TRACE_RESULT(
        interceptor != nullptr
            ? interceptor->setMoAttributes(txHandle, opened.dn.c_str(), converted)
            : router->setMoAttributes(txHandle, opened.dn.c_str(), converted));
}

// The attributes are handled one by one. If one fails, those before it stay recorded.
VekMoNamedAttributeValueContainer_3**
MoImpl3_1::convertAndRecord(unsigned long txHandle, const std::string& internalDn,
                            VekMoNamedAttributeValueContainer_3** attributes,
                            ConversionMemory& memory) {
    return ValueConversion(idMappings)
        .toInternal(attributes, memory, [&](const VekMoNamedAttributeValueContainer_3& converted) {
            recordReferences(biDirUtils, uniDirValidator, {txHandle, internalDn, internalDn, false},
                             converted.name, converted.value);
        });
}

}
