// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "HostSlots.h"

#include "AllocationCount.h"
#include "OrvOamSpiTransaction_1.h"
#include "VekMgmtSpiThreadContext_2.h"
#include "VekOamSpiModelRepository_4.h"

#include <functional>
#include <utility>
#include <vector>

namespace OrvBench {

namespace {

/// A slot that calls the function that was there before, in a HostSection.
template <auto Slot>
struct Marked;

template <class Table, class... Arguments, OrvReturnT (*Table::*Slot)(Arguments...)>
struct Marked<Slot> {
    static inline OrvReturnT (*original)(Arguments...) = nullptr;

    static OrvReturnT call(Arguments... arguments) {
        const HostSection section;
        return original(arguments...);
    }
};

class Changes : public SlotChange {
public:
    ~Changes() override {
        for (const std::function<void()>& undo : mUndo) {
            undo();
        }
    }

    template <class Pointer>
    void set(Pointer& place, Pointer value) {
        mUndo.push_back([&place, before = place] { place = before; });
        place = value;
    }

    /// Marks slots of a table. If two tables are marked, a slot must hold the same function in
    /// both, since its original is stored only once.
    template <auto... Slots, class Table>
    void mark(Table& table) {
        ((Marked<Slots>::original = table.*Slots, set(table.*Slots, &Marked<Slots>::call)), ...);
    }

    /// Marks slots of a read-only table, in a copy that replaces it.
    template <auto... Slots, class Table>
    void markCopy(const Table*& place) {
        static Table copy;
        copy = *place;
        ((Marked<Slots>::original = copy.*Slots, copy.*Slots = &Marked<Slots>::call), ...);
        set(place, static_cast<const Table*>(&copy));
    }

private:
    std::vector<std::function<void()>> mUndo;
};

void markRouter1(Changes& changes, OrvOamSpiManagedObject_1& table) {
    using T = OrvOamSpiManagedObject_1;
    changes.mark<&T::setMoAttribute, &T::getMoAttribute, &T::newMoIterator, &T::nextMo,
                 &T::createMo, &T::deleteMo, &T::action>(table);
}

void markRouter3(Changes& changes, OrvOamSpiManagedObject_3& table) {
    using T = OrvOamSpiManagedObject_3;
    changes.mark<&T::setMoAttribute, &T::getMoAttribute, &T::getMoAttributes, &T::newMoIterator,
                 &T::nextMo, &T::createMo, &T::deleteMo, &T::action, &T::finalizeMoIterator,
                 &T::existsMo, &T::countMoChildren>(table);
}

void markModel(Changes& changes, VekOamSpiModelRepository_4& model) {
    using End = VekOamSpiMrAssociationEnd_4;
    using BiDir = VekOamSpiMrBiDirAssociation_4;
    using UniDir = VekOamSpiMrUniDirAssociation_4;
    using Attribute = VekOamSpiMrAttribute_4;
    using Type = VekOamSpiMrAttributeType_4;
    using Moc = VekOamSpiMrMocQueries_4;
    changes.markCopy<&VekOamSpiMrDnLookup_4::getMocFromDn>(model.dnLookup);
    changes.markCopy<&VekOamSpiMrGeneralProperties_4::getGeneralStringProperty>(
        model.generalProperties);
    changes
        .markCopy<&Moc::getMocGeneralProperties, &Moc::getFirstAttribute, &Moc::getFirstContainment,
                  &Moc::getFirstBiDirAssociation, &Moc::getFirstUniDirAssociation>(
            model.mocQueries);
    changes.markCopy<&VekOamSpiMrContainment_4::getContainedMoc,
                     &VekOamSpiMrContainment_4::getNextContainment>(model.containment);
    changes.markCopy<&End::getEndMoc, &End::getEndAttribute, &End::getEndGeneralProperties,
                     &End::getEndStringProperty, &End::getEndBoolProperty, &End::getEndIntProperty>(
        model.associationEnd);
    changes.markCopy<&BiDir::getFirstEnd, &BiDir::getSecondEnd, &BiDir::getNextBiDirAssociation>(
        model.biDirAssociation);
    changes.markCopy<&UniDir::getUniDirEnd, &UniDir::getNextUniDirAssociation>(
        model.uniDirAssociation);
    changes.markCopy<&Type::getTypeCode, &Type::getTypeIntProperty>(model.attributeType);
    changes.markCopy<&Attribute::getAttributeGeneralProperties, &Attribute::getAttributeMoc,
                     &Attribute::getAttributeType, &Attribute::getNextAttribute>(model.attribute);
    changes.markCopy<&VekOamSpiMrReferenceType_4::getReferencedMoc>(model.referenceType);
}

// The value that the empty router returns.
OrvMoAttributeValue_3 emptySlot{};
OrvMoAttributeValueContainer_3 emptyText{OrvMoAttributeTypeString_3, 1, &emptySlot};
OrvMoAttributeValueContainer_3 noReferences{OrvMoAttributeTypeMoRef_3, 0, nullptr};

OrvReturnT setNothing(unsigned long, const char*, const char*,
                      const OrvMoAttributeValueContainer_3*) {
    return OrvOk;
}

// Returns no references: the component reads them only to compare them with new ones.
OrvReturnT getNothing(unsigned long, const char*, const char* attrName,
                      OrvMoAttributeValueResult_3* result) {
    *result = {nullptr, *attrName == 'l' ? &emptyText : &noReferences};
    return OrvOk;
}

OrvReturnT everythingExists(unsigned long, const char*, bool* exists) {
    *exists = true;
    return OrvOk;
}

OrvReturnT noNextMo(unsigned long long, char** result) {
    *result = nullptr;
    return OrvOk;
}

}

std::unique_ptr<SlotChange> markHostCalls(BenchHost& bench) {
    auto changes = std::make_unique<Changes>();
    OrvHost::Host& host = bench.host();
    markRouter1(*changes, *host.router().getInterface1());
    // One table under two identities: the component may look up each of them.
    markRouter3(*changes, *host.router().getInterface3());
    markRouter3(*changes, *host.router().getVekInterface3());
    using Vek = VekOamSpiManagedObject_3_1;
    changes->mark<&Vek::setMoAttributes>(*host.router().getInterface3_1());
    using Transaction = OrvOamSpiTransaction_1;
    changes->mark<&Transaction::join>(*host.transactions().getTransactionInterface());
    using Context = VekMgmtSpiThreadContext_2;
    changes->mark<&Context::addMessage>(*host.threadContext().getInterface());
    markModel(*changes, *host.find<VekOamSpiModelRepository_4>(VekOamSpiModelRepository_4_Id));
    return changes;
}

std::unique_ptr<SlotChange> emptyRouter(BenchHost& bench) {
    auto changes = std::make_unique<Changes>();
    emptySlot.string = "";
    for (OrvOamSpiManagedObject_3* table :
         {bench.host().router().getInterface3(), bench.host().router().getVekInterface3()}) {
        changes->set(table->setMoAttribute, &setNothing);
        changes->set(table->getMoAttribute, &getNothing);
        changes->set(table->existsMo, &everythingExists);
        changes->set(table->nextMo, &noNextMo);
    }
    return changes;
}

}
