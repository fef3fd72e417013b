// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_BIDIRVALIDATOR_H
#define ORV_EXT_CM_BIDIRVALIDATOR_H

#include "BiDirUtils.h"
#include "OrvMoAttributeValue.h"
#include "OrvOamSpiManagedObject_3.h"
#include "VekMgmtSpiThreadContext_2.h"
#include "VekOamSpiModelRepository_4.h"
#include "messages/Tracing.h"

#include <list>
#include <string>
#include <vector>

namespace OrvExtCmRouterService {

/// Judges the reference attributes that a transaction wrote on either side of a bidirectional
/// association: the number of values, the number for each association, and the class of each
/// value. The first violation ends the judgement and reaches the client as a message.
///
/// All DNs are internal, in the messages too. Bounds are signed numbers and none is special: a
/// model that wants an open upper bound delivers a large one, and -1 fails every count. Nothing is
/// kept between calls: a second validation of a transaction finds the same again.
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

    /// Forgets all three.
    virtual void stop();

    virtual ~BiDirValidator() = default;

    /// Judges the transaction. \p valid is always written; it is false after a violation and when
    /// no verdict could be reached. Returns OrvOk, OrvValidationFailed, the code of what failed, or
    /// OrvNotActive if there is something to judge but no router or no repository.
    OrvReturnT validateBiDirs(unsigned long txHandle, bool* valid);

    /// Hands a result back to its producer, if there is something to hand back.
    void release(VekMoAttributeValueResult_3 result) const;

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
    /// over the attributes left it, and the checks go on with that.
    virtual void getAttributeFromMoc(VekOamSpiMrMocHandle_4T moc, const char* name,
                                     VekOamSpiMrAttributeHandle_4T& attribute);

    /// Gives the client a message, also an empty one. A message that the host does not take is
    /// logged.
    virtual void addThreadContextMessage(const std::string& message);

    OrvOamSpiManagedObject_3* moRouter = nullptr;
    VekOamSpiModelRepository_4* modelRepository = nullptr;
    VekMgmtSpiThreadContext_2* threadContext = nullptr;
    BiDirUtils& biDirUtils;

private:
    /// What came out for one written attribute.
    enum class Outcome {
        Next,    ///< the next one can be judged
        Refused, ///< the transaction is invalid
        Done     ///< judging ends without a violation
    };

    /// The classes that a value may be of.
    class PermittedTypes {
    public:
        /// \p declared: what the attribute's type names; \p any: that is any class, and the
        /// associations decide, if there are some.
        PermittedTypes(VekOamSpiMrMocHandle_4T declared, bool any,
                       const std::list<VekOamSpiMrMocHandle_4T>& associated);

        bool permits(VekOamSpiMrMocHandle_4T moc) const;

    private:
        VekOamSpiMrMocHandle_4T mDeclared;
        bool mAny;
        std::vector<VekOamSpiMrMocHandle_4T> mAssociated; ///< sorted; only if they decide
    };

    bool canJudge(const TracePoint& operation, unsigned long txHandle) const;
    Outcome judge(const TracePoint& operation, const char* dn, const char* attribute,
                  VekMoAttributeValueResult_3& result, OrvReturnT& code);
    OrvReturnT judgeAssociations(const char* dn, VekOamSpiMrMocHandle_4T moc, const char* attribute,
                                 const VekMoAttributeValueContainer_3& value,
                                 const std::list<VekOamSpiMrBiDirAssociationHandle_4T>& bidirs,
                                 std::list<VekOamSpiMrMocHandle_4T>& permitted);
    OrvReturnT countValues(const VekMoAttributeValueContainer_3& value,
                           VekOamSpiMrMocHandle_4T target, int& count);
    OrvReturnT checkValueTypes(const VekMoAttributeValueContainer_3& value,
                               const PermittedTypes& types, const char*& lastName);
};

}

#endif
