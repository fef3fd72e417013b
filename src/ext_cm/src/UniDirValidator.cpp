// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "UniDirValidator.h"

#include "HostFlag.h"
#include "ModelReader.h"
#include "OrvException.h"
#include "Portal.h"
#include "life/UnderLock.h"
#include "messages/Tracing.h"
#include "model/ModelQuestions.h"
#include "model/ModelWalk.h"

namespace OrvExtCmRouterService {

namespace {

using Association = VekOamSpiMrUniDirAssociationHandle_4T;

const char* nameOfEnd(Orv::ModelReader const& model, Association association) {
    VekOamSpiMrAssociationEndHandle_4T const end =
        checked(model.uniDirEnd(association), "Failed to look up association end handle.");
    return checked(model.endText(end, VekOamSpiMrEndName_4),
                   "Failed to look up association end name.");
}

}

void UniDirValidator::start() {
    Orv::Portal* portal = Orv::Portal::instance();
    repository = portal->getInterface<VekOamSpiModelRepository_4>(VekOamSpiModelRepository_4_Id);
    threadContext = portal->getInterface<VekMgmtSpiThreadContext_2>(VekMgmtSpiThreadContext_2_Id);
}

void UniDirValidator::stop() {
    repository = nullptr;
    threadContext = nullptr;
    underLock(mutex, [this] { storage.clear(); });
}

// The model is asked without the lock, so that a slow repository holds up no other transaction;
// only the storage is touched under it. A write that cannot be recorded escapes the validation, but
// never fails the client's operation.
void UniDirValidator::setMoRef(unsigned long txHandle, std::string const& dn,
                               std::string const& attrName,
                               VekMoAttributeValueContainer_3 const* values) {
    if (repository == nullptr) {
        ORV_TRACE("Service is stopped");
        return;
    }
    auto const lookedUp = Orv::ModelReader(*repository).mocOfDn(dn.c_str());
    VekOamSpiMrMocHandle_4T const moc = lookedUp.value;
    if (lookedUp.code != OrvOk || moc == 0) {
        ORV_LOG(4, "Failed to look up MOC. dn: %s, rc: %d", dn.c_str(), lookedUp.code);
        return;
    }
    try {
        Association association = 0;
        if (!isUniDir(moc, attrName, &association)) {
            return;
        }
        underLock(mutex,
                  [&] { storage.setUniDirRef(txHandle, dn, moc, attrName, association, values); });
    } catch (Orv::OrvException const& exception) {
        ORV_LOG(4, "Got exception [%s] return code %d", exception.what(), exception.returnCode());
    }
}

// The walk stops at the first match, but the handle is that of the first association of the class:
// the validation walks on from there, and must meet the ends of that name that come earlier too.
bool UniDirValidator::isUniDir(VekOamSpiMrMocHandle_4T moc, std::string const& attrName,
                               VekOamSpiMrUniDirAssociationHandle_4T* assocHandle) {
    Orv::ModelReader const model(*repository);
    auto walk = walkUntilNonZero<Association>(
        ORV_TRACE_POINT, [&](Association* first) { return stepTo(first, model.firstUniDir(moc)); },
        [&](Association current, Association* next) {
            return stepTo(next, model.nextUniDir(current));
        });
    if (walk.code() == OrvNotExist) {
        return false;
    }
    throwUnlessOk(walk.code(), "Failed to look up association handle");
    *assocHandle = walk.current();
    for (; walk.more(); walk.advance()) {
        if (sameText(nameOfEnd(model, walk.current()), attrName.c_str())) {
            return true;
        }
    }
    if (walk.code() != OrvNotExist) {
        throwUnlessOk(walk.code(), "Failed to look up next association");
    }
    return false;
}

// A stopped service is logged here, and only traced at a write. They differ on purpose.
void UniDirValidator::deleteMo(unsigned long txHandle, std::string const& dn) {
    if (repository == nullptr) {
        ORV_LOG(6, "Service is stopped");
        return;
    }
    try {
        underLock(mutex, [&] { storage.deleteMo(txHandle, dn); });
    } catch (Orv::OrvException const& exception) {
        ORV_LOG(4, "Got exception [%s] return code %d", exception.what(), exception.returnCode());
    }
}

// Also in a stopped service: what is stored must not outlive its transaction.
void UniDirValidator::finish(unsigned long txHandle) {
    underLock(mutex, [&] { storage.finish(txHandle); });
}

// The lock is held over the whole validation: the tree must not change while it is walked. All
// other transactions wait meanwhile. An exception is caught after the lock is released.
OrvReturnT UniDirValidator::validate(unsigned long txHandle, bool* result) {
    if (repository == nullptr || threadContext == nullptr) {
        ORV_TRACE("Service is stopped");
        return OrvNotActive;
    }
    OrvReturnT code = OrvOk;
    try {
        const bool valid = underLock(
            mutex, [&] { return storage.validate(*repository, *threadContext, txHandle); });
        *result = valid;
        code = valid ? OrvOk : OrvValidationFailed;
    } catch (Orv::OrvException const& exception) {
        code = exception.returnCode();
        ORV_LOG(4, "Got exception [%s] return code %d", exception.what(), code);
    }
    ORV_TRACE("Validate tx: %d result: %d return code: %d", static_cast<int>(txHandle),
              Orv::byteOf(*result), code);
    return code;
}

}
