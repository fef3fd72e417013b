// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "GivenResults.h"

#include "CallFrame.h"
#include "Lasting.h"

#include <mutex>
#include <unordered_map>

namespace OrvRecord {

namespace {

/// The results of one kind that one side has given and that are not released.
template <class Given, Side side, ReleaseSlot slot>
class Keeper {
public:
    using Release = void (*)(Given*);

    static void keep(std::uint64_t call, Given* given, Release& release) noexcept {
        if (given == nullptr || release == nullptr) {
            return;
        }
        try {
            Keeper& self = instance();
            const std::lock_guard lock(self.mMutex);
            self.mKept.emplace(given, Kept{release, call});
        } catch (const std::exception&) {
            recordFile().stop("there is no memory");
            return;
        }
        release = &releaseRecorded;
    }

    static bool isEmpty() {
        Keeper& self = instance();
        const std::lock_guard lock(self.mMutex);
        return self.mKept.empty();
    }

private:
    struct Kept {
        Release release;
        std::uint64_t call;
    };

    static Keeper& instance() { return lasting<Keeper>(); }

    Kept take(Given* given) {
        const std::lock_guard lock(mMutex);
        const auto found = mKept.find(given);
        if (found == mKept.end()) {
            return {nullptr, 0}; // released twice
        }
        const Kept kept = found->second;
        mKept.erase(found);
        return kept;
    }

    static void releaseRecorded(Given* given) {
        const Kept kept = instance().take(given);
        if (kept.release == nullptr) {
            return;
        }
        CallFrame frame({side, Shape::Release, static_cast<std::uint8_t>(slot), 0});
        if (!frame.isRecorded()) {
            kept.release(given);
            return;
        }
        frame.begin([&](ByteWriter& out) { out.number(kept.call); });
        frame.watch([&] { kept.release(given); });
        frame.end(0, [](Outcome<ByteWriter>) {});
    }

    std::mutex mMutex; ///< guards mKept
    // A producer may give one constant container many times.
    std::unordered_multimap<Given*, Kept> mKept;
};

template <ReleaseSlot slot, class Given>
void keep(Side side, std::uint64_t call, Given* given, void (*&release)(Given*)) noexcept {
    if (side == Side::Component) {
        Keeper<Given, Side::Component, slot>::keep(call, given, release);
    } else {
        Keeper<Given, Side::Host, slot>::keep(call, given, release);
    }
}

}

void keepForRelease(Side side, std::uint64_t call, OrvMoAttributeValueContainer_3* given,
                    void (*&release)(OrvMoAttributeValueContainer_3*)) noexcept {
    keep<ReleaseSlot::One>(side, call, given, release);
}

void keepForRelease(Side side, std::uint64_t call, OrvMoAttributeValueContainer_3** given,
                    void (*&release)(OrvMoAttributeValueContainer_3**)) noexcept {
    keep<ReleaseSlot::Many>(side, call, given, release);
}

bool isWaitingForRelease() {
    using One = Keeper<OrvMoAttributeValueContainer_3, Side::Host, ReleaseSlot::One>;
    using Many = Keeper<OrvMoAttributeValueContainer_3*, Side::Host, ReleaseSlot::Many>;
    return !One::isEmpty() || !Many::isEmpty();
}

}
