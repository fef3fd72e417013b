// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_JSONEND_H
#define ORV_HOST_YANG_INSTANCES_JSONEND_H

#include <string_view>

namespace OrvHost {

/// What a JSON text lacks after its last value that is whole: "the text ends too early", or the
/// marks of which one was expected there. The text is well-formed UTF-8 and is not JSON; for one
/// that is, and for what JsonCursor cannot judge, the text that is said is "JSON was expected".
std::string_view missingInJson(std::string_view text);

}

#endif
