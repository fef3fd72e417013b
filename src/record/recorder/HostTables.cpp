// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "HostTables.h"

#include "OrvOamSpiTransaction_1.h"
#include "Taps.h"

#include <cstring>

namespace OrvRecord {

std::mutex& tapMutex() {
    static std::mutex theMutex;
    return theMutex;
}

namespace {

bool isSame(const char* one, const char* other) {
    return one != nullptr && std::strcmp(one, other) == 0;
}

bool isTable(const VekMgmtSpiInterface_1& id, const VekMgmtSpiInterface_1& known) {
    return isSame(id.interfaceName, known.interfaceName) &&
           isSame(id.interfaceVersion, known.interfaceVersion);
}

template <int instance>
OrvReturnT joinRecorded(unsigned long txHandle, OrvOamSpiTransactionalResource_2* resource) {
    OrvOamSpiTransactionalResource_2* offered = resource;
    if (resource != nullptr) {
        const auto front = inFrontOf<OrvOamSpiTransactionalResource_2, Side::Component>(resource);
        offered = front.table != nullptr ? front.table : resource;
    }
    const auto callee = [](unsigned long tx, OrvOamSpiTransactionalResource_2* given) {
        return Tapped<OrvOamSpiTransaction_1, Side::Host, instance>::real->join(tx, given);
    };
    constexpr CallName name{Side::Host, Shape::Transaction,
                            static_cast<std::uint8_t>(TransactionSlot::Join), instance};
    return recordedCall<Number, Present>(name, callee, txHandle, offered);
}

template <int instance>
void tapModelParts(VekOamSpiModelRepository_4& model) {
    forEachModelPart([&]<class Part>(const Part* VekOamSpiModelRepository_4::*part) {
        if (model.*part != nullptr) {
            tapTable<Part, Side::Host, instance>(model.*part);
            model.*part = &Tapped<Part, Side::Host, instance>::table;
        }
    });
}

/// The tables without a list of slots of their own: like inFrontOf.
template <class Table, int instance = 0>
Front<Table> inFrontOfHost(Table* real) {
    if constexpr (instance < kMostTables) {
        using Place = Tapped<Table, Side::Host, instance>;
        {
            const std::lock_guard lock(tapMutex());
            if (Place::real == nullptr) {
                Place::real = real;
                Place::table = *real;
                if constexpr (std::is_same_v<Table, VekOamSpiModelRepository_4>) {
                    tapModelParts<instance>(Place::table);
                } else {
                    Place::table.join = &joinRecorded<instance>;
                }
            }
        }
        if (Place::real == real || &Place::table == real) {
            return {&Place::table, instance};
        }
        return inFrontOfHost<Table, instance + 1>(real);
    } else {
        return {};
    }
}

template <class Table>
TableName put(const Front<Table>& front, Shape shape, void*& table) {
    if (front.table == nullptr) {
        recordFile().stop("the host has more tables of one kind than can be told apart");
        return {};
    }
    table = front.table;
    return {shape, front.instance};
}

template <class Table>
TableName tap(void*& table) {
    return put(inFrontOf<Table, Side::Host>(static_cast<Table*>(table)), SlotsOf<Table>::shape,
               table);
}

template <class Table>
VekMgmtSpiInterface_1* tapOffer(VekMgmtSpiInterface_1* offered) {
    const auto front = inFrontOf<Table, Side::Component>(reinterpret_cast<Table*>(offered));
    return front.table != nullptr ? &front.table->identity : offered;
}

}

TableName tapHostTable(const VekMgmtSpiInterface_1& id, void*& table) {
    if (table == nullptr || isSame(id.componentName, OrvOamSpiExtCmRouterService)) {
        return {};
    }
    if (isTable(id, OrvOamSpiManagedObject_1_RouterId)) {
        return tap<OrvOamSpiManagedObject_1>(table);
    }
    if (isTable(id, OrvOamSpiManagedObject_3_RouterId) ||
        isTable(id, VekOamSpiManagedObject_3_RouterId)) {
        return tap<OrvOamSpiManagedObject_3>(table);
    }
    if (isTable(id, VekOamSpiManagedObject_3_1_RouterId)) {
        return tap<VekOamSpiManagedObject_3_1>(table);
    }
    if (isTable(id, VekMgmtSpiThreadContext_2_Id)) {
        return tap<VekMgmtSpiThreadContext_2>(table);
    }
    if (isTable(id, VekOamSpiModelRepository_4_Id)) {
        return put(inFrontOfHost(static_cast<VekOamSpiModelRepository_4*>(table)), Shape::Model,
                   table);
    }
    if (isTable(id, OrvOamSpiTransaction_1_Id)) {
        return put(inFrontOfHost(static_cast<OrvOamSpiTransaction_1*>(table)), Shape::Transaction,
                   table);
    }
    return {};
}

VekMgmtSpiInterface_1* tapOffered(VekMgmtSpiInterface_1* offered, void* library) {
    if (isTable(*offered, OrvOamSpiManagedObject_1_ExtCmId)) {
        return tapOffer<OrvOamSpiManagedObject_1>(offered);
    }
    if (isTable(*offered, OrvOamSpiManagedObject_3_ExtCmId)) {
        return tapOffer<OrvOamSpiManagedObject_3>(offered);
    }
    if (isTable(*offered, VekOamSpiManagedObject_3_1_ExtCmId)) {
        return tapOffer<VekOamSpiManagedObject_3_1>(offered);
    }
    if (isTable(*offered, OrvOamSpiTransactionalResource_2_ExtCmId)) {
        return tapOffer<OrvOamSpiTransactionalResource_2>(offered);
    }
    if (isSame(offered->interfaceName, "ExtCmInterceptorRepositoryI")) {
        return inFrontOfInterceptors(offered, library);
    }
    return offered;
}

}
