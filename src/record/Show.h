// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_SHOW_H
#define ORV_RECORD_SHOW_H

#include "Bytes.h"

#include <string>

/// \file
/// Recorded values as text for people. Each function reads one value and appends it. Bytes that
/// are no printable ASCII are shown as \xHH. They throw DamagedBytes.

namespace OrvRecord {

void showText(ByteReader& in, std::string& text);
void showTexts(ByteReader& in, std::string& text);
void showContainer(ByteReader& in, std::string& text);
void showContainers(ByteReader& in, std::string& text);
void showNamed(ByteReader& in, std::string& text);

/// \p text in quotes.
std::string quoted(std::string_view text);

}

#endif
