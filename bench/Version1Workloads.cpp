// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Values.h"
#include "Workload.h"

namespace OrvBench {

namespace {

using Body = Workload::Body;

Body setByTurns(const Round& round, const char* attribute, const Value1& one, const Value1& other) {
    return [r = round, mo = round.side.dn("Mast=7"), attribute, one, other] {
        repeat([&](int number) {
            check(r.side.v1->setMoAttribute(r.txHandle, mo.c_str(), attribute,
                                            (number % 2 == 0 ? one : other).container()),
                  attribute);
        });
    };
}

Body setText(const Round& round) {
    return setByTurns(round, "label", Value1::text("pier of the north"),
                      Value1::text("pier of the south"));
}

Body setReference(const Round& round) {
    return setByTurns(round, "neighbours", Value1::references({round.side.dn("Mast=8")}),
                      Value1::references({round.side.dn("Mast=9")}));
}

Body setStruct(const Round& round) {
    const auto feed = [&](const char* from) {
        return Value1::structure("place", Value1::text("foot of the mast"), "from",
                                 Value1::references({round.side.dn(from)}));
    };
    return setByTurns(round, "feed", feed("Mast=8"), feed("Mast=9"));
}

Workload get(const char* kind, const char* attribute) {
    return {std::string("1/getMoAttribute/") + kind, callsInBody, [attribute](const Round& round) {
                return [r = round, attribute, mo = round.side.dn("Mast=7")] {
                    repeat([&](int) {
                        OrvMoAttributeValueContainer* result = nullptr;
                        check(r.side.v1->getMoAttribute(r.txHandle, mo.c_str(), attribute, &result),
                              attribute);
                    });
                };
            }};
}

Body openIterators(const Round& round) {
    return [r = round, site = round.side.dn("Site=n8")] {
        repeat([&](int) {
            void* iterator = nullptr;
            check(r.side.v1->newMoIterator(r.txHandle, site.c_str(), "Antenna", &iterator),
                  "newMoIterator");
        });
    };
}

Body step(const Round& round) {
    void* iterator = nullptr;
    check(round.side.v1->newMoIterator(round.txHandle, round.side.dn("Site=n512").c_str(),
                                       "Antenna", &iterator),
          "newMoIterator");
    return [r = round, iterator] {
        repeat([&](int) {
            char* name = nullptr;
            check(r.side.v1->nextMo(iterator, &name), "nextMo");
        });
    };
}

Body create(const Round& round) {
    std::vector<std::string> names;
    for (int number = 0; number < callsInBody; ++number) {
        names.push_back("new-" + std::to_string(number));
    }
    return [r = round, names, site = round.side.dn("Site=free")] {
        for (const std::string& name : names) {
            check(
                r.side.v1->createMo(r.txHandle, site.c_str(), "Antenna", "antennaId", name.c_str()),
                "createMo");
        }
    };
}

Body remove(const Round& round) {
    std::vector<std::string> mos;
    for (int number = 0; number < callsInBody; ++number) {
        mos.push_back(round.side.dn("Site=free,Antenna=" + std::to_string(number)));
    }
    return [r = round, mos] {
        for (const std::string& mo : mos) {
            check(r.side.v1->deleteMo(r.txHandle, mo.c_str()), "deleteMo");
        }
    };
}

// Parameters of version 1 have no names: they are in the order of the model.
Body act(const Round& round) {
    return [r = round, mast = round.side.dn("Mast=7"), reason = Value1::text("a storm has passed"),
            inspector = Value1::references({round.side.dn("Mast=8")})] {
        repeat([&](int) {
            OrvMoAttributeValueContainer* parameters[] = {reason.container(), inspector.container(),
                                                          nullptr};
            OrvMoAttributeValueContainer* result = nullptr;
            check(r.side.v1->action(r.txHandle, mast.c_str(), "inspect", parameters, &result),
                  "action");
        });
    };
}

}

std::vector<Workload> version1Workloads() {
    return {
        {"1/setMoAttribute/text", callsInBody, setText},
        {"1/setMoAttribute/struct with reference", callsInBody, setStruct},
        {"1/setMoAttribute/reference", callsInBody, setReference},
        get("number", "height"),
        get("text", "label"),
        get("struct with reference", "feed"),
        get("reference", "neighbours"),
        {"1/newMoIterator", callsInBody, openIterators},
        {"1/nextMo", callsInBody, step},
        {"1/createMo", callsInBody, create},
        {"1/deleteMo", callsInBody, remove},
        {"1/action/text and reference", callsInBody, act},
    };
}

}
