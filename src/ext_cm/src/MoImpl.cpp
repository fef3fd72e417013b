// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MoImpl.h"

#include "life/ComponentName.h"
#include "life/OpeningSteps.h"
#include "life/ServiceLife.h"
#include "values/KnownAttributes.h"
#include "values/StructConversion.h"
#include "values/ValueCheck.h"

#include <cstdint>
#include <vector>

namespace OrvExtCmRouterService {

namespace {

// A value that needs no copy is passed on as it is; no receiver writes to it.
OrvMoAttributeValueContainer* unchanged(const OrvMoAttributeValueContainer* value) {
    return const_cast<OrvMoAttributeValueContainer*>(value);
}

OrvMoAttributeValueContainer* newContainer(Orv::AutoMemory& memory, std::int32_t type,
                                           std::uint32_t count, OrvMoAttributeValue* values) {
    auto* const container = memory.malloc<OrvMoAttributeValueContainer>(1);
    container->type = type;
    container->count = count;
    container->values = values;
    return container;
}

// Unlike in the other versions, a value must be there. The id may be without one all the same: that
// is answered with a code of its own.
bool isReadableWhole(const char* attrName, const OrvMoAttributeValueContainer* value) {
    if (attrName != nullptr && isNetworkManagedElementId(attrName) && !idSlotOf(value).isSet) {
        return true;
    }
    return value != nullptr && isReadableAs(attrName, value);
}

}

MoImpl::MoImpl(IdMappings& ids, TransactionData& transactions)
    : IterImpl(ids),
      // GCOVR_EXCL_START: all that is counted here undoes the base, and a binder does not throw
      binder(offered(OrvOamSpiManagedObject_1_ExtCmId), *this),
      // GCOVR_EXCL_STOP
      idMappings(ids),
      txData(transactions) {}

OrvReturnT MoImpl::init(OrvMgmtSpiInterfacePortal_1* hostPortal) {
    portal = hostPortal;
    return OrvOk;
}

OrvReturnT MoImpl::start(OrvStateChangeReason) {
    return startService(ORV_TRACE_POINT, portal, OrvOamSpiManagedObject_1_RouterId, router,
                        started);
}

OrvReturnT MoImpl::stop(OrvStateChangeReason) {
    return stopService(ORV_TRACE_POINT, mMutex, router, started);
}

OrvOamSpiManagedObject_1* MoImpl::getMoInterface() {
    return binder.getInterface();
}

Orv::AutoMemory* MoImpl::getTxData(unsigned long txHandle) {
    return txData.getTxData(ORV_TRACE_POINT, txHandle);
}

OrvOamSpiManagedObject_1* MoImpl::getCmRouter() {
    return router;
}

OrvReturnT MoImpl::setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                  const OrvMoAttributeValueContainer* value) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu, dn: %s, attr: %s", txHandle, shown(dn), shown(attrName));
    const Opened opened =
        openOperation(started, idMappings, dn, [&] { return isReadableWhole(attrName, value); });
    if (opened.code != OrvOk) {
        return ORV_TRACE_RESULT(opened.code);
    }
    if (isNetworkManagedElementId(attrName)) {
        const IdSlot id = idSlotOf(value);
        // Unlike in version 3, the id must have a value, if only an empty text.
        if (!id.isSet) {
            ORV_TRACE("networkManagedElementId had no value");
            return ORV_TRACE_RESULT(OrvInvalidArgument);
        }
        if (id.isRefused()) {
            ORV_TRACE("Validation of networkManagedElementId failed: %s", id.shownText());
            return ORV_TRACE_RESULT(OrvInvalidArgument);
        }
    }
    const OrvMoAttributeValueContainer* const converted =
        transformContainer(value, IdMappings::ToInternal, txHandle);
    return ORV_TRACE_RESULT(
        router->setMoAttribute(txHandle, opened.dn.c_str(), attrName, converted));
}

OrvReturnT MoImpl::getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                  OrvMoAttributeValueContainer** result) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu, dn: %s, attr: %s", txHandle, shown(dn), shown(attrName));
    const Opened opened =
        openOperation(started, idMappings, dn, [&] { return areThere(attrName, result); });
    if (opened.code != OrvOk) {
        return ORV_TRACE_RESULT(opened.code);
    }
    const OrvReturnT code = router->getMoAttribute(txHandle, opened.dn.c_str(), attrName, result);
    if (code != OrvOk) {
        return ORV_TRACE_RESULT(code);
    }
    *result = holdsRootId(attrName, dn, *result) ? rootIdContainer(*result, txHandle)
                                                 : toExternal(*result, txHandle);
    return ORV_TRACE_RESULT(OrvOk);
}

OrvReturnT MoImpl::createMo(unsigned long txHandle, const char* dn, const char* className,
                            const char* attrName, const char* attrValue) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu, dn: %s, class: %s, attrname: %s, attrvalue: %s", txHandle,
                    shown(dn), shown(className), shown(attrName), shown(attrValue));
    // Everything else is only passed on: a null among it is for the router to refuse.
    const Opened opened = openCreation(started, idMappings, dn, nothingElse);
    if (opened.code != OrvOk) {
        return ORV_TRACE_RESULT(opened.code);
    }
    return ORV_TRACE_RESULT(
        router->createMo(txHandle, opened.dn.c_str(), className, attrName, attrValue));
}

OrvReturnT MoImpl::deleteMo(unsigned long txHandle, const char* dn) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu, dn: %s", txHandle, shown(dn));
    const Opened opened = openOperation(started, idMappings, dn, nothingElse);
    if (opened.code != OrvOk) {
        return ORV_TRACE_RESULT(opened.code);
    }
    return ORV_TRACE_RESULT(router->deleteMo(txHandle, opened.dn.c_str()));
}

OrvReturnT MoImpl::action(unsigned long txHandle, const char* dn, const char* name,
                          OrvMoAttributeValueContainer** parameters,
                          OrvMoAttributeValueContainer** result) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu, dn: %s, name: %s", txHandle, shown(dn), shown(name));
    const auto canBeRead = [&] { return areThere(parameters, result) && areReadable(parameters); };
    const Opened opened = openOperation(started, idMappings, dn, canBeRead);
    if (opened.code != OrvOk) {
        return ORV_TRACE_RESULT(opened.code);
    }
    std::vector<OrvMoAttributeValueContainer*> converted;
    for (std::size_t index = 0; parameters[index] != nullptr; ++index) {
        converted.push_back(
            transformContainer(parameters[index], IdMappings::ToInternal, txHandle));
    }
    converted.push_back(nullptr);
    OrvMoAttributeValueContainer* answer = nullptr;
    const OrvReturnT code =
        router->action(txHandle, opened.dn.c_str(), name, converted.data(), &answer);
    *result = answer; // whatever the code: clients of this version read it also after a failure
    if (code == OrvOk) {
        *result = toExternal(answer, txHandle);
    }
    return ORV_TRACE_RESULT(code);
}

/// Makes the values of a struct that is rebuilt, in the memory of the transaction.
class MoImpl::CopyMaker {
public:
    using Container = OrvMoAttributeValueContainer;

    CopyMaker(MoImpl& owner, Orv::AutoMemory& memory, IdMappings::DnConversion direction,
              unsigned long txHandle)
        : mOwner(owner), mMemory(memory), mDirection(direction), mTxHandle(txHandle) {}

    Container* convert(const Container* original, OrvMoAttributeValue*& slots) {
        if (original->type == OrvMoAttributeTypeMoRef_3) {
            return mOwner.transformMoRefContainer(original, mDirection, mTxHandle);
        }
        if (!isStructWithReferences(*original)) {
            return unchanged(original);
        }
        slots = mMemory.malloc<OrvMoAttributeValue>(original->count);
        return newContainer(mMemory, original->type, original->count, slots);
    }

private:
    MoImpl& mOwner;
    Orv::AutoMemory& mMemory;
    IdMappings::DnConversion mDirection;
    unsigned long mTxHandle;
};

// The call has been done: an answer that cannot be read goes to the client as it is, instead of a
// failure that would hide it.
OrvMoAttributeValueContainer* MoImpl::toExternal(OrvMoAttributeValueContainer* value,
                                                 unsigned long txHandle) {
    return value != nullptr && isReadable(*value)
               ? transformContainer(value, IdMappings::ToExternal, txHandle)
               : value;
}

// The memory of the transaction is asked for only where a copy is made: asking joins the
// transaction, and a client of version 1 that uses plain values takes part in none.
OrvMoAttributeValueContainer* MoImpl::transformContainer(const OrvMoAttributeValueContainer* value,
                                                         IdMappings::DnConversion direction,
                                                         unsigned long txHandle) {
    if (value->type == OrvMoAttributeTypeMoRef_3) {
        return transformMoRefContainer(value, direction, txHandle);
    }
    if (value->type == OrvMoAttributeTypeStruct_3) {
        return transformStructContainer(value, direction, txHandle);
    }
    return unchanged(value);
}

// A copy is made also of an empty value and of a reference that cannot be translated: what the
// client gets then ends all at once, with the transaction.
OrvMoAttributeValueContainer*
MoImpl::transformMoRefContainer(const OrvMoAttributeValueContainer* value,
                                IdMappings::DnConversion direction, unsigned long txHandle) {
    Orv::AutoMemory& memory = *getTxData(txHandle);
    auto* const slots = memory.malloc<OrvMoAttributeValue>(value->count);
    for (std::uint32_t index = 0; index < value->count; ++index) {
        const char* const original = value->values[index].moRef;
        const std::string translated = idMappings.convertDn(original, direction);
        slots[index].moRef = memory.strdup(translated.empty() ? original : translated.c_str());
    }
    return newContainer(memory, value->type, value->count, slots);
}

OrvMoAttributeValueContainer*
MoImpl::transformStructContainer(const OrvMoAttributeValueContainer* value,
                                 IdMappings::DnConversion direction, unsigned long txHandle) {
    if (!isStructWithReferences(*value)) {
        return unchanged(value);
    }
    Orv::AutoMemory& memory = *getTxData(txHandle);
    CopyMaker maker(*this, memory, direction, txHandle);
    OrvMoAttributeValue* slots = nullptr;
    OrvMoAttributeValueContainer* const converted = maker.convert(value, slots);
    StructConversion<CopyMaker>(maker, memory).rebuild(*value, slots);
    return converted;
}

// The router's container is not written to: it is the router's, and may serve other clients too.
OrvMoAttributeValueContainer* MoImpl::rootIdContainer(const OrvMoAttributeValueContainer* value,
                                                      unsigned long txHandle) {
    const std::string id = externalRootId(idMappings, value->values[0].string);
    Orv::AutoMemory& memory = *getTxData(txHandle);
    auto* const slots = memory.malloc<OrvMoAttributeValue>(1);
    slots[0].string = memory.strdup(id.c_str());
    return newContainer(memory, OrvMoAttributeTypeString_3, 1, slots);
}

}
