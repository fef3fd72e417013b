// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Values.h"
#include "Workload.h"

namespace OrvBench {

namespace {

using Body = Workload::Body;

std::string numbered(const char* step, int number) {
    return step + std::to_string(number);
}

/// DNs below the root with \p step and a number, one for each call of a body.
std::vector<std::string> dns(const Side& side, const char* step, int first = 0) {
    std::vector<std::string> made;
    for (int number = 0; number < callsInBody; ++number) {
        made.push_back(side.dn(numbered(step, first + number)));
    }
    return made;
}

Body exists(const Round& round) {
    return [r = round, mast = round.side.dn("Mast=7")] {
        repeat([&](int) {
            bool found = false;
            check(r.side.v3->existsMo(r.txHandle, mast.c_str(), &found), "existsMo");
        });
    };
}

Body count(const Round& round) {
    return [r = round, site = round.side.dn("Site=n512")] {
        repeat([&](int) {
            unsigned long long found = 0;
            check(r.side.v3->countMoChildren(r.txHandle, site.c_str(), "Antenna", &found),
                  "countMoChildren");
        });
    };
}

Body getFrom(const Round& round, const char* attribute, std::string dn) {
    return [r = round, attribute, mo = std::move(dn)] {
        repeat([&](int) {
            OrvMoAttributeValueResult_3 result{};
            check(r.side.v3->getMoAttribute(r.txHandle, mo.c_str(), attribute, &result), attribute);
            result.release(result.container);
        });
    };
}

Workload get(const char* kind, const char* attribute) {
    return {std::string("3/getMoAttribute/") + kind, callsInBody, [attribute](const Round& round) {
                return getFrom(round, attribute, round.side.dn("Mast=7"));
            }};
}

Body getMany(const Round& round, std::vector<const char*> names) {
    names.push_back(nullptr);
    return [r = round, names, mast = round.side.dn("Mast=7")]() mutable {
        repeat([&](int) {
            OrvMoAttributeValuesResult_3 result{};
            check(r.side.v3->getMoAttributes(r.txHandle, mast.c_str(), names.data(), &result),
                  "getMoAttributes");
            result.release(result.containers);
        });
    };
}

/// Writes two values in turn.
Body setByTurns(const Round& round, const std::string& mo, const char* attribute, const Value3& one,
                const Value3& other) {
    return [r = round, mo, attribute, one, other] {
        repeat([&](int number) {
            check(r.side.v3->setMoAttribute(r.txHandle, mo.c_str(), attribute,
                                            (number % 2 == 0 ? one : other).container()),
                  attribute);
        });
    };
}

Body setText(const Round& round, const char* attribute) {
    return setByTurns(round, round.side.dn("Mast=7"), attribute, Value3::text("pier of the north"),
                      Value3::text("pier of the south"));
}

Body setNeighbour(const Round& round) {
    return setByTurns(round, round.side.dn("Mast=7"), "neighbours",
                      Value3::references({round.side.dn("Mast=8")}),
                      Value3::references({round.side.dn("Mast=9")}));
}

// Each write moves the antenna from one mast's attribute to another's.
Body setMast(const Round& round) {
    return setByTurns(round, round.side.dn("Site=free,Antenna=7"), "mast",
                      Value3::references({round.side.dn("Mast=4000")}),
                      Value3::references({round.side.dn("Mast=4001")}));
}

Body setFeed(const Round& round) {
    const auto feed = [&](const char* from) {
        return Value3::structure("place", Value3::text("foot of the mast"), "from",
                                 Value3::references({round.side.dn(from)}));
    };
    return setByTurns(round, round.side.dn("Mast=7"), "feed", feed("Mast=8"), feed("Mast=9"));
}

Body setPosition(const Round& round) {
    const auto position = [](const char* place) {
        return Value3::structure("place", Value3::text(place), "note", Value3::text("none"));
    };
    return setByTurns(round, round.side.dn("Mast=7"), "position", position("berth 1"),
                      position("berth 2"));
}

Body create(const Round& round, const NamedValues& attributes) {
    std::vector<std::string> names;
    for (int number = 0; number < callsInBody; ++number) {
        names.push_back(numbered("new-", number));
    }
    return [r = round, names, attributes, site = round.side.dn("Site=free")] {
        for (const std::string& name : names) {
            check(r.side.v3->createMo(r.txHandle, site.c_str(), "Antenna", "antennaId",
                                      name.c_str(), attributes.list()),
                  "createMo");
        }
    };
}

Body createPlain(const Round& round) {
    return create(round, NamedValues().add("label", Value3::text("an antenna that is new")));
}

// All antennas are on one mast, so each creation adds one more value to the mast's attribute.
Body createMounted(const Round& round) {
    return create(round,
                  NamedValues().add("mast", Value3::references({round.side.dn("Mast=4000")})));
}

Body removeAll(const Round& round, const std::vector<std::string>& mos) {
    return [r = round, mos] {
        for (const std::string& mo : mos) {
            check(r.side.v3->deleteMo(r.txHandle, mo.c_str()), "deleteMo");
        }
    };
}

Body act(const Round& round) {
    return [r = round, mast = round.side.dn("Mast=7"),
            parameters = NamedValues()
                             .add("reason", Value3::text("a storm has passed"))
                             .add("inspector", Value3::references({round.side.dn("Mast=8")}))] {
        repeat([&](int) {
            OrvMoAttributeValueResult_3 result{};
            check(
                r.side.v3->action(r.txHandle, mast.c_str(), "inspect", parameters.list(), &result),
                "action");
            if (result.release != nullptr) {
                result.release(result.container);
            }
        });
    };
}

Body openIterators(const Round& round) {
    return [r = round, site = round.side.dn("Site=n8")] {
        repeat([&](int) {
            unsigned long long iterator = 0;
            check(r.side.v3->newMoIterator(r.txHandle, site.c_str(), "Antenna", &iterator),
                  "newMoIterator");
            check(r.side.v3->finalizeMoIterator(iterator), "finalizeMoIterator");
        });
    };
}

Body step(const Round& round) {
    unsigned long long iterator = 0;
    check(round.side.v3->newMoIterator(round.txHandle, round.side.dn("Site=n512").c_str(),
                                       "Antenna", &iterator),
          "newMoIterator");
    return [r = round, iterator] {
        repeat([&](int) {
            char* name = nullptr;
            check(r.side.v3->nextMo(iterator, &name), "nextMo");
        });
    };
}

}

std::vector<Workload> version3Workloads() {
    return {
        {"3/setMoAttribute/text", callsInBody, [](const Round& r) { return setText(r, "label"); }},
        {"3/setMoAttribute/checked id", callsInBody,
         [](const Round& r) { return setText(r, "networkManagedElementId"); }},
        {"3/setMoAttribute/struct", callsInBody, setPosition},
        {"3/setMoAttribute/struct with reference", callsInBody, setFeed},
        {"3/setMoAttribute/unidirectional reference", callsInBody, setNeighbour},
        {"3/setMoAttribute/bidirectional reference", callsInBody, setMast},
        get("number", "height"),
        get("text", "label"),
        get("struct", "position"),
        get("struct with reference", "feed"),
        get("reference", "neighbours"),
        {"3/getMoAttribute/id of the root", callsInBody,
         [](const Round& r) { return getFrom(r, "managedElementId", r.side.root); }},
        {"3/getMoAttributes/3 plain", callsInBody,
         [](const Round& r) {
             return getMany(r, {"height", "label", "owner"});
         }},
        {"3/getMoAttributes/3 plain, 1 reference", callsInBody,
         [](const Round& r) {
             return getMany(r, {"height", "label", "owner", "neighbours"});
         }},
        {"3/newMoIterator+finalizeMoIterator", callsInBody, openIterators},
        {"3/nextMo", callsInBody, step},
        {"3/createMo/text", callsInBody, createPlain},
        {"3/createMo/bidirectional reference", callsInBody, createMounted},
        {"3/deleteMo/without references", callsInBody,
         [](const Round& r) { return removeAll(r, dns(r.side, "Site=free,Antenna=")); }},
        {"3/deleteMo/bidirectional reference", callsInBody,
         [](const Round& r) { return removeAll(r, dns(r.side, "Site=n512,Antenna=", 100)); }},
        {"3/action/text and reference", callsInBody, act},
        {"3/existsMo", callsInBody, exists},
        {"3/countMoChildren", callsInBody, count},
    };
}

}
