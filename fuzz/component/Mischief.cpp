// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Mischief.h"

#include <algorithm>

namespace Fuzz {

void Mischief::read(ByteSource& source) {
    constexpr std::size_t kMost = 10;
    for (std::size_t left = source.below(kMost); left > 0; --left) {
        Departure read{};
        read.slot = static_cast<Slot>(source.below(static_cast<std::size_t>(Slot::Count)));
        const std::uint8_t how = source.byte();
        read.kind = static_cast<Kind>(how % 8U);
        read.stays = how / 8U % 2U == 1U;
        read.after = how / 16U % 2U == 0 ? 0 : source.byte() % 16U;
        read.detailSize = how / 32U;
        read.detail = mData + source.position();
        read.detailSize = std::min(read.detailSize * 3, mSize - source.position());
        source.skip(read.detailSize);
        mDepartures.push_back(read);
    }
}

const Departure* Mischief::next(Slot slot) {
    for (Departure& each : mDepartures) {
        if (each.slot != slot || each.isOver) {
            continue;
        }
        if (each.after > 0) {
            --each.after;
            continue;
        }
        each.isOver = !each.stays;
        return &each;
    }
    return nullptr;
}

}
