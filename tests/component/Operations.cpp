// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Operations.h"

#include "Network.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdlib>
#include <future>
#include <iostream>
#include <map>
#include <ostream>

namespace Scripted {

namespace {

constexpr unsigned long kTx = kFaultTx;
constexpr unsigned long kOtherTx = 99;

// DNs as an operation is given them: ready-made texts, long enough to need memory.
constexpr const char* kUnit = "ManagedElement=paris,Unit=7";
constexpr const char* kNetwork = "ManagedElement=paris";
constexpr const char* kForeign = "ManagedElement=rome,Unit=7";

using MembersList = std::vector<Members>;

Value placeOf(const std::string& dn) {
    return structs(MembersList{
        {member("near", refs({dn})),
         member("far", structs(MembersList{{member("ref", refs({dn})), member("n", strings({"1"}))},
                                           {}}))},
        {member("label", strings({"x"}))}});
}

const OrvOamSpiManagedObject_3& v3(const Scene& scene) {
    return *scene.host.client().table;
}
const VekOamSpiManagedObject_3_1& v3_1(const Scene& scene) {
    return *scene.host.client3_1().table;
}
const OrvOamSpiManagedObject_1& v1(const Scene& scene) {
    return *scene.host.client1().table;
}

// -------------------------------------------------------------------------------------------------
// What is there before a call

void nothing(Scene& /*scene*/) {}

void connect(Scene& scene, const std::string& unitName, const std::vector<std::string>& cells) {
    std::vector<std::string> dns;
    for (const std::string& name : cells) {
        scene.host.mo(cellInside(name)).with("unit", refs({unitInside(unitName)}));
        dns.push_back(cellInside(name));
    }
    scene.host.mo(unitInside(unitName)).with("cells", refs(dns));
}

void connected(Scene& scene) {
    connect(scene, "7", {"1", "2"});
}

void connectedAndIntercepted(Scene& scene) {
    connected(scene);
    scene.host.interceptor("ManagedElement,Unit");
}

void connectedAndInParts(Scene& scene) {
    connected(scene);
    const std::string part = unitInside("7") + ",Part=1";
    scene.host.mo(part).with("uses", refs({cellInside("2"), cellInside("3")}));
    scene.host.mo(cellInside("2")).with("usedBy", refs({part}));
    scene.host.mo(cellInside("3")).with("usedBy", refs({part}));
}

void placed(Scene& scene) {
    scene.host.mo(unitInside("7")).with("place", placeOf(cellInside("1")));
}

void movesToAnotherCell(Scene& scene) {
    connect(scene, "7", {"1", "2"});
    scene.value = scene.records.container(refs({cell("2"), cell("3")}));
}

void movesToAnotherCellIntercepted(Scene& scene) {
    movesToAnotherCell(scene);
    scene.host.interceptor("ManagedElement,Unit");
}

void movesToSite(Scene& scene) {
    scene.value = scene.records.container(refs({site("1")}));
}

void movesPlace(Scene& scene) {
    scene.value = scene.records.container(placeOf(cell("1")));
}

void badId(Scene& scene) {
    scene.value = scene.records.container(strings({"a,b that is not acceptable in a DN"}));
}

void badIdAmongMany(Scene& scene) {
    scene.named = scene.records.named(
        {{"cells", refs({cell("1")})},
         {"networkManagedElementId", strings({"a,b that is not acceptable in a DN"})}});
}

void twoReferences(Scene& scene) {
    connect(scene, "7", {"1"});
    scene.named = scene.records.named({{"cells", refs({cell("2"), cell("3")})},
                                       {"label", strings({"y"})},
                                       {"site", refs({site("1")})},
                                       {"place", placeOf(cell("1"))}});
}

void twoReferencesIntercepted(Scene& scene) {
    twoReferences(scene);
    scene.host.interceptor("ManagedElement,Unit");
}

void newUnit(Scene& scene) {
    scene.named = scene.records.named({{"cells", refs({cell("1"), cell("2")})},
                                       {"site", refs({site("1")})},
                                       {"place", placeOf(cell("1"))}});
}

void awaitedCell(Scene& scene) {
    for (const std::string name : {"7", "8"}) {
        EXPECT_EQ(scene.host.client().set(kTx, unit(name), "cells", refs({cell("not there yet")})),
                  OrvOk);
    }
    scene.named = scene.records.named({});
}

void actionWithReferences(Scene& scene) {
    Scene* const host = &scene;
    scene.host.when("Router3.action")
        .answers<OrvMoAttributeValueResult_3>([host](OrvMoAttributeValueResult_3& result) {
            host->host.results().give("action", refs({cellInside("1"), cellInside("2")}), result);
            return OrvOk;
        });
    scene.named = scene.records.named({{"to", refs({cell("1"), cell("2")})},
                                       {"place", placeOf(cell("1"))},
                                       {"how", strings({"fast"})}});
}

void recordedAnUpdate(Scene& scene) {
    EXPECT_EQ(scene.host.client().set(kTx, unit("7"), "cells", refs({cell("1"), cell("2")})),
              OrvOk);
    EXPECT_EQ(scene.host.client().set(kTx, unit("7"), "site", refs({site("1")})), OrvOk);
}

void recordedViolations(Scene& scene) {
    EXPECT_EQ(
        scene.host.client().set(kTx, unit("7"), "cells", refs({cell("1"), cell("2"), cell("3")})),
        OrvOk);
    EXPECT_EQ(scene.host.client().set(kTx, unit("7"), "site", refs({cell("1")})), OrvOk);
}

void keptAllKindsOfThings(Scene& scene) {
    recordedAnUpdate(scene);
    awaitedCell(scene);
    EXPECT_EQ(scene.host.client().open(kTx, kRoot, "Unit").code, OrvOk);
    EXPECT_EQ(scene.host.client1().open(kTx, kRoot, "Unit").code, OrvOk);
    EXPECT_EQ(scene.host.client1().get(kTx, unit("7"), "cells").code, OrvOk);
}

void opened(Scene& scene) {
    EXPECT_EQ(v3(scene).newMoIterator(kTx, kNetwork, "Unit", &scene.iterator), OrvOk);
}
void openedAtTheTop(Scene& scene) {
    EXPECT_EQ(v3(scene).newMoIterator(kTx, "", "ManagedElement", &scene.iterator), OrvOk);
}
void opened1(Scene& scene) {
    EXPECT_EQ(v1(scene).newMoIterator(kTx, kNetwork, "Unit", &scene.iterator1), OrvOk);
}

void opened1AtTheTop(Scene& scene) {
    EXPECT_EQ(v1(scene).newMoIterator(kTx, "", "ManagedElement", &scene.iterator1), OrvOk);
}

void badId1(Scene& scene) {
    scene.value1 = scene.records1.container(strings({"a,b that is not acceptable in a DN"}));
}
void references1(Scene& scene) {
    scene.value1 = scene.records1.container(refs({cell("1"), cell("2")}));
}
void place1(Scene& scene) {
    scene.value1 = scene.records1.container(placeOf(cell("1")));
}
void parameters1(Scene& scene) {
    scene.values1 = scene.records1.array({refs({cell("1")}), placeOf(cell("2")), strings({"x"})});
}

// -------------------------------------------------------------------------------------------------
// The calls

OrvReturnT readAttribute(Scene& scene, const char* dn, const char* attribute) {
    return v3(scene).getMoAttribute(kTx, dn, attribute, &scene.read);
}

OrvReturnT readCells(Scene& scene) {
    return readAttribute(scene, kUnit, "cells");
}

OrvReturnT readCellsAndLabel(Scene& scene) {
    static const char* names[] = {"cells", "label", nullptr};
    return v3(scene).getMoAttributes(kTx, kUnit, names, &scene.readMany);
}

OrvReturnT setCells(Scene& scene) {
    return v3(scene).setMoAttribute(kTx, kUnit, "cells", scene.value);
}

OrvReturnT setMany(Scene& scene) {
    return v3_1(scene).setMoAttributes(kTx, kUnit, scene.named);
}

OrvReturnT next(Scene& scene) {
    return v3(scene).nextMo(scene.iterator, &scene.name);
}

OrvReturnT next1(Scene& scene) {
    return v1(scene).nextMo(scene.iterator1, &scene.name);
}

OrvReturnT validate(Scene& scene) {
    return scene.host.resource().validate(kTx, &scene.flag);
}

std::vector<Operation> reads() {
    return {
        {"existsMo", nothing,
         [](Scene& scene) { return v3(scene).existsMo(kTx, kUnit, &scene.flag); }},
        {"existsMo, a DN that cannot be translated", nothing,
         [](Scene& scene) { return v3(scene).existsMo(kTx, kForeign, &scene.flag); }, OrvNotExist},
        {"countMoChildren", nothing,
         [](Scene& scene) {
             return v3(scene).countMoChildren(kTx, kNetwork, "Unit", &scene.count);
         }},
        {"getMoAttribute", connected, readCells},
        {"getMoAttribute, the root's id", nothing,
         [](Scene& scene) { return readAttribute(scene, kNetwork, "managedElementId"); }},
        {"getMoAttribute, a struct", placed,
         [](Scene& scene) { return readAttribute(scene, kUnit, "place"); }},
        {"getMoAttribute, intercepted", connectedAndIntercepted, readCells},
        {"getMoAttributes", connected, readCellsAndLabel},
        {"getMoAttributes, intercepted", connectedAndIntercepted, readCellsAndLabel},
        {"newMoIterator", nothing,
         [](Scene& scene) {
             return v3(scene).newMoIterator(kTx, kNetwork, "Unit", &scene.iterator);
         }},
        {"nextMo", opened, next},
        {"nextMo, at the top level", openedAtTheTop, next},
        {"finalizeMoIterator", opened,
         [](Scene& scene) { return v3(scene).finalizeMoIterator(scene.iterator); }},
    };
}

std::vector<Operation> writes() {
    return {
        {"createMo", newUnit,
         [](Scene& scene) {
             return v3(scene).createMo(kTx, kNetwork, "Unit", "unitId", "new", scene.named);
         }},
        {"createMo, a naming attribute of its own", newUnit,
         [](Scene& scene) {
             return v3(scene).createMo(kTx, kNetwork, "Unit", "label", "new", scene.named);
         }},
        {"createMo, at the top level", newUnit,
         [](Scene& scene) {
             return v3(scene).createMo(kTx, "", "Unit", "unitId", "new", scene.named);
         }},
        {"createMo, others wait for it", awaitedCell,
         [](Scene& scene) {
             return v3(scene).createMo(kTx, kNetwork, "Cell", "cellId", "not there yet",
                                       scene.named);
         }},
        {"setMoAttribute, bidirectional", movesToAnotherCell, setCells},
        {"setMoAttribute, intercepted", movesToAnotherCellIntercepted, setCells},
        {"setMoAttribute, unidirectional", movesToSite,
         [](Scene& scene) { return v3(scene).setMoAttribute(kTx, kUnit, "site", scene.value); }},
        {"setMoAttribute, a struct", movesPlace,
         [](Scene& scene) { return v3(scene).setMoAttribute(kTx, kUnit, "place", scene.value); }},
        {"setMoAttribute, a refused id", badId,
         [](Scene& scene) {
             return v3(scene).setMoAttribute(kTx, kUnit, "networkManagedElementId", scene.value);
         },
         OrvValidationFailed},
        {"deleteMo", connected, [](Scene& scene) { return v3(scene).deleteMo(kTx, kUnit); }},
        {"deleteMo, a subtree", connectedAndInParts,
         [](Scene& scene) { return v3(scene).deleteMo(kTx, kUnit); }},
        {"action", actionWithReferences,
         [](Scene& scene) {
             return v3(scene).action(kTx, kUnit, "connect", scene.named, &scene.read);
         }},
        {"setMoAttributes", twoReferences, setMany},
        {"setMoAttributes, intercepted", twoReferencesIntercepted, setMany},
        {"setMoAttributes, a refused id", badIdAmongMany, setMany, OrvInvalidArgument},
    };
}

std::vector<Operation> version1() {
    return {
        {"1 getMoAttribute", connected,
         [](Scene& scene) { return v1(scene).getMoAttribute(kTx, kUnit, "cells", &scene.read1); }},
        {"1 getMoAttribute, the root's id", nothing,
         [](Scene& scene) {
             return v1(scene).getMoAttribute(kTx, kNetwork, "managedElementId", &scene.read1);
         }},
        {"1 getMoAttribute, a struct", placed,
         [](Scene& scene) { return v1(scene).getMoAttribute(kTx, kUnit, "place", &scene.read1); }},
        {"1 setMoAttribute", references1,
         [](Scene& scene) { return v1(scene).setMoAttribute(kTx, kUnit, "cells", scene.value1); }},
        {"1 setMoAttribute, a struct", place1,
         [](Scene& scene) { return v1(scene).setMoAttribute(kTx, kUnit, "place", scene.value1); }},
        {"1 setMoAttribute, a refused id", badId1,
         [](Scene& scene) {
             return v1(scene).setMoAttribute(kTx, kUnit, "networkManagedElementId", scene.value1);
         },
         OrvInvalidArgument},
        {"1 createMo", nothing,
         [](Scene& scene) { return v1(scene).createMo(kTx, kNetwork, "Unit", "unitId", "new"); }},
        {"1 deleteMo", nothing, [](Scene& scene) { return v1(scene).deleteMo(kTx, kUnit); }},
        {"1 action", parameters1,
         [](Scene& scene) {
             return v1(scene).action(kTx, kUnit, "connect", scene.values1, &scene.read1);
         }},
        {"1 newMoIterator", nothing,
         [](Scene& scene) {
             return v1(scene).newMoIterator(kTx, kNetwork, "Unit", &scene.iterator1);
         }},
        {"1 nextMo", opened1, next1},
        {"1 nextMo, at the top level", opened1AtTheTop, next1},
    };
}

std::vector<Operation> transactional() {
    return {
        {"join", nothing, [](Scene& scene) { return scene.host.resource().join(kTx); }},
        {"prepare", recordedAnUpdate,
         [](Scene& scene) { return scene.host.resource().prepare(kTx); }},
        {"commit", recordedAnUpdate,
         [](Scene& scene) { return scene.host.resource().commit(kTx); }},
        {"abort", recordedAnUpdate, [](Scene& scene) { return scene.host.resource().abort(kTx); }},
        {"validate", recordedAnUpdate, validate},
        {"validate, with violations", recordedViolations, validate},
        {"finish", keptAllKindsOfThings,
         [](Scene& scene) { return scene.host.resource().finish(kTx); }},
    };
}

std::vector<Operation> lifecycle() {
    return {
        {"orvLCMinit", nothing, [](Scene& scene) { return scene.host.init(); }, OrvOk,
         Life::Loaded},
        {"start", nothing, [](Scene& scene) { return scene.host.startComponent(); }, OrvOk,
         Life::Initialised},
        {"stop", keptAllKindsOfThings, [](Scene& scene) { return scene.host.stopComponent(); }},
        {"orvLCMterminate", nothing,
         [](Scene& scene) {
             scene.host.terminate();
             return OrvOk;
         }},
    };
}

std::vector<Operation> allOperations() {
    std::vector<Operation> all;
    for (const std::vector<Operation>& some :
         {reads(), writes(), version1(), transactional(), lifecycle()}) {
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

// -------------------------------------------------------------------------------------------------
// Afterwards

// Through the registry, the two stores of references, the repository and both sets of iterators.
void useAll(Host& host) {
    const Client3 client = host.client();
    EXPECT_EQ(client.set(kOtherTx, unit("9"), "cells", refs({cell("4")})), OrvOk);
    EXPECT_EQ(host.world().references(cellInside("4"), "unit"),
              std::vector<std::string>{unitInside("9")});
    EXPECT_EQ(host.client3_1().set(kOtherTx, unit("9"), {{"site", refs({site("9")})}}), OrvOk);
    EXPECT_EQ(client.get(kOtherTx, unit("9"), "cells").value(), refs({cell("4")}));
    const auto iterator = client.open(kOtherTx, unit("9"), "Part");
    EXPECT_EQ(client.next(iterator.thing).thing, "of unit 9");
    EXPECT_EQ(client.finalize(iterator.thing), OrvOk);
    const auto iterator1 = host.client1().open(kOtherTx, unit("9"), "Part");
    EXPECT_EQ(host.client1().next(iterator1.thing).thing, "of unit 9");
    EXPECT_EQ(host.client1().get(kOtherTx, unit("9"), "cells").code, OrvOk);
    bool valid = false;
    EXPECT_EQ(host.resource().validate(kOtherTx, &valid), OrvOk);
    EXPECT_TRUE(valid);
    EXPECT_EQ(host.resource().finish(kOtherTx), OrvOk);
}

void bringToLife(Host& host, Life stage, const std::string& operation) {
    const bool ended = operation == "orvLCMterminate";
    if (stage == Life::Loaded || ended) {
        EXPECT_EQ(host.init(), OrvOk) << "again";
    }
    if (stage != Life::Started || ended || operation == "stop") {
        EXPECT_EQ(host.startComponent(), OrvOk) << "again";
    }
}

}

Scene::Scene(Life stage) {
    describeNetwork(host);
    host.model().moc("Unit").contains("Part");
    host.model().biDir({"Part", "uses"}, {"Cell", "usedBy"});
    host.mo(unitInside("9"));
    host.mo(unitInside("9") + ",Part=of unit 9");
    host.mo(cellInside("4"));
    host.mo(siteInside("9"));
    host.load();
    if (stage != Life::Loaded) {
        EXPECT_EQ(host.init(), OrvOk);
    }
    if (stage == Life::Started) {
        EXPECT_EQ(host.startComponent(), OrvOk);
    }
}

void Scene::giveBack(OrvReturnT code) {
    if (code != OrvOk) {
        EXPECT_TRUE(read.container == nullptr || host.results().isOut(read.container))
            << "a failed operation leaves what it got as it is";
        EXPECT_TRUE(readMany.containers == nullptr || host.results().isOut(readMany.containers))
            << "a failed operation leaves what it got as it is";
    }
    if (read.release != nullptr && read.container != nullptr) {
        read.release(read.container);
    }
    if (readMany.release != nullptr && readMany.containers != nullptr) {
        readMany.release(readMany.containers);
    }
}

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

const std::vector<Operation>& operations() {
    static const std::vector<Operation> all = allOperations();
    return all;
}

std::string plainName(const Operation& operation) {
    std::string plain;
    bool atStart = true;
    for (const char c : operation.name) {
        const bool plainLetter = std::isalnum(static_cast<unsigned char>(c)) != 0;
        if (plainLetter) {
            plain += atStart ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
        }
        atStart = !plainLetter;
    }
    return plain;
}

std::vector<Place> placesIn(const std::vector<Call>& calls) {
    std::map<std::string, int> seen;
    std::vector<Place> places;
    for (const Call& call : calls) {
        if (call.name.rfind("Producer.", 0) != 0) {
            places.push_back({call.name, ++seen[call.name], call.text()});
        }
    }
    return places;
}

std::vector<std::string> writesIn(const std::vector<std::string>& calls) {
    std::vector<std::string> writes;
    std::copy_if(calls.begin(), calls.end(), std::back_inserter(writes), [](const auto& call) {
        const std::string name = call.substr(0, call.find('('));
        const std::string table = name.substr(0, name.find('.'));
        const std::string function = name.substr(name.find('.') + 1);
        return table.find("Router") != std::string::npos &&
               (function.rfind("setMo", 0) == 0 || function == "createMo" ||
                function == "deleteMo" || function == "action");
    });
    return writes;
}

void expectServes(Scene& scene, const Operation& operation) {
    bringToLife(scene.host, operation.stage, operation.name);
    std::future<void> other = std::async(std::launch::async, [&] { useAll(scene.host); });
    if (other.wait_for(std::chrono::seconds(60)) != std::future_status::ready) {
        std::cerr << operation.name << " has left a lock held\n";
        std::abort();
    }
    other.get();
    bool valid = false;
    EXPECT_EQ(scene.host.resource().validate(kTx, &valid), OrvOk);
    EXPECT_EQ(scene.host.resource().finish(kTx), OrvOk);
}

}
