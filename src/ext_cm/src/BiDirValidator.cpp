// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirValidator.h"

#include "HostFlag.h"
#include "ModelReader.h"
#include "OwnedResult.h"
#include "Portal.h"
#include "messages/Violation.h"
#include "model/ModelQuestions.h"
#include "model/ModelWalk.h"
#include "values/ReadResult.h"
#include "values/ReferenceList.h"

#include <algorithm>
#include <cstdint>

namespace OrvExtCmRouterService {

namespace {

constexpr const char* anyClass = "ManagedObject";

// The DN and the attribute stand in each other's place. Those who read traces know the text as it
// is.
void traceReadFailure(const TracePoint& operation, const char* dn, const char* attribute,
                      OrvReturnT code) {
    ORV_TRACE_AT(operation, "Failed to retrieve %s value from %s, return code = %d", dn, attribute,
                 code);
}

}

BiDirValidator::BiDirValidator(BiDirUtils& utils) : biDirUtils(utils) {}

void BiDirValidator::start() {
    Orv::Portal* portal = Orv::Portal::instance();
    modelRepository =
        portal->getInterface<VekOamSpiModelRepository_4>(VekOamSpiModelRepository_4_Id);
    threadContext = portal->getInterface<VekMgmtSpiThreadContext_2>(VekMgmtSpiThreadContext_2_Id);
    moRouter = portal->getInterface<OrvOamSpiManagedObject_3>(VekOamSpiManagedObject_3_RouterId);
}

void BiDirValidator::stop() {
    moRouter = nullptr;
    modelRepository = nullptr;
    threadContext = nullptr;
}

// GCOVR_EXCL_START: an operation of the class that nothing calls
void BiDirValidator::release(VekMoAttributeValueResult_3 result) const {
    Orv::giveBack(result);
}
// GCOVR_EXCL_STOP

// ---------------------------------------------------------------------------------------------
// The transaction

// The first violation ends the validation. A question about existence that fails does not: its code
// is the result only if it was the last answer.
OrvReturnT BiDirValidator::validateBiDirs(unsigned long txHandle, bool* valid) {
    *valid = true;
    const BiDirUtils::ModifiedAttributes workList = biDirUtils.getModifiedBackPointers(txHandle);
    if (workList.empty()) {
        return OrvOk;
    }
    const TracePoint operation = ORV_TRACE_POINT;
    if (!canJudge(operation, txHandle)) {
        *valid = false;
        return OrvNotActive;
    }
    OrvReturnT code = OrvOk;
    for (const auto& [writtenDn, writtenAttribute] : workList) {
        const char* const dn = writtenDn.c_str();
        const char* const attribute = writtenAttribute.c_str();
        ORV_TRACE("Validating: %s, %s", dn, attribute);
        bool exists = false;
        code = moRouter->existsMo(txHandle, dn, &exists);
        if (code != OrvOk || !Orv::isSet(exists)) {
            continue; // an MO that is gone needs no check
        }
        Orv::OwnedResult<VekMoAttributeValueResult_3> result; // released on every way out
        code = moRouter->getMoAttribute(txHandle, dn, attribute, result.record());
        if (code != OrvOk) {
            traceReadFailure(operation, dn, attribute, code);
            *valid = false;
            return code;
        }
        const Outcome outcome = judge(operation, dn, attribute, *result.record(), code);
        if (outcome != Outcome::Next) {
            *valid = outcome != Outcome::Refused;
            return code;
        }
    }
    return code;
}

// Pairs are there, and nothing to judge them with: the host has offered no router or no model, or
// validates after a stop. The transaction must not pass for a valid one then, so the answer is that
// of a stopped service, as from the validator of unidirectional references. Since no message can be
// built that a client would understand, the log says why.
bool BiDirValidator::canJudge(const TracePoint& operation, unsigned long txHandle) const {
    if (moRouter != nullptr && modelRepository != nullptr && biDirUtils.hasModel()) {
        return true;
    }
    ORV_LOG_AT(operation, 3,
               "Transaction %lu cannot be validated without router and model repository", txHandle);
    return false;
}

BiDirValidator::Outcome BiDirValidator::judge(const TracePoint& operation, const char* dn,
                                              const char* attribute,
                                              VekMoAttributeValueResult_3& result,
                                              OrvReturnT& code) {
    const auto lookedUp = Orv::ModelReader(*modelRepository).mocOfDn(dn);
    if (lookedUp.code != OrvOk) {
        addThreadContextMessage(unknownType(dn).text());
        code = OrvValidationFailed;
        return Outcome::Refused;
    }
    const VekOamSpiMrMocHandle_4T moc = lookedUp.value;
    const VekMoAttributeValueContainer_3& value = ReadResult::valueOf(result);
    // The count alone is needed here, so it is judged before the values are known to be references.
    code = attrMultiplicityCheck(dn, moc, attribute, value.count);
    if (code != OrvOk) {
        return Outcome::Refused;
    }
    std::list<VekOamSpiMrBiDirAssociationHandle_4T> bidirs;
    biDirUtils.getBidirsForMoc(moc, bidirs);
    if (bidirs.empty()) {
        // Only attributes of classes with associations are recorded: the model contradicts itself.
        return Outcome::Done;
    }
    // The model has references here. A router that answers with something else has not answered.
    if (!areReferences(value)) {
        code = OrvFailure;
        traceReadFailure(operation, dn, attribute, code);
        return Outcome::Refused;
    }
    std::list<VekOamSpiMrMocHandle_4T> permitted;
    code = judgeAssociations(dn, moc, attribute, value, bidirs, permitted);
    if (code == OrvOk) {
        code = attributeTypeCheck(dn, attribute, &result, permitted);
    }
    return code == OrvOk ? Outcome::Next : Outcome::Refused;
}

// ---------------------------------------------------------------------------------------------
// The checks of one attribute

OrvReturnT BiDirValidator::attrMultiplicityCheck(const char* dn, VekOamSpiMrMocHandle_4T moc,
                                                 const char* attribute, long long count) {
    const Orv::ModelReader model(*modelRepository);
    VekOamSpiMrAttributeHandle_4T handle = 0;
    getAttributeFromMoc(moc, attribute, handle);
    const VekOamSpiMrTypeHandle_4T type = model.attributeType(handle).value;
    if (!isReference(model, type)) {
        addThreadContextMessage(notAReference(attribute, dn).text());
        return OrvValidationFailed;
    }
    const long long lower = model.typeBound(type, VekOamSpiMrLowerBound_4).value;
    const long long upper = model.typeBound(type, VekOamSpiMrUpperBound_4).value;
    if (lower <= count && count <= upper) {
        return OrvOk;
    }
    addThreadContextMessage(outsideMultiplicity(attribute, dn, lower, upper).text());
    return OrvValidationFailed;
}

OrvReturnT
BiDirValidator::judgeAssociations(const char* dn, VekOamSpiMrMocHandle_4T moc,
                                  const char* attribute,
                                  const VekMoAttributeValueContainer_3& value,
                                  const std::list<VekOamSpiMrBiDirAssociationHandle_4T>& bidirs,
                                  std::list<VekOamSpiMrMocHandle_4T>& permitted) {
    const Orv::ModelReader model(*modelRepository);
    for (const VekOamSpiMrBiDirAssociationHandle_4T bidir : bidirs) {
        VekOamSpiMrAssociationEndHandle_4T near = 0;
        biDirUtils.findAssociationEnd(moc, bidir, near);
        const VekOamSpiMrAssociationEndHandle_4T far = farEnd(model, bidir, near);
        if (!sameText(model.endText(far, VekOamSpiMrEndName_4).value, attribute)) {
            continue;
        }
        const VekOamSpiMrMocHandle_4T target =
            model.attributeMoc(model.endAttribute(near).value).value;
        permitted.push_back(target);
        int count = 0;
        OrvReturnT code = countValues(value, target, count);
        if (code == OrvOk) {
            code = biDirCardinalityCheck(dn, far, count);
        }
        if (code != OrvOk) {
            return code;
        }
    }
    return OrvOk;
}

// Values of other classes belong to other associations of the same attribute, or are refused later
// by their class.
OrvReturnT BiDirValidator::countValues(const VekMoAttributeValueContainer_3& value,
                                       VekOamSpiMrMocHandle_4T target, int& count) {
    const Orv::ModelReader model(*modelRepository);
    for (std::uint32_t i = 0; i < value.count; ++i) {
        const auto moc = model.mocOfDn(value.values[i].moRef);
        if (moc.code != OrvOk) {
            addThreadContextMessage(unknownType(value.values[i].moRef).text());
            return OrvValidationFailed;
        }
        count += moc.value == target ? 1 : 0;
    }
    return OrvOk;
}

// Texts are asked for before the bounds are compared, also if no message needs them (see
// ModelQuestions.h).
OrvReturnT BiDirValidator::biDirCardinalityCheck(const char* dn,
                                                 VekOamSpiMrAssociationEndHandle_4T end,
                                                 long long count) {
    const Orv::ModelReader model(*modelRepository);
    const long long lower = model.endBound(end, VekOamSpiMrLowerBound_4).value;
    const long long upper = model.endBound(end, VekOamSpiMrUpperBound_4).value;
    const char* const counted = model.endText(end, VekOamSpiMrEndRole_4).value;
    const char* const name = model.endText(end, VekOamSpiMrEndName_4).value;
    if (lower <= count && count <= upper) {
        return OrvOk;
    }
    addThreadContextMessage(outsideCardinality(name, dn, count, counted, lower, upper).text());
    return OrvValidationFailed;
}

// A class must be the declared one exactly: subclasses play no part here. The code of the first
// lookup is not looked at, since the same DN has just been found.
OrvReturnT BiDirValidator::attributeTypeCheck(const char* dn, const char* attribute,
                                              VekMoAttributeValueResult_3* result,
                                              std::list<VekOamSpiMrMocHandle_4T>& permitted) {
    const Orv::ModelReader model(*modelRepository);
    const VekOamSpiMrMocHandle_4T moc = model.mocOfDn(dn).value;
    VekOamSpiMrAttributeHandle_4T handle = 0;
    getAttributeFromMoc(moc, attribute, handle);
    const VekOamSpiMrTypeHandle_4T type = model.attributeType(handle).value;
    if (!isReference(model, type)) {
        return OrvOk;
    }
    const VekOamSpiMrMocHandle_4T declared = model.referencedMoc(type).value;
    const bool any = sameText(mocName(model, declared), anyClass);
    const char* lastName = nullptr;
    const OrvReturnT code =
        checkValueTypes(ReadResult::valueOf(*result), {declared, any, permitted}, lastName);
    if (code != OrvOk) {
        addThreadContextMessage((notAValidType(lastName, attribute, dn) << ".").text());
    }
    return code;
}

// There are as many passes as values, but a pass whose value has no class does not move on: the
// value is tried again in every pass that is left, with its message each time, and the values
// after it are not looked at. Clients know these messages in this number and order, so they stay.
OrvReturnT BiDirValidator::checkValueTypes(const VekMoAttributeValueContainer_3& value,
                                           const PermittedTypes& types, const char*& lastName) {
    const Orv::ModelReader model(*modelRepository);
    OrvReturnT code = OrvOk;
    std::uint32_t position = 0;
    for (std::uint32_t pass = 0; pass < value.count; ++pass) {
        const char* const reference = value.values[position].moRef;
        const auto moc = model.mocOfDn(reference);
        code = moc.code;
        if (code != OrvOk) {
            addThreadContextMessage(unknownType(reference).text());
            continue;
        }
        lastName = mocName(model, moc.value);
        if (!types.permits(moc.value)) {
            return OrvValidationFailed;
        }
        ++position;
    }
    return code;
}

// Sorted, since an attribute of many associations may hold many values.
BiDirValidator::PermittedTypes::PermittedTypes(VekOamSpiMrMocHandle_4T declared, bool any,
                                               const std::list<VekOamSpiMrMocHandle_4T>& associated)
    : mDeclared(declared), mAny(any) {
    if (mAny) {
        mAssociated.assign(associated.begin(), associated.end());
        std::sort(mAssociated.begin(), mAssociated.end());
    }
}

bool BiDirValidator::PermittedTypes::permits(VekOamSpiMrMocHandle_4T moc) const {
    if (!mAny) {
        return moc == mDeclared;
    }
    return mAssociated.empty() || std::binary_search(mAssociated.begin(), mAssociated.end(), moc);
}

void BiDirValidator::getAttributeFromMoc(VekOamSpiMrMocHandle_4T moc, const char* name,
                                         VekOamSpiMrAttributeHandle_4T& attribute) {
    using Handle = VekOamSpiMrAttributeHandle_4T;
    const Orv::ModelReader model(*modelRepository);
    auto walk = walkUntilNotExist<Handle>(
        ORV_TRACE_POINT,
        // The caller keeps its handle if the class has no attribute.
        [&](Handle* found) { return stepTo(found, model.firstAttribute(moc, attribute)); },
        [&](Handle current, Handle* found) {
            return stepTo(found, model.nextAttribute(current, *found));
        });
    while (walk.more() && !sameText(attributeName(model, walk.current()), name)) {
        walk.advance();
    }
    attribute = walk.current();
}

// ---------------------------------------------------------------------------------------------
// Messages

// The verdict stands whether or not the client gets the message.
void BiDirValidator::addThreadContextMessage(const std::string& message) {
    if (threadContext == nullptr) {
        ORV_LOG(3, "ExtCm ThreadContext is null");
        return;
    }
    const bool isTaken = giveToClient(*threadContext, message);
    ORV_TRACE("%s", message.c_str());
    if (!isTaken) {
        logNotTaken(ORV_TRACE_POINT, message);
    }
}

}
