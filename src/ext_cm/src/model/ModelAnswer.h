// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_MODELANSWER_H
#define ORV_EXT_CM_MODELANSWER_H

#include "OrvException.h"
#include "OrvReturn.h"

#include <string>

/// \file
/// Reading the model repository where every answer counts, as it does for unidirectional
/// associations.

namespace OrvExtCmRouterService {

/// Turns the repository's \p code into an Orv::OrvException with that code and \p text, unless it
/// is OrvOk.
inline void throwUnlessOk(OrvReturnT code, const char* text) {
    if (code != OrvOk) {
        throw Orv::OrvException(code, "%s", text);
    }
}

/// True if \p text, which the repository gave, is \p name. A null text is no name.
inline bool isNamed(const char* text, std::string const& name) {
    return text != nullptr && name == text;
}

}

#endif
