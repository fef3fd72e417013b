// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TreePicture.h"

namespace OrvHost {

void TreePicture::visit(const Visitor& visitor) const {
    for (const auto* part : {&objects, &outside}) {
        for (const PicturedObject& object : *part) {
            throwIfCancelled();
            visitor({object.dn, object.references});
        }
    }
}

}
