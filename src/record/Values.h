// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_VALUES_H
#define ORV_RECORD_VALUES_H

#include "Bytes.h"
#include "OrvMoAttributeValue.h"

#include <cstddef>
#include <memory_resource>

/// \file
/// The values of tables as bytes, and back. The containers of version "1" have the layout of those
/// of version "3", and go through the same functions.
///
/// A value is written as far as it can be read: a container with a count and no values as that, a
/// slot of an unknown type as its eight bytes. What has no end, or is nested deeper than any
/// model, is cut off: see kMostPieces and kDeepest.

namespace OrvRecord {

/// Slots, members and entries of one list that are written. The component itself refuses more in a
/// struct.
constexpr std::size_t kMostPieces = 4'000'001;
/// Structs in structs that are written.
constexpr int kDeepest = 100;

/// Memory for values that are read; all of it ends with the object.
using Arena = std::pmr::monotonic_buffer_resource;

/// \p text as a text that ends with a zero, in \p arena.
char* copyText(std::string_view text, Arena& arena);

void writeContainer(ByteWriter& out, const OrvMoAttributeValueContainer_3* container);
OrvMoAttributeValueContainer_3* readContainer(ByteReader& in, Arena& arena);

/// \p list is ended by a null pointer, and may be null.
void writeContainers(ByteWriter& out, const OrvMoAttributeValueContainer_3* const* list);
OrvMoAttributeValueContainer_3** readContainers(ByteReader& in, Arena& arena);

void writeNamed(ByteWriter& out, const OrvMoNamedAttributeValueContainer_3* const* list);
OrvMoNamedAttributeValueContainer_3** readNamed(ByteReader& in, Arena& arena);

void writeTexts(ByteWriter& out, const char* const* list);
const char** readTexts(ByteReader& in, Arena& arena);

}

#endif
