// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "FakeHost.h"

#include "OrvOamSpiTransaction_1.h"

#include <cstring>
#include <utility>

namespace OrvRecord {

Player* FakeHost::_player = nullptr;

namespace {

constexpr std::uint32_t kMostTables = 4;

constexpr CallName portal(PortalSlot slot, std::uint32_t version = 0) {
    return {Side::Host, Shape::Portal, static_cast<std::uint8_t>(slot), version};
}

template <class SlotType, std::uint32_t instance, std::uint8_t number,
          class Fn = typename SlotType::Fn>
struct Fake;

template <auto member, class... Codecs, std::uint32_t instance, std::uint8_t number,
          class... Arguments>
struct Fake<Slot<member, Codecs...>, instance, number, OrvReturnT (*)(Arguments...)> {
    static OrvReturnT call(Arguments... arguments) {
        using Table = typename Slot<member, Codecs...>::Table;
        return FakeHost::answer<Codecs...>({Side::Host, SlotsOf<Table>::shape, number, instance},
                                           arguments...);
    }
};

template <class Table, std::uint32_t instance, class... Slots, std::size_t... numbers>
void fillTable(Table& table, SlotList<Slots...>, std::index_sequence<numbers...>) {
    ((table.*Slots::member = &Fake<Slots, instance, static_cast<std::uint8_t>(numbers)>::call),
     ...);
}

/// The table of a played host.
template <class Table, std::uint32_t instance>
Table* fakeTable() {
    static Table table = [] {
        Table made{};
        fillTable<Table, instance>(made, typename SlotsOf<Table>::List{},
                                   std::make_index_sequence<std::size(SlotsOf<Table>::names)>{});
        return made;
    }();
    return &table;
}

template <std::uint32_t instance>
VekOamSpiModelRepository_4* fakeModel() {
    static VekOamSpiModelRepository_4 model = [] {
        VekOamSpiModelRepository_4 made{};
        made.identity = VekOamSpiModelRepository_4_Id;
        forEachModelPart([&]<class Part>(const Part* VekOamSpiModelRepository_4::*part) {
            made.*part = fakeTable<Part, instance>();
        });
        return made;
    }();
    return &model;
}

}

void FakeHost::serve(Player* player) {
    _player = player;
}

OrvReturnT FakeHost::lookUpAs(const CallName& name, VekMgmtSpiInterface_1 id, void** result) {
    const Answer given = takeCall(name, [&](ByteWriter& out) {
        Identity::in(out, id);
        Present::in(out, result);
    });
    if (given.end == nullptr) {
        return OrvFailure;
    }
    try {
        ByteReader values(given.end->values);
        const std::uint8_t written = values.byte();
        const auto shape = static_cast<Shape>(values.byte());
        const auto instance = static_cast<std::uint32_t>(values.number());
        if (written != 0 && result != nullptr) {
            *result = written == 1 ? nullptr : tableOf(shape, instance);
        }
    } catch (const DamagedBytes& damage) {
        _player->failHere(damage.what());
        return OrvFailure;
    }
    return static_cast<OrvReturnT>(given.end->code);
}

OrvReturnT FakeHost::lookUp(VekMgmtSpiInterface_1 id, void** result) {
    return lookUpAs(portal(PortalSlot::Lookup), id, result);
}

template <std::uint32_t version>
OrvReturnT FakeHost::getInterface(VekMgmtSpiInterface_1 id, void** result) {
    return lookUpAs(portal(PortalSlot::GetInterface, version), id, result);
}

template <std::uint32_t version>
OrvReturnT FakeHost::registerComponent(OrvMgmtSpiComponent_1* component) {
    if (_player != nullptr) {
        _player->mComponent = component;
    }
    return answer<ComponentRecord>(portal(PortalSlot::Register, version), component);
}

template <std::uint32_t version>
OrvReturnT FakeHost::unregisterComponent(OrvMgmtSpiComponent_1* component) {
    return answer<Present>(portal(PortalSlot::Unregister, version), component);
}

void* FakeHost::getPortal(const char* version) {
    static OrvMgmtSpiInterfacePortal_1 portal1{OrvMgmtSpiInterfacePortal_1_Id, &getInterface<1>,
                                               nullptr, &registerComponent<1>,
                                               &unregisterComponent<1>};
    static OrvMgmtSpiInterfacePortal_3 portal3{OrvMgmtSpiInterfacePortal_3_Id, &getInterface<3>,
                                               nullptr, &registerComponent<3>,
                                               &unregisterComponent<3>};
    const Answer given =
        takeCall(portal(PortalSlot::GetPortal), [&](ByteWriter& out) { Text::in(out, version); });
    if (given.end == nullptr || given.end->values.empty() || given.end->values.front() == 0 ||
        version == nullptr) {
        return nullptr;
    }
    return std::strcmp(version, "3") == 0 ? static_cast<void*>(&portal3) : &portal1;
}

OrvMgmtSpiInterfacePortalAccessor* FakeHost::accessor() {
    static OrvMgmtSpiInterfacePortalAccessor theAccessor{&getPortal};
    return &theAccessor;
}

template <std::uint32_t instance>
OrvReturnT FakeHost::join(unsigned long txHandle, OrvOamSpiTransactionalResource_2* resource) {
    if (_player != nullptr) {
        _player->mResource = resource;
    }
    constexpr CallName name{Side::Host, Shape::Transaction,
                            static_cast<std::uint8_t>(TransactionSlot::Join), instance};
    return answer<Number, Present>(name, txHandle, resource);
}

template <std::uint32_t instance>
void* FakeHost::tableOfShape(Shape shape) {
    static OrvOamSpiTransaction_1 transaction{OrvOamSpiTransaction_1_Id, &join<instance>};
    switch (shape) {
    case Shape::Mo1:
        return fakeTable<OrvOamSpiManagedObject_1, instance>();
    case Shape::Mo3:
        return fakeTable<OrvOamSpiManagedObject_3, instance>();
    case Shape::Mo3_1:
        return fakeTable<VekOamSpiManagedObject_3_1, instance>();
    case Shape::ThreadContext:
        return fakeTable<VekMgmtSpiThreadContext_2, instance>();
    case Shape::Model:
        return fakeModel<instance>();
    case Shape::Transaction:
        return &transaction;
    default:
        return nullptr;
    }
}

void* FakeHost::tableOf(Shape shape, std::uint32_t instance) {
    static_assert(kMostTables == 4);
    void* table = nullptr;
    switch (instance) {
    case 0:
        table = tableOfShape<0>(shape);
        break;
    case 1:
        table = tableOfShape<1>(shape);
        break;
    case 2:
        table = tableOfShape<2>(shape);
        break;
    case 3:
        table = tableOfShape<3>(shape);
        break;
    default:
        break;
    }
    if (table == nullptr) {
        _player->fail("the host gave a table that is not recorded");
    }
    return table;
}

}
