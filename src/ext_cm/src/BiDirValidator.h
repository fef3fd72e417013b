// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_BIDIRVALIDATOR_H
#define ORV_EXT_CM_BIDIRVALIDATOR_H

#include "BiDirUtils.h"
#include "OrvMoAttributeValue.h"
#include "OrvOamSpiManagedObject_3.h"
#include "VekMgmtSpiThreadContext_2.h"
#include "VekOamSpiModelRepository_4.h"

#include <list>
#include <string>

namespace OrvExtCmRouterService {

/// Judges the reference attributes that a transaction wrote on either side of a bidirectional
/// association: the number of values, the number for each association, and the class of each
/// value. The first violation ends the judgement and reaches the client as a message.
///
/// All DNs are internal, in the messages too. Nothing is kept between calls: a second validation
/// of a transaction finds the same again.
///
/// Threads: start and stop when no operation runs; validations from any number of threads. Router,
/// repository and thread context are called with no lock held.
class BiDirValidator {
public:
    /// \p utils gives the work list and the questions to the model; it outlives this object.
    explicit BiDirValidator(BiDirUtils& utils);
    BiDirValidator(const BiDirValidator&) = delete;
    BiDirValidator& operator=(const BiDirValidator&) = delete;

    /// Looks up repository, thread context and router. What is not found stays null.
    virtual void start();

    /// Lets go of all three.
    virtual void stop();

    virtual ~BiDirValidator() = default;

    /// Judges the transaction. \p valid is always written; it is false after a violation and when
    /// no verdict could be reached. Returns OrvOk, OrvValidationFailed or the code of what failed.
    OrvReturnT validateBiDirs(unsigned long txHandle, bool* valid);

protected:
    /// Checks the values of \p attribute of \p dn against the attribute's declared class, or, if
    /// any class may be referred to, against \p permitted (empty: no restriction).
    virtual OrvReturnT attributeTypeCheck(const char* dn, const char* attribute,
                                          VekMoAttributeValueResult_3* result,
                                          std::list<VekOamSpiMrMocHandle_4T>& permitted);

    /// Checks \p count against the bounds of \p end, the far end of the association.
    virtual OrvReturnT biDirCardinalityCheck(const char* dn, VekOamSpiMrAssociationEndHandle_4T end,
                                             long long count);

    /// Checks that the attribute is a reference, and \p count against the bounds of its type.
    virtual OrvReturnT attrMultiplicityCheck(const char* dn, VekOamSpiMrMocHandle_4T moc,
                                             const char* attribute, long long count);

    /// Finds the attribute \p name of \p moc. If there is none, \p attribute is left as the walk
    /// over the attributes left it.
    virtual void getAttributeFromMoc(VekOamSpiMrMocHandle_4T moc, const char* name,
                                     VekOamSpiMrAttributeHandle_4T& attribute);

    /// Gives the client a message, also an empty one. A message that the host does not take is
    /// logged.
    virtual void addThreadContextMessage(const std::string& message);

    /// Hands a result back to its producer, if there is something to hand back.
    void release(VekMoAttributeValueResult_3 result) const;

    OrvOamSpiManagedObject_3* moRouter = nullptr;
    VekOamSpiModelRepository_4* modelRepository = nullptr;
    VekMgmtSpiThreadContext_2* threadContext = nullptr;
    BiDirUtils& biDirUtils;
};

}

#endif
