// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MoRecord.h"

#include "base/HostError.h"

#include <climits>
#include <cstring>

namespace OrvHost {

MoRecord::MoRecord(std::string_view name, std::string_view attributes) {
    if (name.size() > UINT_MAX || attributes.size() > UINT_MAX) {
        throw HostError(OrvInvalidArgument, "the attributes of an object are larger than 4 GiB");
    }
    const Head head{static_cast<unsigned>(name.size()), static_cast<unsigned>(attributes.size())};
    mBlock.reset(new char[sizeof(Head) + name.size() + attributes.size()]);
    std::memcpy(mBlock.get(), &head, sizeof(Head));
    name.copy(mBlock.get() + sizeof(Head), name.size());
    attributes.copy(mBlock.get() + sizeof(Head) + name.size(), attributes.size());
}

}
