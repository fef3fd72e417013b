// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_BIDIRUTILS_H
#define ORV_EXT_CM_BIDIRUTILS_H

#include "MoAccessor.h"
#include "OrvMoAttributeValue.h"
#include "OrvOamSpiManagedObject_3.h"
#include "VekOamSpiModelRepository_4.h"
#include "associations/PendingAdditions.h"
#include "messages/Tracing.h"

#include <Poco/Mutex.h>

#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace OrvExtCmRouterService {

/// Keeps bidirectional associations consistent: when a reference attribute on one side is written
/// or its MO deleted, the attribute on the far side, the back-pointer, follows in the same
/// transaction.
///
/// All DNs, those of MOs and those in values, are internal. Back-pointers are read and written at
/// the router itself, so they meet no interceptor, no translation and no further bookkeeping. A
/// back-pointer that cannot be read or written never fails the client's operation: it shows in the
/// traces, or when the transaction is validated.
///
/// Threads: start and stop when no operation runs; everything else from any number of threads, a
/// transaction on one thread at a time. mMutex guards the two stores and is held across calls to
/// the router while an edit is under way; a lock that fails raises Poco::SystemException.
class BiDirUtils {
public:
    /// A written attribute: the MO's DN and the attribute's name.
    using ModifiedAttribute = std::pair<std::string, std::string>;
    using ModifiedAttributes = std::set<ModifiedAttribute>;

    /// An addition that waits for its target to be created.
    using BackPointerData = OrvExtCmRouterService::BackPointerData;

    BiDirUtils() = default;
    BiDirUtils(const BiDirUtils&) = delete;
    BiDirUtils& operator=(const BiDirUtils&) = delete;

    /// Looks up the router and the model repository. What is not found stays null.
    virtual void start();

    /// Forgets router and repository. The stores stay: they end per transaction.
    virtual void stop();

    /// False while there is no model repository, so that nothing can be asked of the model.
    bool hasModel() const { return modelRepository != nullptr; }

    /// True if an addition waits, of any transaction. Takes no lock.
    bool hasWaiting() const { return !mPending.isEmpty(); }

    /// Makes the far sides follow a write of the reference attribute \p attributeName of \p dn.
    /// To be called before the router has the new value, or, with \p isNewMo, after it has created
    /// the MO. \p newValue holds references and is not null.
    /// Returns OrvFailure without a repository, the code of a failed class lookup of \p dn or of a
    /// failed read of the old value, and otherwise the code of the last class lookup of a value,
    /// so that the failure of an earlier value does not show.
    virtual OrvReturnT updateBackPointersForModify(unsigned long txHandle, const char* dn,
                                                   const char* attributeName,
                                                   const VekMoAttributeValueContainer_3* newValue,
                                                   bool isNewMo);

    /// Takes \p dn and its whole subtree, children first, out of the back-pointers that name them.
    /// To be called before the router deletes. Returns OrvFailure without a repository, or the
    /// code of the class lookup of \p dn.
    virtual OrvReturnT updateBackPointersForDelete(unsigned long txHandle, const char* dn);

    /// A copy of what the transaction wrote on either side of an association; empty for an unknown
    /// transaction. The record itself stays.
    virtual ModifiedAttributes getModifiedBackPointers(unsigned long txHandle);

    /// Applies what this transaction has queued for the new MO \p key. Returns the code of the
    /// router's existsMo, or OrvOk if nothing at all is queued.
    virtual OrvReturnT updatePendingBackPointer(unsigned long txHandle, const std::string& key,
                                                const char* attribute);

    /// Drops what the transaction has queued for sources whose DN begins with the text \p dn.
    virtual void removePendingBackPointerUpdates(unsigned long txHandle, const std::string& dn);

    /// The same, only for sources that were queued through \p attribute, whatever the target.
    virtual void removePendingBackPointerFromQueue(unsigned long txHandle, const std::string& dn,
                                                   const std::string& attribute);

    /// Drops all that the transaction has queued.
    virtual void removePendingBackpointersForTransaction(unsigned long txHandle);

    /// Appends the bidirectional associations of \p moc in the model's order. Always OrvOk.
    /// This and the following need a model.
    virtual OrvReturnT getBidirsForMoc(VekOamSpiMrMocHandle_4T moc,
                                       std::list<VekOamSpiMrBiDirAssociationHandle_4T>& bidirs);

    /// The end of \p association that lies at \p moc: the first if its class is \p moc, or else
    /// the second, untested. Always OrvOk.
    virtual OrvReturnT findAssociationEnd(VekOamSpiMrMocHandle_4T moc,
                                          VekOamSpiMrBiDirAssociationHandle_4T association,
                                          VekOamSpiMrAssociationEndHandle_4T& end);

    /// The end of \p association that lies at \p moc when \p attributeName, an attribute of that
    /// class, points away from it. Always OrvOk.
    virtual OrvReturnT findAssociationEnd(VekOamSpiMrMocHandle_4T moc, const char* attributeName,
                                          VekOamSpiMrBiDirAssociationHandle_4T association,
                                          VekOamSpiMrAssociationEndHandle_4T& end);

    virtual ~BiDirUtils() = default;

protected:
    // The inner steps, and the stores that they work on. A step that another one needs is reached
    // by a virtual call.

    /// What is only in \p newValue goes to \p toAdd, what is only in \p oldValue to \p toRemove,
    /// each in the order of its list and as often as it stands there.
    virtual void getMoRefDiff(const VekMoAttributeValueContainer_3* newValue,
                              const VekMoAttributeValueContainer_3* oldValue,
                              std::vector<std::string>& toAdd, std::vector<std::string>& toRemove);

    /// Takes the first \p dnToRemove out of the back-pointer of \p targetDn. If there is no such
    /// MO, withdraws what the source has queued through \p sourceAttribute. \p end is the end at
    /// the source's class: its name is the name of the back-pointer.
    virtual void removeMoFromBackPointer(unsigned long txHandle, const char* targetDn,
                                         const char* dnToRemove,
                                         VekOamSpiMrAssociationEndHandle_4T end,
                                         const char* sourceAttribute);

    /// Appends \p dnToAdd to the back-pointer of \p targetDn, or queues that if there is no such
    /// MO yet. \p end: see removeMoFromBackPointer.
    virtual void addMoToBackPointer(unsigned long txHandle, const char* targetDn,
                                    const char* dnToAdd, VekOamSpiMrAssociationEndHandle_4T end,
                                    const char* sourceAttribute);

    /// Writes \p values as the reference attribute \p attributeName of \p dn and, if the router
    /// took it, records the attribute for validation. Returns the router's code.
    virtual OrvReturnT setMoAttr(unsigned long txHandle, std::vector<std::string> values,
                                 const char* dn, const char* attributeName);

    /// Takes one MO, without its subtree, out of the back-pointers that name it. Returns the code
    /// of its class lookup.
    virtual OrvReturnT updateBackpointers(unsigned long txHandle, const char* dn);

    /// True if \p text begins with \p prefix, byte for byte.
    static bool startsWith(const std::string& text, const std::string& prefix);

    /// Records a written attribute for validation. Takes no lock: the caller holds mMutex.
    void addUpdatedBp(unsigned long txHandle, const char* dn, const char* attribute);

    OrvOamSpiManagedObject_3* moRouter = nullptr;
    VekOamSpiModelRepository_4* modelRepository = nullptr;

    /// What waits, by the DN of the target that is not there yet; under one key in order of
    /// insertion. Records come and go through mPending.
    std::multimap<std::string, BackPointerData> pendingBackPointers;

    /// By transaction; see getModifiedBackPointers.
    std::map<unsigned long, ModifiedAttributes> modifiedBackPointers;

    Poco::Mutex mMutex; ///< recursive: edits nest

private:
    /// Where a client's write took place, and the operation that follows it.
    struct Source {
        TracePoint operation;
        unsigned long txHandle;
        const char* dn;
        const char* attribute;
    };

    /// What a walk needs to go down from an MO.
    struct Below {
        std::string dn;                  ///< of the MO
        std::list<std::string> children; ///< of the class asked last, not yet visited
    };

    /// An MO of a subtree that is deleted, while what lies below it is taken care of.
    struct MoToLeave {
        explicit MoToLeave(unsigned long txHandle);

        Orv::MoAccessor accessor;
        std::list<std::string> childClasses; ///< whose children have not been asked for
        std::optional<Below> below;          ///< only if there are child classes
    };

    using Edit = void (BiDirUtils::*)(unsigned long, const char*, const char*,
                                      VekOamSpiMrAssociationEndHandle_4T, const char*);

    // Steps write messages in the name of the operation that they belong to.

    OrvReturnT lookUpMoc(const TracePoint& operation, const char* dn,
                         VekOamSpiMrMocHandle_4T& moc) const;
    const char* backPointerOf(VekOamSpiMrAssociationEndHandle_4T end) const;
    OrvReturnT editFarSides(const Source& source, VekOamSpiMrMocHandle_4T moc,
                            VekOamSpiMrBiDirAssociationHandle_4T bidir,
                            const std::vector<std::string>& toAdd,
                            const std::vector<std::string>& toRemove, OrvReturnT code);
    OrvReturnT editTargets(Edit edit, const std::vector<std::string>& targets, const Source& source,
                           VekOamSpiMrAssociationEndHandle_4T near, VekOamSpiMrMocHandle_4T farMoc,
                           OrvReturnT code);
    OrvReturnT leaveOrEnter(const TracePoint& operation, unsigned long txHandle, const char* dn,
                            MoToLeave& mo);
    void leaveSubtree(const TracePoint& operation, unsigned long txHandle, MoToLeave& top);
    void findContainedClasses(const TracePoint& operation, VekOamSpiMrMocHandle_4T moc,
                              std::list<std::string>& names) const;
    void leaveAssociation(const TracePoint& operation, unsigned long txHandle, const char* dn,
                          VekOamSpiMrMocHandle_4T moc, VekOamSpiMrBiDirAssociationHandle_4T bidir);
    void leaveFarSides(const TracePoint& operation, unsigned long txHandle, const char* dn,
                       VekOamSpiMrAssociationEndHandle_4T near,
                       VekOamSpiMrAssociationEndHandle_4T far, VekOamSpiMrMocHandle_4T farMoc);
    void extendBackPointer(const TracePoint& operation, unsigned long txHandle,
                           const char* targetDn, const char* dnToAdd, const char* backPointer);
    OrvReturnT writeBackPointer(const TracePoint& operation, unsigned long txHandle,
                                const std::vector<std::string>& values, const char* dn,
                                const char* attributeName);
    void applyWaiting(unsigned long txHandle, const std::string& key, const char* attribute);

    /// A pair that was recorded lately, if there is one, and where it stands. It stays there:
    /// nothing takes a pair out.
    struct RecentPair {
        unsigned long txHandle = 0;
        ModifiedAttributes* all = nullptr; ///< of the transaction; null: there is none
        ModifiedAttributes::const_iterator pair{};
        bool isInOrder = false; ///< it stands directly after the one that was recorded before it
    };

    /// addUpdatedBp, which \p recent may spare the search: a client often writes an attribute
    /// again, or several that refer to one MO, or MOs one after the other.
    void recordWritten(RecentPair& recent, unsigned long txHandle, const char* dn,
                       const char* attribute);

    PendingAdditions mPending{pendingBackPointers};
    ModifiedAttribute mWritten; ///< what recordWritten looks for; kept for the memory of its texts
    RecentPair mRecentSource;   ///< written by a client
    RecentPair mRecentTarget;   ///< written as a back-pointer
};

}

#endif
