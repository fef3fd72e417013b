// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AssociationRecord.h"

namespace OrvExtCmRouterService {

void recordReferences(BiDirUtils& biDirUtils, UniDirValidator& uniDirValidator,
                      const WrittenMo& written, const char* attrName,
                      const OrvMoAttributeValueContainer_3& value) {
    if (value.type != OrvMoAttributeTypeMoRef_3) {
        return;
    }
    biDirUtils.updateBackPointersForModify(written.txHandle, written.backPointerDn.c_str(),
                                           attrName, &value, written.isNew);
    uniDirValidator.setMoRef(written.txHandle, written.treeDn, attrName, &value);
}

}
