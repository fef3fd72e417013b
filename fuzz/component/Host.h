// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_COMPONENT_HOST_H
#define ORV_FUZZ_COMPONENT_HOST_H

#include "AutoMemory.h"
#include "Gifts.h"
#include "Journal.h"
#include "Mischief.h"
#include "NetworkModel.h"
#include "OrvMgmtSpiComponent_1.h"
#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvOamSpiManagedObject_1.h"
#include "OrvOamSpiManagedObject_3.h"
#include "OrvOamSpiTransaction_1.h"
#include "VekMgmtSpiThreadContext_2.h"
#include "VekOamSpiManagedObject_3_1.h"
#include "World.h"

#include <array>
#include <exception>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace Fuzz {

/// What a host may throw that is no std::exception.
struct OtherException {};

/// What the host has answered to the last call of a function in the present operation.
struct Answer {
    bool isThere = false;
    bool isException = false;
    OrvReturnT code = OrvOk;
};

/// The host of one run: it answers honestly from its model and its world, as far as the mischief
/// lets it, and writes down all calls. Its tables reach it as the current one.
///
/// Threads: one at a time.
class Host {
public:
    /// Reads model, world and mischief from \p source, which stands in \p data. The transactions of
    /// the run are \p firstHandle and those that follow.
    Host(const std::uint8_t* data, std::size_t size, ByteSource& source, unsigned long firstHandle);
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    ~Host();

    static Host& current() { return *sCurrent; }

    /// Carries a call out: \p honest, or what the mischief has for it. The call stands in the
    /// journal already; its end is added. \p lie gets the bytes for the details.
    template <class Honest, class Lie>
    OrvReturnT play(Slot slot, const Honest& honest, const Lie& lie);
    template <class Honest>
    OrvReturnT play(Slot slot, const Honest& honest) {
        return play(slot, honest, [&](ByteSource&) { return honest(); });
    }

    /// To be called before and after each operation of a client.
    void begin(const char* name);
    void end();

    const Answer& answer(Slot slot) const { return mAnswers[static_cast<std::size_t>(slot)]; }
    bool isHonest() const { return mPauses > 0; }

    /// One step on a list of the model. False if the host has had enough of the walk.
    bool stepsOn(bool isLong);

    /// What came of a transaction, as its client says.
    void forgetTransaction(unsigned long txHandle);
    void forgetJoins() { joins.clear(); }

    /// While one of these lives nothing departs from honesty.
    class Pause {
    public:
        explicit Pause(Host& host) : mHost(host) { ++mHost.mPauses; }
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;
        ~Pause() { --mHost.mPauses; }

    private:
        Host& mHost;
    };

    struct Iteration {
        std::vector<std::string> names;
        std::size_t at = 0;
        std::unique_ptr<std::string> shown; ///< a new one for each step
    };

    NetworkModel model;
    World world;
    Mischief mischief;
    Gifts gifts;
    Journal journal;
    std::vector<Iteration> iterations;
    std::map<unsigned long, int> joins; ///< since the last finish
    std::map<unsigned long, Orv::AutoMemory> givenInVersion1;
    std::set<std::string> missed; ///< asked for, and not there
    const char* operation = "";
    unsigned long firstHandle;
    unsigned int inventedChildren = 0;
    std::size_t referenceQuestions = 0; ///< that only the check of unidirectional references asks
    bool hasThrown = false;             ///< in the present operation
    bool hasThrownOther = false;        ///< the same, something that is no std::exception
    bool isPatient = false; ///< lets a list of the model go on until the component has had enough

private:
    OrvReturnT answered(Slot slot, OrvReturnT code);
    [[noreturn]] void thrown(Slot slot, ByteSource details, bool isOther);

    static inline Host* sCurrent = nullptr;
    std::array<Answer, static_cast<std::size_t>(Slot::Count)> mAnswers;
    unsigned int mListSteps = 0;
    unsigned int mLongListSteps = 0;
    int mPauses = 0;
};

template <class Honest, class Lie>
OrvReturnT Host::play(Slot slot, const Honest& honest, const Lie& lie) {
    const Departure* const departure = isHonest() ? nullptr : mischief.next(slot);
    if (departure == nullptr) {
        return answered(slot, honest());
    }
    static constexpr OrvReturnT kCodes[] = {-1, -2, -3, -5, 2, -8, -9, -42, 77, INT32_MIN};
    ByteSource details(departure->detail, departure->detailSize);
    const std::size_t given = gifts.given();
    switch (departure->kind) {
    case Kind::FailsAfter:
        honest();
        gifts.forgiveAfter(given);
        [[fallthrough]];
    case Kind::Fails:
        return answered(slot, kCodes[details.below(std::size(kCodes))]);
    case Kind::ThrowsAfter:
        honest();
        gifts.forgiveAfter(given);
        [[fallthrough]];
    case Kind::Throws:
        thrown(slot, details, false);
    case Kind::ThrowsOther:
        thrown(slot, details, slot != Slot::Log && details.below(4) == 0);
    case Kind::AnswersEmpty:
        return answered(slot, OrvOk);
    default:
        return answered(slot, lie(details));
    }
}

// The host's tables.
OrvMgmtSpiInterfacePortalAccessor* portalAccessor();
OrvReturnT portalLookup(VekMgmtSpiInterface_1 id, void** result);
OrvOamSpiManagedObject_1* router1();
OrvOamSpiManagedObject_3* router3();
OrvOamSpiManagedObject_3* vekRouter3();
VekOamSpiManagedObject_3_1* router3_1();
VekOamSpiModelRepository_4* modelRepository();

/// The component's record, once it has announced itself.
OrvMgmtSpiComponent_1*& announcedComponent();

}

#endif
