// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_REPLAY_FAKEHOST_H
#define ORV_RECORD_REPLAY_FAKEHOST_H

#include "Player.h"

namespace OrvRecord {

/// The host that a component meets when a recording is played: each call goes to the player of the
/// process, which answers it from the recording.
class FakeHost {
public:
    /// From now on \p player answers; null: nobody.
    static void serve(Player* player);

    static OrvMgmtSpiInterfacePortalAccessor* accessor();
    /// The lookup of the helper library.
    static OrvReturnT lookUp(VekMgmtSpiInterface_1 id, void** result);

    /// Answers one call of the component. After a difference: OrvFailure.
    template <class... Codecs, class... Arguments>
    static OrvReturnT answer(const CallName& name, Arguments... arguments);

private:
    struct Answer {
        const Event* end = nullptr; ///< null: there is none any more
        std::uint64_t call = 0;
    };

    template <class Write>
    static Answer takeCall(const CallName& name, const Write& write);
    template <ReleaseSlot slot, class Given>
    static void release(Given* given);
    template <class Given>
    static void keep(std::uint64_t call, std::unique_ptr<Arena>& memory, Given* given,
                     void (*&release)(Given*));

    static OrvReturnT lookUpAs(const CallName& name, VekMgmtSpiInterface_1 id, void** result);
    template <std::uint32_t version>
    static OrvReturnT getInterface(VekMgmtSpiInterface_1 id, void** result);
    template <std::uint32_t version>
    static OrvReturnT registerComponent(OrvMgmtSpiComponent_1* component);
    template <std::uint32_t version>
    static OrvReturnT unregisterComponent(OrvMgmtSpiComponent_1* component);
    static void* getPortal(const char* version);
    template <std::uint32_t instance>
    static OrvReturnT join(unsigned long txHandle, OrvOamSpiTransactionalResource_2* resource);

    static void* tableOf(Shape shape, std::uint32_t instance);
    template <std::uint32_t instance>
    static void* tableOfShape(Shape shape);

    static Player* _player;
};

}

#include "FakeAnswer.h"

#endif
