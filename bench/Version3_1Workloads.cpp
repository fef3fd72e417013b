// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Values.h"
#include "Workload.h"

namespace OrvBench {

namespace {

Workload::Body setByTurns(const Round& round, const std::string& mo, const NamedValues& one,
                          const NamedValues& other) {
    return [r = round, mo, one, other] {
        repeat([&](int number) {
            check(r.side.v3_1->setMoAttributes(r.txHandle, mo.c_str(),
                                               (number % 2 == 0 ? one : other).list()),
                  "setMoAttributes");
        });
    };
}

NamedValues plain(const char* text) {
    return NamedValues()
        .add("label", Value3::text(text))
        .add("owner", Value3::text("harbour authority"))
        .add("networkManagedElementId", Value3::text(text));
}

Workload::Body setPlain(const Round& round) {
    return setByTurns(round, round.side.dn("Mast=7"), plain("pier of the north"),
                      plain("pier of the south"));
}

Workload::Body setMast(const Round& round) {
    const auto antenna = [&](const char* mast) {
        return NamedValues()
            .add("label", Value3::text("an antenna that moves"))
            .add("mast", Value3::references({round.side.dn(mast)}));
    };
    return setByTurns(round, round.side.dn("Site=free,Antenna=7"), antenna("Mast=4000"),
                      antenna("Mast=4001"));
}

}

std::vector<Workload> version3_1Workloads() {
    return {
        {"3_1/setMoAttributes/3 plain", callsInBody, setPlain},
        {"3_1/setMoAttributes/1 plain, 1 bidirectional reference", callsInBody, setMast},
    };
}

}
