// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_ASSOCIATIONRECORD_H
#define ORV_EXT_CM_ASSOCIATIONRECORD_H

#include "OrvMoAttributeValue.h"

#include <string>

namespace OrvExtCmRouterService {

/// The MO that an attribute is written on. All DNs are internal. The two differ only for an MO that
/// is created with a naming attribute of its own.
struct WrittenMo {
    unsigned long txHandle;
    const std::string& backPointerDn; ///< what back-pointers will refer to
    const std::string& treeDn;        ///< where unidirectional references are recorded
    bool isNew;
};

/// Keeps associations in step with a written attribute, if it is a reference: back-pointers first
/// (BiDirUtils), then the record of references (UniDirValidator). \p value holds internal DNs. No
/// code comes back: what goes wrong shows when the transaction is validated.
template <class BackPointers, class References>
void recordReferences(BackPointers& backPointers, References& references, const WrittenMo& written,
                      const char* attrName, const OrvMoAttributeValueContainer_3& value) {
    if (value.type != OrvMoAttributeTypeMoRef_3) {
        return;
    }
    backPointers.updateBackPointersForModify(written.txHandle, written.backPointerDn.c_str(),
                                             attrName, &value, written.isNew);
    references.setMoRef(written.txHandle, written.treeDn, attrName, &value);
}

}

#endif
