// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "HostReturn.h"

#include "OrvReturnText.h"

namespace OrvHost {

std::string returnText(OrvReturnT code) {
    switch (code) {
    case OrvHostWriteConflict:
        return "OrvHostWriteConflict: another transaction changes or has changed the object";
    case OrvHostNotWritable:
        return "OrvHostNotWritable: the attribute cannot be set";
    case OrvHostNotContained:
        return "OrvHostNotContained: objects of this class do not stand there";
    case OrvHostWrongState:
        return "OrvHostWrongState: not possible in this phase of the transaction";
    case OrvHostStoreUnavailable:
        return "OrvHostStoreUnavailable: nothing can be committed now";
    case OrvHostOutcomeUnknown:
        return "OrvHostOutcomeUnknown: it is not known whether the transaction is committed";
    default:
        return Orv::OrvReturn::strerror(code);
    }
}

}
