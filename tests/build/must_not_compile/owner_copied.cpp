// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Two owners of one block would free it twice.
// expect: deleted

#include "AutoMemory.h"

void take(Orv::AutoMemory& memory) {
#ifdef MISTAKE
    Orv::AutoMemory copy(memory);
    copy.strdup("text");
#else
    memory.strdup("text");
#endif
}
