// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_JSONTEXT_H
#define ORV_HOST_BASE_JSONTEXT_H

#include <string>

namespace OrvHost {

/// The text as JSON, in quotes. If it is not UTF-8, replacement characters stand for the wrong
/// bytes.
std::string jsonText(const std::string& text);

}

#endif
