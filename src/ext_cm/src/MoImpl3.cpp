// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MoImpl3.h"

#include "DnUtil.h"
#include "MoInterceptorBase.h"
#include "associations/AssociationRecord.h"
#include "interceptors/InterceptorLookup.h"
#include "life/ComponentName.h"
#include "life/OpeningSteps.h"
#include "life/ServiceLife.h"
#include "values/ConversionMemory.h"
#include "values/ConvertedResultData.h"
#include "values/KnownAttributes.h"
#include "values/ValueCheck.h"
#include "values/ValueConversion.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

namespace OrvExtCmRouterService {

namespace {

// The default name of a class's naming attribute is the class name, its first letter small, and
// "Id". Anything else, also in another case, is a name of its own.
bool isDefaultNamingAttribute(const char* className, const char* attrName) {
    const std::string_view moc(className);
    std::string_view name(attrName);
    if (!name.ends_with("Id")) {
        return false;
    }
    name.remove_suffix(2);
    if (name.empty() || moc.empty()) {
        return name == moc;
    }
    const int first = std::tolower(static_cast<unsigned char>(moc.front()));
    return name.front() == static_cast<char>(first) && name.substr(1) == moc.substr(1);
}

// In one piece of memory, whatever the number of pieces.
std::string joined(std::initializer_list<std::string_view> pieces) {
    std::size_t length = 0;
    for (const std::string_view piece : pieces) {
        length += piece.size();
    }
    std::string text(length, '\0');
    char* end = text.data();
    for (const std::string_view piece : pieces) {
        end = std::copy(piece.begin(), piece.end(), end);
    }
    return text;
}

void doNothing(const OrvMoNamedAttributeValueContainer_3& /*converted*/) {}

// A name is read only where back-pointers must follow, so only there it must be present.
bool canBeCreatedWith(const OrvMoNamedAttributeValueContainer_3& attribute) {
    const bool isNamed =
        attribute.name != nullptr || attribute.value.type != OrvMoAttributeTypeMoRef_3;
    return isNamed && isReadable(attribute.value);
}

bool isNoReference(const OrvMoNamedAttributeValueContainer_3& attribute) {
    return attribute.value.type != OrvMoAttributeTypeMoRef_3;
}

// Puts the view in the place of the value in result. The last step of every wrapping, since it
// cannot fail: after an exception a result is still the producer's.
ConvertedResultData* handOut(std::unique_ptr<ConvertedResultData> view,
                             OrvMoAttributeValueResult_3& result) {
    result.container = view.get();
    result.release = &ConvertedResultData::releaseFunc;
    return view.release();
}

}

/// An MO that a client creates, and the internal DNs by which it will be known. They are made when
/// somebody needs them: most new MOs have no reference, and nothing waits for them.
///
/// Back-pointers know an MO with a naming attribute of its own as Class.attr=value, the record of
/// references as Class=value. Neither form is corrected where the parent is empty: both then begin
/// with a comma.
class MoImpl3::CreatedMo {
public:
    /// Keeps no copy of what it is given.
    CreatedMo(const std::string& parentDn, const char* className, const char* attrName,
              const char* attrValue)
        : mParentDn(parentDn), mClassName(className), mAttrName(attrName), mAttrValue(attrValue) {}

    void makeDns() {
        if (mTreeDn.empty()) {
            mTreeDn = joined({mParentDn, ",", mClassName, "=", mAttrValue});
            if (!isDefaultNamingAttribute(mClassName, mAttrName)) {
                mNamedDn = joined({mParentDn, ",", mClassName, ".", mAttrName, "=", mAttrValue});
            }
        }
    }

    const char* namingAttribute() const { return mAttrName; }

    // These two after makeDns.
    const std::string& treeDn() const { return mTreeDn; }
    const std::string& backPointerDn() const { return mNamedDn.empty() ? mTreeDn : mNamedDn; }

private:
    const std::string& mParentDn;
    const char* mClassName;
    const char* mAttrName;
    const char* mAttrValue;
    std::string mTreeDn;
    std::string mNamedDn; ///< empty if it is the same
};

MoImpl3::MoImpl3(IdMappings& ids, TransactionData& transactions, BiDirUtils& utils,
                 UniDirValidator& validator)
    : IterImpl(ids),
      // GCOVR_EXCL_START: all that is counted here undoes the base, and a binder does not throw
      binder(offered(OrvOamSpiManagedObject_3_ExtCmId), *this),
      // GCOVR_EXCL_STOP
      idMappings(ids),
      txData(transactions),
      biDirUtils(utils),
      uniDirValidator(validator) {}

OrvReturnT MoImpl3::init(OrvMgmtSpiInterfacePortal_1* hostPortal,
                         ExtCmInterceptorRepository* interceptorRepository) {
    portal = hostPortal;
    interceptors = interceptorRepository;
    return OrvOk;
}

OrvReturnT MoImpl3::start(OrvStateChangeReason) {
    return startService(ORV_TRACE_POINT, portal, OrvOamSpiManagedObject_3_RouterId, router,
                        started);
}

OrvReturnT MoImpl3::stop(OrvStateChangeReason) {
    return stopService(ORV_TRACE_POINT, mMutex, router, started);
}

OrvOamSpiManagedObject_3* MoImpl3::getMoInterface() {
    return binder.getInterface();
}

Orv::AutoMemory* MoImpl3::getTxData(unsigned long txHandle) {
    return txData.getTxData(ORV_TRACE_POINT, txHandle);
}

OrvOamSpiManagedObject_3* MoImpl3::getCmRouter() {
    return router;
}

MoInterceptorBase* MoImpl3::interceptorFor(const std::string& internalDn) {
    return interceptorOf(*interceptors, [&] { return Orv::DnUtil::getMocPath(internalDn); });
}

OrvReturnT MoImpl3::existsMo(unsigned long txHandle, const char* dn, bool* exists) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu, dn: %s", txHandle, shown(dn));
    const Opened opened = openOperation(started, idMappings, dn, nothingElse);
    if (opened.code != OrvOk) {
        return ORV_TRACE_RESULT(opened.code);
    }
    return ORV_TRACE_RESULT(router->existsMo(txHandle, opened.dn.c_str(), exists));
}

OrvReturnT MoImpl3::countMoChildren(unsigned long txHandle, const char* dn, const char* className,
                                    unsigned long long* count) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu, dn: %s, ", txHandle, shown(dn));
    const Opened opened = openWalk(started, idMappings, dn, nothingElse);
    if (opened.code != OrvOk) {
        return ORV_TRACE_RESULT(opened.code);
    }
    return ORV_TRACE_RESULT(router->countMoChildren(txHandle, opened.dn.c_str(), className, count));
}

OrvReturnT MoImpl3::getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                   OrvMoAttributeValueResult_3* result) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu, dn: %s, attr: %s", txHandle, shown(dn), shown(attrName));
    // The one operation that answers OrvFailure, not OrvNotActive, while the service is stopped.
    if (!started || result == nullptr) {
        return ORV_TRACE_RESULT(OrvFailure);
    }
    const Opened opened =
        openOperation(started, idMappings, dn, [&] { return areThere(attrName); });
    if (opened.code != OrvOk) {
        return ORV_TRACE_RESULT(opened.code);
    }
    // One of the two answers, never both. A result of a call that failed stays as it is.
    MoInterceptorBase* const interceptor = interceptorFor(opened.dn);
    const OrvReturnT code =
        interceptor != nullptr
            ? interceptor->getMoAttribute(txHandle, opened.dn.c_str(), attrName, result)
            : router->getMoAttribute(txHandle, opened.dn.c_str(), attrName, result);
    if (code == OrvOk) {
        createConvertedData(dn, attrName, *result);
    }
    return ORV_TRACE_RESULT(code);
}

OrvReturnT MoImpl3::getMoAttributes(unsigned long txHandle, const char* dn, const char** attrNames,
                                    OrvMoAttributeValuesResult_3* result) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu, dn: %s, ", txHandle, shown(dn));
    const Opened opened =
        openOperation(started, idMappings, dn, [&] { return areThere(attrNames, result); });
    if (opened.code != OrvOk) {
        return ORV_TRACE_RESULT(opened.code);
    }
    MoInterceptorBase* const interceptor = interceptorFor(opened.dn);
    const OrvReturnT code =
        interceptor != nullptr
            ? interceptor->getMoAttributes(txHandle, opened.dn.c_str(), attrNames, result)
            : router->getMoAttributes(txHandle, opened.dn.c_str(), attrNames, result);
    if (code == OrvOk && result->containers != nullptr && result->containers[0] != nullptr) {
        wrapMany(dn, attrNames, *result);
    }
    return ORV_TRACE_RESULT(code);
}

// The record stays until the transaction ends, whose memory owns it. An unknown handle is no error:
// its transaction may have ended before.
OrvReturnT MoImpl3::finalizeMoIterator(unsigned long long iterator) {
    ORV_TRACE_ENTRY(" >> ");
    const MoIterator* const record = MoIterator::find(iterator);
    if (record != nullptr && started) {
        router->finalizeMoIterator(record->routerHandle);
    }
    return ORV_TRACE_RESULT(OrvOk);
}

// The only write that is recorded after the router has accepted it: a new MO has no old value to
// compare with, and back-pointers to an MO that the router refuses would be wrong.
OrvReturnT MoImpl3::createMo(unsigned long txHandle, const char* dn, const char* className,
                             const char* attrName, const char* attrValue,
                             OrvMoNamedAttributeValueContainer_3** attributes) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu, dn: %s, class: %s, attrname: %s, attrvalue: %s", txHandle,
                    shown(dn), shown(className), shown(attrName), shown(attrValue));
    const auto canBeRead = [&] {
        return areThere(className, attrName, attrValue) && allOf(attributes, canBeCreatedWith);
    };
    const Opened opened = openCreation(started, idMappings, dn, canBeRead);
    if (opened.code != OrvOk) {
        return ORV_TRACE_RESULT(opened.code);
    }
    getTxData(txHandle); // for the join alone, here and in the other writes
    ConversionMemory memory;
    OrvMoNamedAttributeValueContainer_3* const none = nullptr;
    OrvMoNamedAttributeValueContainer_3** const converted =
        ValueConversion(idMappings)
            .toInternal(attributes != nullptr ? attributes : &none, memory, doNothing);
    CreatedMo created(opened.dn, className, attrName, attrValue);
    if (!allOf(converted, isNoReference) || biDirUtils.hasWaiting()) {
        created.makeDns(); // so that less can fail once the MO is there
    }
    const OrvReturnT code =
        router->createMo(txHandle, opened.dn.c_str(), className, attrName, attrValue, converted);
    if (code == OrvOk) {
        recordCreation(txHandle, created, converted);
    }
    return ORV_TRACE_RESULT(code);
}

// Back-pointers that wait are looked for also if none do when the lookup is traced.
void MoImpl3::recordCreation(unsigned long txHandle, CreatedMo& created,
                             OrvMoNamedAttributeValueContainer_3** attributes) {
    for (std::size_t index = 0; attributes[index] != nullptr; ++index) {
        const OrvMoNamedAttributeValueContainer_3& attribute = *attributes[index];
        // Asked once more: the router was given the array and may have written to it.
        if (!isNoReference(attribute) && canBeCreatedWith(attribute)) {
            created.makeDns();
            recordReferences(biDirUtils, uniDirValidator,
                             {txHandle, created.backPointerDn(), created.treeDn(), true},
                             attribute.name, attribute.value);
        }
    }
    if (biDirUtils.hasWaiting() || isTracing()) {
        created.makeDns();
        biDirUtils.updatePendingBackPointer(txHandle, created.backPointerDn(),
                                            created.namingAttribute());
    }
}

OrvReturnT MoImpl3::setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                   const OrvMoAttributeValueContainer_3* value) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu, dn: %s, attr: %s", txHandle, shown(dn), shown(attrName));
    const Opened opened =
        openOperation(started, idMappings, dn, [&] { return isReadableAs(attrName, value); });
    if (opened.code != OrvOk) {
        return ORV_TRACE_RESULT(opened.code);
    }
    getTxData(txHandle);
    // After the join: the refusal of an id is an answer within the transaction.
    if (isNetworkManagedElementId(attrName) && idSlotOf(value).isRefused()) {
        ORV_TRACE("Validation of networkManagedElementId failed: %s", idSlotOf(value).shownText());
        return ORV_TRACE_RESULT(OrvValidationFailed);
    }
    if (value != nullptr && mayHoldReferences(*value)) {
        return ORV_TRACE_RESULT(setReferences(txHandle, opened.dn, attrName, *value));
    }
    const OrvMoAttributeValueContainer_3 plain =
        value != nullptr ? *value : OrvMoAttributeValueContainer_3{};
    return ORV_TRACE_RESULT(passOn(txHandle, opened.dn, attrName, plain));
}

// Recorded before the change is passed on: what came and what went is found by comparing with the
// value that the router still holds.
OrvReturnT MoImpl3::setReferences(unsigned long txHandle, const std::string& internalDn,
                                  const char* attrName,
                                  const OrvMoAttributeValueContainer_3& value) {
    ConversionMemory memory;
    const OrvMoAttributeValueContainer_3 converted =
        ValueConversion(idMappings).toInternal(value, memory);
    recordReferences(biDirUtils, uniDirValidator, {txHandle, internalDn, internalDn, false},
                     attrName, converted);
    return passOn(txHandle, internalDn, attrName, converted);
}

OrvReturnT MoImpl3::passOn(unsigned long txHandle, const std::string& internalDn,
                           const char* attrName, const OrvMoAttributeValueContainer_3& value) {
    MoInterceptorBase* const interceptor = interceptorFor(internalDn);
    return interceptor != nullptr
               ? interceptor->setMoAttribute(txHandle, internalDn.c_str(), attrName, &value)
               : router->setMoAttribute(txHandle, internalDn.c_str(), attrName, &value);
}

OrvReturnT MoImpl3::deleteMo(unsigned long txHandle, const char* dn) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu, dn: %s", txHandle, shown(dn));
    const Opened opened = openOperation(started, idMappings, dn, nothingElse);
    if (opened.code != OrvOk) {
        return ORV_TRACE_RESULT(opened.code);
    }
    getTxData(txHandle);
    // All before the delete: the attributes that name the far sides can be read only until then.
    biDirUtils.updateBackPointersForDelete(txHandle, opened.dn.c_str());
    if (biDirUtils.hasWaiting()) {
        biDirUtils.removePendingBackPointerUpdates(txHandle, opened.dn);
    }
    uniDirValidator.deleteMo(txHandle, opened.dn);
    return ORV_TRACE_RESULT(router->deleteMo(txHandle, opened.dn.c_str()));
}

OrvReturnT MoImpl3::action(unsigned long txHandle, const char* dn, const char* name,
                           OrvMoNamedAttributeValueContainer_3** parameters,
                           OrvMoAttributeValueResult_3* result) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu, dn: %s, name: %s", txHandle, shown(dn), shown(name));
    const auto canBeRead = [&] { return areThere(parameters, result) && areReadable(parameters); };
    const Opened opened = openOperation(started, idMappings, dn, canBeRead);
    if (opened.code != OrvOk) {
        return ORV_TRACE_RESULT(opened.code);
    }
    getTxData(txHandle);
    ConversionMemory memory;
    OrvMoNamedAttributeValueContainer_3** const converted =
        ValueConversion(idMappings).toInternal(parameters, memory, doNothing);
    const OrvReturnT code = router->action(txHandle, opened.dn.c_str(), name, converted, result);
    // Without values there is nothing to translate: the client gets the router's own result.
    if (code == OrvOk && result->container != nullptr && result->container->count != 0) {
        wrap(*result);
    }
    return ORV_TRACE_RESULT(code);
}

// A value that cannot be read is wrapped as well, and passed on as it is: so the client releases
// every result through the same function.
void MoImpl3::wrap(OrvMoAttributeValueResult_3& result) {
    auto view = std::make_unique<ConvertedResultData>(result.release, result.container);
    ValueConversion(idMappings).toExternal(*view);
    handOut(std::move(view), result);
}

ConvertedResultData* MoImpl3::createConvertedData(const char* dn, const char* attrName,
                                                  OrvMoAttributeValueResult_3& result) {
    auto view = std::make_unique<ConvertedResultData>(result.release, result.container);
    if (holdsRootId(attrName, dn, result.container)) {
        const std::string id = externalRootId(idMappings, view->originalValue(0).string);
        view->ownValues()[0].string = view->strdup(id.c_str());
    } else {
        ValueConversion(idMappings).toExternal(*view);
    }
    return handOut(std::move(view), result);
}

// The first view answers for the producer's array: the others have nothing to release.
void MoImpl3::wrapMany(const char* dn, const char** attrNames,
                       OrvMoAttributeValuesResult_3& result) {
    const std::size_t count = lengthOf(result.containers);
    std::unique_ptr<OrvMoAttributeValueContainer_3*[], decltype(&ConvertedResultData::deleteViews)>
        views(static_cast<OrvMoAttributeValueContainer_3**>(std::calloc(count + 1, sizeof(void*))),
              &ConvertedResultData::deleteViews);
    if (views == nullptr) {
        throw std::bad_alloc(); // GCOVR_EXCL_LINE: only when the C library has no memory left
    }
    const char** name = attrNames;
    ConvertedResultData* first = nullptr;
    for (std::size_t index = 0; index < count; ++index) {
        OrvMoAttributeValueResult_3 single = {nullptr, result.containers[index]};
        ConvertedResultData* const view = createConvertedData(dn, *name, single);
        views[index] = view;
        first = first != nullptr ? first : view;
        name += *name != nullptr ? 1 : 0; // a producer may answer with more than it was asked for
    }
    first->setOriginalMany(result.release, result.containers);
    result.release = &ConvertedResultData::multiReleaseFunc;
    result.containers = views.release();
}

}
