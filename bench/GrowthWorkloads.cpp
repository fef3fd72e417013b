// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Values.h"
#include "Workload.h"

#include <algorithm>

namespace OrvBench {

namespace {

using Body = Workload::Body;

std::vector<std::string> row(const Side& side, const char* step, int first, int size) {
    std::vector<std::string> dns;
    for (int number = first; number < first + size; ++number) {
        dns.push_back(side.dn(step + std::to_string(number)));
    }
    return dns;
}

/// Writes one value to \p mo's attribute, which before that gets another value.
Body replace(const Round& round, const std::string& mo, const char* attribute, const Value3& before,
             const Value3& after) {
    check(round.side.v3->setMoAttribute(round.txHandle, mo.c_str(), attribute, before.container()),
          attribute);
    return [r = round, mo, attribute, after] {
        check(r.side.v3->setMoAttribute(r.txHandle, mo.c_str(), attribute, after.container()),
              attribute);
    };
}

// Replaces the first of n references by a new one, so that one object at the far side loses its
// reference back and another one gets one.
Body exchangeOneOf(const Round& round, int size, const char* attribute, const char* step) {
    return replace(round, round.side.dn("Mast=4000"), attribute,
                   Value3::references(row(round.side, step, 0, size)),
                   Value3::references(row(round.side, step, 1, size)));
}

/// Puts each antenna of a list onto its own mast.
void mount(const Round& round, const Side& side, const std::vector<std::string>& antennas,
           const std::vector<Value3>& masts) {
    for (std::size_t index = 0; index < antennas.size(); ++index) {
        check(side.v3->setMoAttribute(round.txHandle, antennas[index].c_str(), "mast",
                                      masts[index].container()),
              "mast");
    }
}

std::vector<Value3> eachAlone(const std::vector<std::string>& dns) {
    std::vector<Value3> values;
    for (const std::string& dn : dns) {
        values.push_back(Value3::references({dn}));
    }
    return values;
}

Body writes(const Round& round, int size) {
    return [r = round, antennas = row(round.side, "Site=free,Antenna=", 0, size),
            masts = eachAlone(row(round.side, "Mast=", 0, size))] {
        mount(r, r.side, antennas, masts);
    };
}

// Each write sets the value that is already there, and leaves one pair of an object and an
// attribute to be validated. On both sides the component does the writes, so that one and the same
// transaction is validated.
Body validate(const Round& round, int size) {
    const Side& component = round.bench.component();
    mount(round, component, row(component, "Site=n4096,Antenna=", 0, size),
          eachAlone(row(component, "Mast=", 0, size)));
    return [r = round] {
        bool valid = false;
        check(r.side.resource->validate(r.txHandle, &valid), "validate");
        check(valid ? OrvOk : OrvValidationFailed, "verdict");
    };
}

Body deleteSubtree(const Round& round, int size) {
    return [r = round, site = round.side.dn("Site=n" + std::to_string(size))] {
        check(r.side.v3->deleteMo(r.txHandle, site.c_str()), "deleteMo");
    };
}

Body iterate(const Round& round, int size) {
    return [r = round, size, site = round.side.dn("Site=n" + std::to_string(size))] {
        unsigned long long iterator = 0;
        check(r.side.v3->newMoIterator(r.txHandle, site.c_str(), "Antenna", &iterator),
              "newMoIterator");
        char* name = nullptr;
        int met = -1;
        do {
            check(r.side.v3->nextMo(iterator, &name), "nextMo");
            ++met;
        } while (name != nullptr);
        check(met == size ? OrvOk : OrvFailure, "number of children");
        check(r.side.v3->finalizeMoIterator(iterator), "finalizeMoIterator");
    };
}

}

std::vector<Workload> growthWorkloads() {
    std::vector<Workload> all;
    for (const int size : BenchHost::sizes) {
        const auto add = [&](const char* name, const std::function<Body(const Round&)>& prepare,
                             bool touched) {
            all.push_back({"growth/" + std::string(name) + "/" + std::to_string(size), size,
                           prepare, touched});
        };
        add(
            "unidirectional references in an attribute",
            [size](const Round& r) {
                return exchangeOneOf(r, std::min(size, BenchHost::masts - 1), "neighbours",
                                     "Mast=");
            },
            true);
        add(
            "bidirectional references in an attribute",
            [size](const Round& r) {
                return exchangeOneOf(r, size, "antennas", "Site=free,Antenna=");
            },
            true);
        add(
            "writes in a transaction", [size](const Round& r) { return writes(r, size); }, false);
        add(
            "pairs validated", [size](const Round& r) { return validate(r, size); }, true);
        add(
            "objects in a deleted subtree",
            [size](const Round& r) { return deleteSubtree(r, size); }, true);
        add(
            "children iterated", [size](const Round& r) { return iterate(r, size); }, true);
    }
    return all;
}

}
