// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_RAWTEXT_H
#define ORV_TESTS_COMPONENT_SUPPORT_RAWTEXT_H

#include "OrvMoAttributeValue.h"

#include <string>

namespace Scripted {

/// \file
/// Arguments as a person reads them, also those with which a case lies: no pointer is followed that
/// leads nowhere, and of what is long or never ends the beginning is shown. What cannot be read is
/// shown as "?".

std::string rawText(unsigned long number);
std::string rawText(unsigned long long number);
std::string rawText(void* handle);
std::string rawText(const char* text);
std::string rawText(const char** texts); ///< ended by a null pointer
std::string rawText(const OrvMoAttributeValueContainer_3* value);
std::string rawText(const OrvMoAttributeValueContainer* value);
std::string rawText(OrvMoAttributeValueContainer** values); ///< ended by a null pointer
std::string rawText(OrvMoNamedAttributeValueContainer_3** attributes);

}

#endif
