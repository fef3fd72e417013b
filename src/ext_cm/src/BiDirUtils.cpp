// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirUtils.h"

#include "ModelReader.h"
#include "Portal.h"
#include "associations/BackPointerRouter.h"
#include "life/UnderLock.h"
#include "model/ModelQuestions.h"
#include "model/ModelWalk.h"
#include "values/ConversionMemory.h"
#include "values/ReadResult.h"
#include "values/ReferenceList.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

namespace OrvExtCmRouterService {

namespace {

constexpr int childLookupLimit = 60;

// A router that reports a child of every MO would lead down without end, and one that reports two
// would lead to more MOs than can be visited. No network has so many levels or MOs.
constexpr std::size_t deepestSubtree = 10000;
constexpr std::size_t largestSubtree = 10000000;

struct Ends {
    VekOamSpiMrAssociationEndHandle_4T first;
    VekOamSpiMrAssociationEndHandle_4T second;
    VekOamSpiMrMocHandle_4T firstMoc;
};

// The class of the second end is not needed. It is asked for since calls do not change: see
// ModelQuestions.h.
Ends endsOf(const Orv::ModelReader& model, VekOamSpiMrBiDirAssociationHandle_4T association) {
    const VekOamSpiMrAssociationEndHandle_4T first = model.firstEnd(association).value;
    const VekOamSpiMrAssociationEndHandle_4T second = model.secondEnd(association).value;
    const VekOamSpiMrMocHandle_4T firstMoc = model.endMoc(first).value;
    model.endMoc(second);
    return {first, second, firstMoc};
}

void traceReadFailure(const TracePoint& operation, OrvReturnT code, const char* attribute,
                      const char* dn) {
    ORV_TRACE_AT(operation, "Error code %d received when reading attribute %s in %s.", code,
                 attribute, dn);
}

}

void BiDirUtils::start() {
    Orv::Portal* portal = Orv::Portal::instance();
    moRouter = portal->getInterface<OrvOamSpiManagedObject_3>(VekOamSpiManagedObject_3_RouterId);
    modelRepository =
        portal->getInterface<VekOamSpiModelRepository_4>(VekOamSpiModelRepository_4_Id);
}

void BiDirUtils::stop() {
    moRouter = nullptr;
    modelRepository = nullptr;
}

// ---------------------------------------------------------------------------------------------
// Questions to the model

OrvReturnT BiDirUtils::lookUpMoc(const TracePoint& operation, const char* dn,
                                 VekOamSpiMrMocHandle_4T& moc) const {
    const auto found = Orv::ModelReader(*modelRepository).mocOfDn(dn);
    moc = found.value;
    if (found.code != OrvOk) {
        ORV_LOG_AT(operation, 3, "Failed to look up MOC from DN. dn=%s, ret=%d", dn, found.code);
    }
    return found.code;
}

/// The name of the attribute on the far side of \p end. What a transaction queued before a stop can
/// be applied after a start that has found no repository: then the name is empty and the edit
/// fails.
const char* BiDirUtils::backPointerOf(VekOamSpiMrAssociationEndHandle_4T end) const {
    return hasModel() ? textOrEmpty(endName(Orv::ModelReader(*modelRepository), end)) : "";
}

OrvReturnT BiDirUtils::getBidirsForMoc(VekOamSpiMrMocHandle_4T moc,
                                       std::list<VekOamSpiMrBiDirAssociationHandle_4T>& bidirs) {
    using Handle = VekOamSpiMrBiDirAssociationHandle_4T;
    const Orv::ModelReader model(*modelRepository);
    auto walk = walkUntilNonZero<Handle>(
        ORV_TRACE_POINT, [&](Handle* found) { return stepTo(found, model.firstBiDir(moc)); },
        [&](Handle current, Handle* found) {
            return stepTo(found, model.nextBiDir(current, moc));
        });
    if (!walk.more()) {
        ORV_TRACE("MOC is not part of any BiDirs.");
    }
    for (; walk.more(); walk.advance()) {
        ORV_TRACE("Found BiDir with handle %llu", walk.current());
        bidirs.push_back(walk.current());
    }
    if (walk.isCutOff()) {
        withoutRepeats(bidirs);
    }
    return OrvOk;
}

OrvReturnT BiDirUtils::findAssociationEnd(VekOamSpiMrMocHandle_4T moc,
                                          VekOamSpiMrBiDirAssociationHandle_4T association,
                                          VekOamSpiMrAssociationEndHandle_4T& end) {
    const Ends ends = endsOf(Orv::ModelReader(*modelRepository), association);
    end = ends.firstMoc == moc ? ends.first : ends.second;
    return OrvOk;
}

// An attribute is named after the end that it points at, so the near end is the one with the other
// name. Where both ends of an association between two classes carry one name, that does not tell
// them apart and the second end is the answer, even if the first one lies at the class. Models give
// such ends different names, and rely on this rule for all others.
OrvReturnT BiDirUtils::findAssociationEnd(VekOamSpiMrMocHandle_4T moc, const char* attributeName,
                                          VekOamSpiMrBiDirAssociationHandle_4T association,
                                          VekOamSpiMrAssociationEndHandle_4T& end) {
    const Orv::ModelReader model(*modelRepository);
    const Ends ends = endsOf(model, association);
    const char* const firstName = endName(model, ends.first);
    ORV_TRACE("First association end attribute name is %s", textOrEmpty(firstName));
    end = ends.firstMoc == moc && !sameText(firstName, attributeName) ? ends.first : ends.second;
    return OrvOk;
}

// ---------------------------------------------------------------------------------------------
// Edits of one back-pointer

void BiDirUtils::getMoRefDiff(const VekMoAttributeValueContainer_3* newValue,
                              const VekMoAttributeValueContainer_3* oldValue,
                              std::vector<std::string>& toAdd, std::vector<std::string>& toRemove) {
    const TracePoint operation = ORV_TRACE_POINT;
    forEachMissing(*newValue, *oldValue, [&](const char* dn) {
        toAdd.reserve(newValue->count);
        toAdd.emplace_back(dn);
        ORV_TRACE_AT(operation, "DN to be added to backpointer: %s", dn);
    });
    forEachMissing(*oldValue, *newValue, [&](const char* dn) {
        toRemove.reserve(oldValue->count);
        toRemove.emplace_back(dn);
        ORV_TRACE_AT(operation, "DN to be removed from backpointer: %s", dn);
    });
}

// The attribute is written also if the DN does not stand in it: with the write it is recorded for
// validation, which must see every far side of a removed reference. Only the first of several equal
// DNs goes, since each stands for a reference of its own.
void BiDirUtils::removeMoFromBackPointer(unsigned long txHandle, const char* targetDn,
                                         const char* dnToRemove,
                                         VekOamSpiMrAssociationEndHandle_4T end,
                                         const char* sourceAttribute) {
    const BackPointerRouter router(moRouter);
    if (!router.certainlyExists(txHandle, targetDn)) {
        removePendingBackPointerFromQueue(txHandle, dnToRemove, sourceAttribute);
        return;
    }
    const char* const backPointer = backPointerOf(end);
    ReadResult present;
    const OrvReturnT code = router.readReferences(txHandle, targetDn, backPointer, present);
    if (code != OrvOk) {
        traceReadFailure(ORV_TRACE_POINT, code, backPointer, targetDn);
        return;
    }
    std::vector<std::string> values = copyReferences(present.value(), present.value().count);
    const auto first = std::find(values.begin(), values.end(), dnToRemove);
    if (first != values.end()) {
        values.erase(first);
    }
    setMoAttr(txHandle, std::move(values), targetDn, backPointer);
}

// The lock is held from the question to the write or the queueing, so that the two stores see the
// edit as one step. The write takes it once more, which is why the mutex is recursive.
void BiDirUtils::addMoToBackPointer(unsigned long txHandle, const char* targetDn,
                                    const char* dnToAdd, VekOamSpiMrAssociationEndHandle_4T end,
                                    const char* sourceAttribute) {
    const TracePoint operation = ORV_TRACE_POINT;
    underLock(mMutex, [&] {
        const char* const backPointer = backPointerOf(end);
        if (BackPointerRouter(moRouter).certainlyExists(txHandle, targetDn)) {
            extendBackPointer(operation, txHandle, targetDn, dnToAdd, backPointer);
        } else {
            mPending.add(targetDn, {txHandle, backPointer, end, dnToAdd, true, sourceAttribute});
        }
    });
}

// It is not tested whether the DN is there already: a client that writes both sides of an
// association itself gets it twice, and the validation counts it twice.
void BiDirUtils::extendBackPointer(const TracePoint& operation, unsigned long txHandle,
                                   const char* targetDn, const char* dnToAdd,
                                   const char* backPointer) {
    ReadResult present;
    const OrvReturnT code =
        BackPointerRouter(moRouter).readReferences(txHandle, targetDn, backPointer, present);
    if (code != OrvOk) {
        traceReadFailure(operation, code, backPointer, targetDn);
        return;
    }
    std::vector<std::string> values =
        copyReferences(present.value(), std::size_t{present.value().count} + 1);
    values.emplace_back(dnToAdd);
    setMoAttr(txHandle, std::move(values), targetDn, backPointer);
}

OrvReturnT BiDirUtils::setMoAttr(unsigned long txHandle, std::vector<std::string> values,
                                 const char* dn, const char* attributeName) {
    const TracePoint operation = ORV_TRACE_POINT;
    return underLock(
        mMutex, [&] { return writeBackPointer(operation, txHandle, values, dn, attributeName); });
}

OrvReturnT BiDirUtils::writeBackPointer(const TracePoint& operation, unsigned long txHandle,
                                        const std::vector<std::string>& values, const char* dn,
                                        const char* attributeName) {
    ConversionMemory memory;
    const auto count = static_cast<std::uint32_t>(values.size());
    auto* const slots = memory.malloc<OrvMoAttributeValue_3>(std::max(count, 1U)); // of none, too
    for (std::size_t i = 0; i < values.size(); ++i) {
        slots[i].moRef = values[i].c_str();
    }
    const VekMoAttributeValueContainer_3 value{OrvMoAttributeTypeMoRef_3, count, slots};
    const OrvReturnT code = BackPointerRouter(moRouter).write(txHandle, dn, attributeName, value);
    if (code == OrvOk) {
        recordWritten(mRecentTarget, txHandle, dn, attributeName);
    } else {
        ORV_TRACE_AT(operation, "Error code %d received when setting attribute %s in %s.", code,
                     attributeName, dn);
    }
    return code;
}

// ---------------------------------------------------------------------------------------------
// A written reference attribute

// What has come and gone is found by comparing with the value that the router still holds. A read
// that fails therefore ends the operation: without the old value nothing can be compared.
OrvReturnT BiDirUtils::updateBackPointersForModify(unsigned long txHandle, const char* dn,
                                                   const char* attributeName,
                                                   const VekMoAttributeValueContainer_3* newValue,
                                                   bool isNewMo) {
    ORV_TRACE_ENTRY(" >> dn = %s, attributeName = %s", dn, attributeName);
    if (!hasModel()) {
        ORV_LOG(3, "VekOamSpiModelRepository_4T pointer is null.");
        return OrvFailure;
    }
    const Source source{ORV_TRACE_POINT, txHandle, dn, attributeName};
    VekOamSpiMrMocHandle_4T moc = 0;
    OrvReturnT code = lookUpMoc(source.operation, dn, moc);
    if (code != OrvOk) {
        return code;
    }
    std::list<VekOamSpiMrBiDirAssociationHandle_4T> bidirs;
    getBidirsForMoc(moc, bidirs);
    if (bidirs.empty()) {
        return OrvOk;
    }
    {
        VekMoAttributeValueContainer_3 noValues{OrvMoAttributeTypeMoRef_3, 0, nullptr};
        ReadResult oldValue(noValues);
        if (!isNewMo) {
            code = BackPointerRouter(moRouter).read(txHandle, dn, attributeName, oldValue);
        }
        if (code != OrvOk) {
            ORV_TRACE("Failed to retrieve %s value from %s, return code = %d", attributeName, dn,
                      code);
            return code;
        }
        std::vector<std::string> toAdd;
        std::vector<std::string> toRemove;
        getMoRefDiff(newValue, &oldValue.references(), toAdd, toRemove);
        for (const VekOamSpiMrBiDirAssociationHandle_4T bidir : bidirs) {
            code = editFarSides(source, moc, bidir, toAdd, toRemove, code);
        }
    }
    // Also if no association is realised by this attribute: the validation judges its count and its
    // classes all the same. By now the old value is released.
    underLock(mMutex, [&] { addUpdatedBp(txHandle, dn, attributeName); });
    return code;
}

/// Follows one association, if the written attribute is the one that realises it. Gives back the
/// code of the last class lookup, or \p code if there was none.
OrvReturnT BiDirUtils::editFarSides(const Source& source, VekOamSpiMrMocHandle_4T moc,
                                    VekOamSpiMrBiDirAssociationHandle_4T bidir,
                                    const std::vector<std::string>& toAdd,
                                    const std::vector<std::string>& toRemove, OrvReturnT code) {
    const Orv::ModelReader model(*modelRepository);
    VekOamSpiMrAssociationEndHandle_4T near = 0;
    findAssociationEnd(moc, source.attribute, bidir, near);
    const VekOamSpiMrAssociationEndHandle_4T far = farEnd(model, bidir, near);
    const char* const farName = endName(model, far);
    const VekOamSpiMrMocHandle_4T farMoc = model.endMoc(far).value;
    if (!sameText(source.attribute, farName)) {
        return code;
    }
    code = editTargets(&BiDirUtils::removeMoFromBackPointer, toRemove, source, near, farMoc, code);
    return editTargets(&BiDirUtils::addMoToBackPointer, toAdd, source, near, farMoc, code);
}

OrvReturnT BiDirUtils::editTargets(Edit edit, const std::vector<std::string>& targets,
                                   const Source& source, VekOamSpiMrAssociationEndHandle_4T near,
                                   VekOamSpiMrMocHandle_4T farMoc, OrvReturnT code) {
    for (const std::string& target : targets) {
        VekOamSpiMrMocHandle_4T moc = 0;
        code = lookUpMoc(source.operation, target.c_str(), moc);
        // A reference of the wrong class is left to the validation, which names it.
        if (code == OrvOk && moc == farMoc) {
            (this->*edit)(source.txHandle, target.c_str(), source.dn, near, source.attribute);
        }
    }
    return code;
}

// ---------------------------------------------------------------------------------------------
// A deleted MO

BiDirUtils::MoToLeave::MoToLeave(unsigned long txHandle)
    : accessor(Orv::OrvLockPolicyRead, childLookupLimit) {
    accessor.useTransaction(txHandle);
}

OrvReturnT BiDirUtils::updateBackPointersForDelete(unsigned long txHandle, const char* dn) {
    if (!hasModel()) {
        ORV_LOG(3, "VekOamSpiModelRepository_4T pointer is null.");
        return OrvFailure;
    }
    const TracePoint operation = ORV_TRACE_POINT;
    MoToLeave top(txHandle);
    const OrvReturnT code = leaveOrEnter(operation, txHandle, dn, top);
    if (top.below) {
        leaveSubtree(operation, txHandle, top);
    }
    return code;
}

/// Takes what lies below \p top, and then the MO itself, out of the back-pointers. Children before
/// parents, and without recursion: a subtree can be deeper than a host's thread has stack for.
void BiDirUtils::leaveSubtree(const TracePoint& operation, unsigned long txHandle, MoToLeave& top) {
    std::list<MoToLeave> path; // from below the deleted MO down to the current one
    std::size_t visited = 0;
    bool isCutOff = false;
    for (;;) {
        MoToLeave& mo = path.empty() ? top : path.back();
        auto& [dn, children] = *mo.below;
        if (!children.empty()) {
            const std::string child = std::move(children.front());
            children.pop_front();
            if (path.size() + 1 < deepestSubtree && ++visited < largestSubtree) {
                MoToLeave& entered = path.emplace_back(txHandle);
                leaveOrEnter(operation, txHandle, child.c_str(), entered);
                if (!entered.below) {
                    path.pop_back();
                }
            } else if (!isCutOff) {
                isCutOff = true;
                ORV_LOG_AT(operation, 3, "A subtree to delete does not end: cut off at %s",
                           child.c_str());
            }
        } else if (!mo.childClasses.empty()) {
            mo.accessor.getChildren(dn, mo.childClasses.front(), children);
            mo.childClasses.pop_front();
        } else {
            updateBackpointers(txHandle, dn.c_str());
            if (path.empty()) {
                return;
            }
            path.pop_back();
        }
    }
}

/// Fills \p mo in with the classes that the one of \p dn contains, if there are any, or takes the
/// MO out of the back-pointers at once. If its class is not known nothing is done for it and what
/// lies below it. Gives back the code of the class lookup.
OrvReturnT BiDirUtils::leaveOrEnter(const TracePoint& operation, unsigned long txHandle,
                                    const char* dn, MoToLeave& mo) {
    VekOamSpiMrMocHandle_4T moc = 0;
    const OrvReturnT code = lookUpMoc(operation, dn, moc);
    if (code != OrvOk) {
        return code;
    }
    findContainedClasses(operation, moc, mo.childClasses);
    if (mo.childClasses.empty()) {
        updateBackpointers(txHandle, dn);
    } else {
        mo.below = Below{dn, {}};
    }
    return code;
}

/// Appends to \p names those of the classes that \p moc contains, as far as the model tells them.
void BiDirUtils::findContainedClasses(const TracePoint& operation, VekOamSpiMrMocHandle_4T moc,
                                      std::list<std::string>& names) const {
    using Handle = VekOamSpiMrContainmentHandle_4T;
    const Orv::ModelReader model(*modelRepository);
    auto walk = walkUntilNonZero<Handle>(
        operation, [&](Handle* found) { return stepTo(found, model.firstContainment(moc)); },
        [&](Handle current, Handle* found) {
            return stepTo(found, model.nextContainment(current));
        });
    if (!walk.more()) {
        return; // any code of the first step means that nothing is contained
    }
    for (; walk.more(); walk.advance()) {
        const VekOamSpiMrMocHandle_4T contained = model.containedMoc(walk.current()).value;
        names.emplace_back(textOrEmpty(mocName(model, contained)));
    }
    if (walk.isCutOff()) {
        withoutRepeats(names);
    }
    if (walk.code() != OrvNotExist) {
        ORV_LOG_AT(operation, 3, "Model repository returned error code %d", walk.code());
    }
}

OrvReturnT BiDirUtils::updateBackpointers(unsigned long txHandle, const char* dn) {
    const TracePoint operation = ORV_TRACE_POINT;
    VekOamSpiMrMocHandle_4T moc = 0;
    const OrvReturnT code = lookUpMoc(operation, dn, moc);
    if (code != OrvOk) {
        return code;
    }
    std::list<VekOamSpiMrBiDirAssociationHandle_4T> bidirs;
    getBidirsForMoc(moc, bidirs);
    for (const VekOamSpiMrBiDirAssociationHandle_4T bidir : bidirs) {
        leaveAssociation(operation, txHandle, dn, moc, bidir);
    }
    return code;
}

/// An MO of a class that is associated with itself stands on both sides, with an attribute for
/// each: a second pass, with the two ends exchanged, cleans up after the other attribute.
void BiDirUtils::leaveAssociation(const TracePoint& operation, unsigned long txHandle,
                                  const char* dn, VekOamSpiMrMocHandle_4T moc,
                                  VekOamSpiMrBiDirAssociationHandle_4T bidir) {
    const Orv::ModelReader model(*modelRepository);
    VekOamSpiMrAssociationEndHandle_4T near = 0;
    findAssociationEnd(moc, bidir, near);
    const VekOamSpiMrMocHandle_4T nearMoc = model.endMoc(near).value;
    VekOamSpiMrAssociationEndHandle_4T far = farEnd(model, bidir, near);
    const VekOamSpiMrMocHandle_4T farMoc = model.endMoc(far).value;
    const int passes = nearMoc == farMoc ? 2 : 1;
    for (int pass = 0; pass < passes; ++pass) {
        leaveFarSides(operation, txHandle, dn, near, far, farMoc);
        std::swap(near, far);
    }
}

void BiDirUtils::leaveFarSides(const TracePoint& operation, unsigned long txHandle, const char* dn,
                               VekOamSpiMrAssociationEndHandle_4T near,
                               VekOamSpiMrAssociationEndHandle_4T far,
                               VekOamSpiMrMocHandle_4T farMoc) {
    const Orv::ModelReader model(*modelRepository);
    const char* const attribute = textOrEmpty(endName(model, far));
    if (model.endKeepsAtDelete(near).value) {
        return;
    }
    ReadResult result;
    const OrvReturnT code = BackPointerRouter(moRouter).read(txHandle, dn, attribute, result);
    if (code != OrvOk) {
        traceReadFailure(operation, code, attribute, dn);
        return;
    }
    endName(model, near); // not needed: the edit asks for the name itself (see ModelQuestions.h)
    const VekMoAttributeValueContainer_3& references = result.references();
    for (std::uint32_t i = 0; i < references.count; ++i) {
        const char* const target = references.values[i].moRef;
        const auto moc = model.mocOfDn(target);
        if (moc.code == OrvOk && moc.value == farMoc) {
            removeMoFromBackPointer(txHandle, target, dn, near, attribute);
        }
    }
}

// ---------------------------------------------------------------------------------------------
// The two stores

OrvReturnT BiDirUtils::updatePendingBackPointer(unsigned long txHandle, const std::string& key,
                                                const char* attribute) {
    ORV_TRACE_ENTRY(" >> key = %s", key.c_str());
    const TracePoint operation = ORV_TRACE_POINT;
    return underLock(mMutex, [&]() -> OrvReturnT {
        if (pendingBackPointers.empty()) {
            return OrvOk;
        }
        bool exists = false;
        const OrvReturnT code = BackPointerRouter(moRouter).exists(txHandle, key.c_str(), exists);
        if (code == OrvOk && exists) {
            applyWaiting(txHandle, key, attribute);
        } else {
            ORV_TRACE_AT(operation, "%s doesn't exist or couldn't be read", key.c_str());
        }
        return code;
    });
}

// The records to apply are listed first: an edit whose target cannot be seen after all is queued
// again under the same key, and the walk that queued it must not meet it.
void BiDirUtils::applyWaiting(unsigned long txHandle, const std::string& key,
                              const char* attribute) {
    for (const PendingAdditions::Record record : mPending.activeRecords(txHandle, key)) {
        const BackPointerData& addition = record->second;
        addMoToBackPointer(txHandle, key.c_str(), addition.sourceDn.c_str(), addition.end,
                           attribute);
        mPending.drop(record);
    }
}

// A prefix of the text, not of the DN's steps, finds a whole subtree without taking DNs apart. That
// a source with a longer number in the same place is found as well (A=10 with A=1) is accepted: it
// loses what it had queued, and the validation reports what is missing.
bool BiDirUtils::startsWith(const std::string& text, const std::string& prefix) {
    return text.starts_with(prefix);
}

void BiDirUtils::removePendingBackPointerUpdates(unsigned long txHandle, const std::string& dn) {
    underLock(mMutex, [&] { mPending.dropSources(txHandle, dn, &startsWith); });
}

// The target is not compared, so one withdrawal drops all that the attribute has queued.
void BiDirUtils::removePendingBackPointerFromQueue(unsigned long txHandle, const std::string& dn,
                                                   const std::string& attribute) {
    underLock(mMutex, [&] { mPending.dropSources(txHandle, dn, attribute, &startsWith); });
}

void BiDirUtils::removePendingBackpointersForTransaction(unsigned long txHandle) {
    underLock(mMutex, [&] { mPending.dropTransaction(txHandle); });
}

// Nothing takes an entry out, the end of the transaction included, so a validation that comes late
// or a second time finds the same pairs. A handle that the host uses again has its earlier pairs
// checked again: more is checked then than need be, never less.
void BiDirUtils::addUpdatedBp(unsigned long txHandle, const char* dn, const char* attribute) {
    recordWritten(mRecentSource, txHandle, dn, attribute);
}

void BiDirUtils::recordWritten(RecentPair& recent, unsigned long txHandle, const char* dn,
                               const char* attribute) {
    const bool isOfSame = recent.all != nullptr && recent.txHandle == txHandle;
    if (isOfSame && recent.pair->first == dn && recent.pair->second == attribute) {
        return;
    }
    mWritten.first = dn;
    mWritten.second = attribute;
    ModifiedAttributes& all = isOfSame ? *recent.all : modifiedBackPointers[txHandle];
    // Copies the pair only if it is not known. Who has written MOs in order goes on so, mostly.
    const auto place = isOfSame && recent.isInOrder ? all.insert(std::next(recent.pair), mWritten)
                                                    : all.insert(mWritten).first;
    recent = {txHandle, &all, place, isOfSame && std::next(recent.pair) == place};
}

BiDirUtils::ModifiedAttributes BiDirUtils::getModifiedBackPointers(unsigned long txHandle) {
    return underLock(mMutex, [&] {
        const auto entry = modifiedBackPointers.find(txHandle);
        return entry != modifiedBackPointers.end() ? entry->second : ModifiedAttributes();
    });
}

}
