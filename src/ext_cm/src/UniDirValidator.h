// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_UNIDIRVALIDATOR_H
#define ORV_EXT_CM_UNIDIRVALIDATOR_H

#include "OrvMoAttributeValue.h"
#include "OrvReturn.h"
#include "UniDirStorage.h"
#include "VekMgmtSpiThreadContext_2.h"
#include "VekOamSpiModelRepository_4.h"

#include <Poco/Mutex.h>

#include <string>

namespace OrvExtCmRouterService {

/// Remembers what a transaction writes to the ends of unidirectional associations, and judges it
/// when the transaction is validated.
///
/// All DNs are internal. Orv::OrvException of what is recorded and judged ends here: it is logged
/// and never reaches a caller. Final, because the class has virtual operations and no virtual
/// destructor.
///
/// Threads: start and stop when no operation runs; everything else from any number of threads. The
/// mutex guards the storage and is held over a whole validation, with the calls to repository and
/// thread context inside; a lock that fails raises Poco::SystemException.
class UniDirValidator final {
public:
    UniDirValidator() = default;
    UniDirValidator(UniDirValidator const&) = delete;
    UniDirValidator& operator=(UniDirValidator const&) = delete;

    /// Looks up the repository and the thread context. What is not found stays null.
    virtual void start();

    /// Forgets both and all transactions.
    virtual void stop();

    /// Records a write of the reference attribute \p attrName of \p dn, if the model says that it
    /// is the end of a unidirectional association. Failures are logged only.
    virtual void setMoRef(unsigned long txHandle, std::string const& dn,
                          std::string const& attrName,
                          VekMoAttributeValueContainer_3 const* values);

    /// Forgets what was recorded for \p dn and its subtree. Failures are logged only.
    virtual void deleteMo(unsigned long txHandle, std::string const& dn);

    /// Forgets the transaction.
    virtual void finish(unsigned long txHandle);

    /// Judges the transaction: OrvOk or OrvValidationFailed with the verdict in \p result, or
    /// another code with \p result unwritten (OrvNotActive when stopped).
    virtual OrvReturnT validate(unsigned long txHandle, bool* result);

    /// True if \p attrName is the end of a unidirectional association of \p moc. \p assocHandle
    /// becomes the first association of the class, not the one that matched, so that a walk from it
    /// meets every end of that name. Throws Orv::OrvException if the model fails.
    bool isUniDir(VekOamSpiMrMocHandle_4T moc, std::string const& attrName,
                  VekOamSpiMrUniDirAssociationHandle_4T* assocHandle);

private:
    Poco::Mutex mutex;
    UniDirStorage storage;
    VekOamSpiModelRepository_4 const* repository = nullptr;
    VekMgmtSpiThreadContext_2* threadContext = nullptr;
};

}

#endif
