// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_RECORDER_TELL_H
#define ORV_RECORD_RECORDER_TELL_H

#include <string>

namespace OrvRecord {

/// Writes \p text to the log with level 3, in both forms, as components do. Does not throw.
void tell(const std::string& text) noexcept;

}

#endif
