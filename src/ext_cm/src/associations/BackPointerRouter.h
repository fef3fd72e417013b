// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_BACKPOINTERROUTER_H
#define ORV_EXT_CM_BACKPOINTERROUTER_H

#include "HostFlag.h"
#include "OrvMoAttributeValue.h"
#include "OrvOamSpiManagedObject_3.h"
#include "OrvReturn.h"
#include "values/ReadResult.h"

namespace OrvExtCmRouterService {

/// The host's router as the edits of back-pointers ask it. Without a router every question and
/// every write fails.
///
/// Threads: any.
class BackPointerRouter {
public:
    /// \p table is not owned and may be null.
    explicit BackPointerRouter(const OrvOamSpiManagedObject_3* table) : mTable(table) {}

    OrvReturnT exists(unsigned long txHandle, const char* dn, bool& found) const {
        bool answer = false;
        const OrvReturnT code =
            mTable != nullptr ? mTable->existsMo(txHandle, dn, &answer) : OrvFailure;
        found = Orv::isSet(answer);
        return code;
    }

    /// False also if the router cannot tell.
    bool certainlyExists(unsigned long txHandle, const char* dn) const {
        bool found = false;
        return exists(txHandle, dn, found) == OrvOk && found;
    }

    OrvReturnT read(unsigned long txHandle, const char* dn, const char* attribute,
                    ReadResult& result) const {
        return mTable != nullptr ? mTable->getMoAttribute(txHandle, dn, attribute, result.record())
                                 : OrvFailure;
    }

    /// A read for an edit: a value that is not one of references cannot be edited, and must not be
    /// overwritten, so it counts as a read that failed.
    OrvReturnT readReferences(unsigned long txHandle, const char* dn, const char* attribute,
                              ReadResult& result) const {
        const OrvReturnT code = read(txHandle, dn, attribute, result);
        return code == OrvOk && !areReferences(result.value()) ? OrvFailure : code;
    }

    OrvReturnT write(unsigned long txHandle, const char* dn, const char* attribute,
                     const VekMoAttributeValueContainer_3& value) const {
        return mTable != nullptr ? mTable->setMoAttribute(txHandle, dn, attribute, &value)
                                 : OrvFailure;
    }

private:
    const OrvOamSpiManagedObject_3* mTable;
};

}

#endif
