// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_ORV_COMMON_ORVRETURNTEXT_H
#define ORV_ORV_COMMON_ORVRETURNTEXT_H

#include "OrvReturn.h"

namespace Orv {

/// Texts for return codes. Conventions: OrvConventions.h.
class OrvReturn {
public:
    /// The code's name, for example "OrvNotExist"; for a code without a name, a text with the
    /// number, for example "unknown return code -42". Never null. A name is a constant; the text
    /// with a number is valid until the thread asks for the next one. Any thread.
    static const char* strerror(OrvReturnT code);
};

}

#endif
