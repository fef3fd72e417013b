// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Makes the calls of which check_cost.py knows what they cost, each as often as the others.
//
//   call_cost LIBEXT_CM      under callgrind, which writes a profile for each operation and each
//                            length of DN; it is called "OPERATION/LENGTH CALLS"

#include "StubHost.h"

#include <valgrind/callgrind.h>

#include <cstdio>
#include <string>

namespace {

using namespace OrvCost;

constexpr int calls = 2000;
constexpr int callsBefore = 16; // what is made once is there after them

/// The DNs of one length. The second step names the class.
struct Dns {
    const char* length;
    std::string tail; ///< what comes after the class

    std::string of(const char* className) const {
        return "ManagedElement=H," + std::string(className) + "=12" + tail;
    }
};

template <class Call>
void measure(const char* operation, const char* length, const Call& call) {
    for (int number = 0; number < callsBefore; ++number) {
        call();
    }
    const std::string name = std::string(operation) + "/" + length + " " + std::to_string(calls);
    CALLGRIND_ZERO_STATS;
    for (int number = 0; number < calls; ++number) {
        call();
    }
    CALLGRIND_DUMP_STATS_AT(name.c_str());
}

/// The operations, in a transaction that the component has joined.
class Operations {
public:
    Operations(const StubHost& host, const Dns& dns)
        : mObjects3(host.objects3()),
          mObjects3_1(host.objects3_1()),
          mResource(host.resource()),
          mLength(dns.length),
          mUnit(dns.of("Unit")),
          mRack(dns.of("Rack")),
          mCell(dns.of("Cell")),
          mToCell(OrvMoAttributeTypeMoRef_3, mCell.c_str()) {}

    void measureAll() {
        set("label", mLabel, mRack); // joins
        measureReads();
        measureWrites();
        measureIterators();
        check(mResource.finish(tx), "finish");
        measureTransaction();
    }

private:
    static constexpr unsigned long tx = 1;
    static constexpr unsigned long txOfIterators = 2;
    static constexpr unsigned long txWithoutWrites = 3;

    void get(const char* attrName) const {
        OrvMoAttributeValueResult_3 result{};
        check(mObjects3.getMoAttribute(tx, mRack.c_str(), attrName, &result), "getMoAttribute");
        result.release(result.container);
    }

    void set(const char* attrName, const OneText& value, const std::string& dn) const {
        check(mObjects3.setMoAttribute(tx, dn.c_str(), attrName, &value.container),
              "setMoAttribute");
    }

    void create(OrvMoNamedAttributeValueContainer_3** attributes, const std::string& parent) const {
        check(mObjects3.createMo(tx, parent.c_str(), "Unit", "unitId", "7", attributes),
              "createMo");
    }

    unsigned long long open(unsigned long txHandle) const {
        unsigned long long iterator = 0;
        check(mObjects3.newMoIterator(txHandle, mRack.c_str(), "Unit", &iterator), "newMoIterator");
        return iterator;
    }

    void measureReads() const {
        measure("existsMo", mLength, [&] {
            bool exists = false;
            check(mObjects3.existsMo(tx, mRack.c_str(), &exists), "existsMo");
        });
        measure("countMoChildren", mLength, [&] {
            unsigned long long count = 0;
            check(mObjects3.countMoChildren(tx, mRack.c_str(), "Unit", &count), "countMoChildren");
        });
        measure("getMoAttribute, plain", mLength, [&] { get("label"); });
        measure("getMoAttribute, reference", mLength, [&] { get("reference"); });
        measure("getMoAttributes, 5 plain", mLength, [&] {
            const char* names[] = {"l1", "l2", "l3", "l4", "l5", nullptr};
            OrvMoAttributeValuesResult_3 result{};
            check(mObjects3.getMoAttributes(tx, mRack.c_str(), names, &result), "getMoAttributes");
            result.release(result.containers);
        });
    }

    void measureWrites() {
        measure("setMoAttribute, plain", mLength, [&] { set("label", mLabel, mRack); });
        measure("setMoAttribute, reference, 1 far side", mLength,
                [&] { set("cells", mToCell, mUnit); });
        OrvMoNamedAttributeValueContainer_3 labels[] = {
            {"l1", mLabel.container}, {"l2", mLabel.container}, {"l3", mLabel.container}};
        OrvMoNamedAttributeValueContainer_3* three[] = {&labels[0], &labels[1], &labels[2],
                                                        nullptr};
        measure("setMoAttributes, 3 plain", mLength, [&] {
            check(mObjects3_1.setMoAttributes(tx, mRack.c_str(), three), "setMoAttributes");
        });
        measure("createMo, no attributes", mLength, [&] { create(nullptr, mRack); });
        OrvMoNamedAttributeValueContainer_3 cells{"cells", mToCell.container};
        OrvMoNamedAttributeValueContainer_3* one[] = {&cells, nullptr};
        measure("createMo, 1 reference", mLength, [&] { create(one, mUnit); });
        measure("deleteMo, leaf, no association", mLength,
                [&] { check(mObjects3.deleteMo(tx, mRack.c_str()), "deleteMo"); });
    }

    void measureIterators() const {
        measure("newMoIterator and finalizeMoIterator", mLength, [&] {
            check(mObjects3.finalizeMoIterator(open(txOfIterators)), "finalizeMoIterator");
        });
        check(mResource.finish(txOfIterators), "finish");
        const unsigned long long iterator = open(tx);
        measure("nextMo", mLength, [&] {
            char* name = nullptr;
            check(mObjects3.nextMo(iterator, &name), "nextMo");
        });
    }

    void measureTransaction() const {
        measure("transaction without writes, validate to finish", mLength, [&] {
            bool isValid = false;
            check(mResource.validate(txWithoutWrites, &isValid), "validate");
            check(mResource.prepare(txWithoutWrites), "prepare");
            check(mResource.commit(txWithoutWrites), "commit");
            check(mResource.finish(txWithoutWrites), "finish");
        });
    }

    const OrvOamSpiManagedObject_3& mObjects3;
    const VekOamSpiManagedObject_3_1& mObjects3_1;
    const OrvOamSpiTransactionalResource_2& mResource;
    const char* mLength;
    std::string mUnit;
    std::string mRack;
    std::string mCell;
    OneText mLabel{OrvMoAttributeTypeString_3, "a label of some length"};
    OneText mToCell;
};

// 30 bytes in three steps, and 120 in ten.
const Dns shortDns{"short", ",Fan=7"};
const Dns longDns{"long", ",Cabinet=12,Cabinet=12,Cabinet=12,Cabinet=12,Cabinet=12,Cabinet=12,"
                          "Cabinet=12,AntennaElement=171"};

}

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: call_cost LIBEXT_CM\n");
        return 2;
    }
    const StubHost host(argv[1]);
    for (const Dns* dns : {&shortDns, &longDns}) {
        Operations(host, *dns).measureAll();
    }
    return 0;
}
