// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OwnedTree.h"

#include <libyang/libyang.h>

namespace OrvHost {

void TreeDeleter::operator()(lyd_node* first) const {
    lyd_free_all(first);
}

}
