// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Missing on purpose: orvLCMinit.

#include "TestComponent.h"

TEST_EXPORT void orvLCMterminate() {}
