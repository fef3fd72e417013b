// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Missing on purpose: both entry points. An interceptor is linked with libext_cm.so, which has
// them.

#include "TestComponent.h"

TEST_EXPORT int lent() {
    return 1;
}
