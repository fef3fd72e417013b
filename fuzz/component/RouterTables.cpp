// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The router's tables of versions 3 and 3_1. What is handed to the router may be anything that the
// component hands on: nothing is read before it is known to exist.

#include "Host.h"
#include "Names.h"
#include "ValueMaker.h"
#include "support/Require.h"

#include <algorithm>
#include <cstring>

namespace Fuzz {

namespace {

constexpr const char* orEmpty(const char* text) {
    return text != nullptr ? text : "";
}

using Maker = ValueMaker<Version3>;
using Container = OrvMoAttributeValueContainer_3;

/// What an honest router answers for an attribute: references by default, a struct with a reference
/// for "place", otherwise a text.
void fillHonestly(Container& value, const std::string& dn, const std::string& attribute,
                  Orv::AutoMemory& memory) {
    const std::vector<std::string>& references = Host::current().world.references(dn, attribute);
    ByteSource none(nullptr, 0);
    Maker maker(none, memory, Form::Internal);
    const bool isReference = std::find(std::begin(kReferences), std::end(kReferences), attribute) !=
                             std::end(kReferences);
    if (isReference || !references.empty()) {
        value.type = OrvMoAttributeTypeMoRef_3;
        value.count = static_cast<std::uint32_t>(references.size());
        value.values = memory.malloc<OrvMoAttributeValue_3>(value.count);
        for (std::uint32_t at = 0; at < value.count; ++at) {
            value.values[at].moRef = memory.strdup(references[at].c_str());
        }
        return;
    }
    value.count = 1;
    value.values = memory.malloc<OrvMoAttributeValue_3>(1);
    if (attribute == "place") {
        auto* const member = memory.malloc<OrvMoStructMember_3>(1);
        *member = {memory.strdup("at"), maker.references({"ManagedElement=1,Site=1"}), nullptr};
        value.type = OrvMoAttributeTypeStruct_3;
        value.values[0].structValue = member;
    } else {
        value.type = OrvMoAttributeTypeString_3;
        value.values[0].string = memory.strdup("1");
    }
}

OrvReturnT getHonestly(const char* dn, const char* attribute, OrvMoAttributeValueResult_3* result) {
    Host& host = Host::current();
    if (dn == nullptr || attribute == nullptr || result == nullptr || !host.world.exists(dn)) {
        return OrvNotExist;
    }
    auto memory = std::make_unique<Orv::AutoMemory>();
    auto* const container = memory->malloc<Container>(1);
    fillHonestly(*container, dn, attribute, *memory);
    host.gifts.give(std::move(memory), container, true, *result);
    return OrvOk;
}

OrvReturnT getManyHonestly(const char* dn, const char** attributes,
                           OrvMoAttributeValuesResult_3* result) {
    Host& host = Host::current();
    if (dn == nullptr || attributes == nullptr || result == nullptr || !host.world.exists(dn)) {
        return OrvNotExist;
    }
    unsigned int count = 0;
    while (attributes[count] != nullptr) {
        ++count;
    }
    auto memory = std::make_unique<Orv::AutoMemory>();
    auto** const containers = memory->malloc<Container*>(count + 1);
    for (unsigned int at = 0; at < count; ++at) {
        containers[at] = memory->malloc<Container>(1);
        fillHonestly(*containers[at], dn, attributes[at], *memory);
    }
    host.gifts.give(std::move(memory), containers, true, *result);
    return OrvOk;
}

OrvReturnT openHonestly(const char* dn, const char* className, unsigned long long* iterator) {
    Host& host = Host::current();
    if (iterator == nullptr) {
        return OrvInvalidArgument;
    }
    host.iterations.emplace_back();
    host.iterations.back().names = host.world.children(orEmpty(dn), orEmpty(className));
    *iterator = host.iterations.size();
    return OrvOk;
}

/// Names that are none, and children without end, until the host has had enough.
OrvReturnT lieOfName(char** result, ByteSource& details) {
    Host& host = Host::current();
    constexpr unsigned int kMost = 200;
    if (result == nullptr || ++host.inventedChildren > kMost) {
        return OrvOk;
    }
    if (host.iterations.empty()) {
        host.iterations.emplace_back();
    }
    Host::Iteration& any = host.iterations.front();
    any.shown = std::make_unique<std::string>(details.below(2) == 0 ? "1" : details.text());
    *result = any.shown->data();
    return OrvOk;
}

OrvReturnT nextHonestly(unsigned long long iterator, char** result) {
    Host& host = Host::current();
    if (iterator == 0 || iterator > host.iterations.size() || result == nullptr) {
        return OrvInvalidArgument;
    }
    Host::Iteration& iteration = host.iterations[iterator - 1];
    iteration.shown.reset();
    if (iteration.at < iteration.names.size()) {
        iteration.shown = std::make_unique<std::string>(iteration.names[iteration.at++]);
    }
    *result = iteration.shown ? iteration.shown->data() : nullptr;
    return OrvOk;
}

OrvReturnT createHonestly(const char* dn, const char* className, const char* attrName,
                          const char* attrValue, OrvMoNamedAttributeValueContainer_3** attributes) {
    if (className == nullptr || attrName == nullptr || attrValue == nullptr) {
        return OrvInvalidArgument;
    }
    Host& host = Host::current();
    const std::string step = std::string(className) + "=" + attrValue;
    const std::string parent = orEmpty(dn);
    const std::string created = parent.empty() ? step : parent + "," + step;
    const OrvReturnT code = host.world.create(created);
    for (; code == OrvOk && attributes != nullptr && *attributes != nullptr; ++attributes) {
        host.world.set(created.c_str(), (*attributes)->name, &(*attributes)->value);
    }
    return code;
}

void writeNamed(OrvMoNamedAttributeValueContainer_3** attributes) {
    Journal& journal = Host::current().journal;
    for (; attributes != nullptr && *attributes != nullptr; ++attributes) {
        journal.text((*attributes)->name).value(&(*attributes)->value);
    }
}

/// Writes of version 3 happen in transactions that the component has joined.
void checkJoined(unsigned long txHandle) {
    const Host& host = Host::current();
    require(host.joins.count(txHandle) != 0,
            std::string("a write without having joined: ") + host.operation);
}

/// One table; \p First is the slot of its first function.
template <Slot First>
struct Router3 {
    static constexpr Slot slot(Slot ofRouter) {
        return static_cast<Slot>(static_cast<int>(ofRouter) - static_cast<int>(Slot::RouterSet) +
                                 static_cast<int>(First));
    }
    static Journal& call(const char* name, unsigned long txHandle) {
        Host& host = Host::current();
        host.journal.call(First == Slot::RouterSet ? "router" : "vek").word(name);
        return host.journal.number(static_cast<long long>(txHandle - host.firstHandle));
    }

    static OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                     const Container* value) {
        call("set", txHandle).text(dn).text(attrName).value(value);
        checkJoined(txHandle);
        Host& host = Host::current();
        return host.play(slot(Slot::RouterSet),
                         [&] { return host.world.set(dn, attrName, value); });
    }
    static OrvReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                     OrvMoAttributeValueResult_3* result) {
        call("get", txHandle).text(dn).text(attrName);
        return Host::current().play(
            slot(Slot::RouterGet), [&] { return getHonestly(dn, attrName, result); },
            [&](ByteSource& details) { return Host::current().gifts.giveAny(result, details); });
    }
    static OrvReturnT getMoAttributes(unsigned long txHandle, const char* dn,
                                      const char** attrNames,
                                      OrvMoAttributeValuesResult_3* result) {
        call("getMany", txHandle).text(dn);
        return Host::current().play(
            slot(Slot::RouterGetMany), [&] { return getManyHonestly(dn, attrNames, result); },
            [&](ByteSource& details) { return Host::current().gifts.giveAny(result, details); });
    }
    static OrvReturnT newMoIterator(unsigned long txHandle, const char* dn, const char* className,
                                    unsigned long long* iterator) {
        call("iterate", txHandle).text(dn).text(className);
        return Host::current().play(
            slot(Slot::RouterIterate), [&] { return openHonestly(dn, className, iterator); },
            [&](ByteSource& details) {
                if (iterator != nullptr) {
                    *iterator = details.number(8);
                }
                return OrvOk;
            });
    }
    static OrvReturnT nextMo(unsigned long long iterator, char** result) {
        call("next", Host::current().firstHandle).number(static_cast<long long>(iterator));
        return Host::current().play(
            slot(Slot::RouterNext), [&] { return nextHonestly(iterator, result); },
            [&](ByteSource& details) { return lieOfName(result, details); });
    }
    static OrvReturnT createMo(unsigned long txHandle, const char* dn, const char* className,
                               const char* attrName, const char* attrValue,
                               OrvMoNamedAttributeValueContainer_3** attributes) {
        call("create", txHandle).text(dn).text(className).text(attrName).text(attrValue);
        checkJoined(txHandle);
        writeNamed(attributes);
        return Host::current().play(slot(Slot::RouterCreate), [&] {
            return createHonestly(dn, className, attrName, attrValue, attributes);
        });
    }
    static OrvReturnT deleteMo(unsigned long txHandle, const char* dn) {
        call("delete", txHandle).text(dn);
        checkJoined(txHandle);
        return Host::current().play(slot(Slot::RouterDelete),
                                    [&] { return Host::current().world.remove(orEmpty(dn)); });
    }
    static OrvReturnT action(unsigned long txHandle, const char* dn, const char* name,
                             OrvMoNamedAttributeValueContainer_3** parameters,
                             OrvMoAttributeValueResult_3* result) {
        call("action", txHandle).text(dn).text(name);
        checkJoined(txHandle);
        writeNamed(parameters);
        return Host::current().play(
            slot(Slot::RouterAction), [&] { return getHonestly(dn, name, result); },
            [&](ByteSource& details) { return Host::current().gifts.giveAny(result, details); });
    }
    static OrvReturnT finalizeMoIterator(unsigned long long iterator) {
        call("finalize", Host::current().firstHandle).number(static_cast<long long>(iterator));
        return Host::current().play(slot(Slot::RouterFinalize), [] { return OrvOk; });
    }
    static OrvReturnT existsMo(unsigned long txHandle, const char* dn, bool* exists) {
        call("exists", txHandle).text(dn);
        Host& host = Host::current();
        return host.play(
            slot(Slot::RouterExists),
            [&] {
                const bool isThere = host.world.exists(orEmpty(dn));
                if (!isThere) {
                    host.missed.insert(orEmpty(dn));
                }
                return answerExists(isThere ? 1 : 0, exists);
            },
            [&](ByteSource& details) {
                host.missed.insert(orEmpty(dn));
                return answerExists(details.byte(), exists);
            });
    }
    static OrvReturnT countMoChildren(unsigned long txHandle, const char* dn, const char* className,
                                      unsigned long long* count) {
        call("count", txHandle).text(dn).text(className);
        return Host::current().play(slot(Slot::RouterCount), [&] {
            if (count != nullptr) {
                *count = Host::current().world.children(orEmpty(dn), orEmpty(className)).size();
            }
            return OrvOk;
        });
    }

    static OrvOamSpiManagedObject_3 table(const char* service, const char* interface) {
        return {{service, interface, "3"},
                &setMoAttribute,
                &getMoAttribute,
                &getMoAttributes,
                &newMoIterator,
                &nextMo,
                &createMo,
                &deleteMo,
                &action,
                &finalizeMoIterator,
                &existsMo,
                &countMoChildren};
    }

private:
    static OrvReturnT answerExists(std::uint8_t byte, bool* exists) {
        if (exists != nullptr) {
            std::memcpy(exists, &byte, sizeof(byte)); // any byte but zero may stand for a yes
        }
        return OrvOk;
    }
};

OrvReturnT setMoAttributes(unsigned long txHandle, const char* dn,
                           VekMoNamedAttributeValueContainer_3** attributes) {
    Router3<Slot::RouterSet>::call("setMany", txHandle).text(dn);
    checkJoined(txHandle);
    writeNamed(attributes);
    Host& host = Host::current();
    return host.play(Slot::RouterSetMany, [&] {
        OrvReturnT code = OrvOk;
        for (; code == OrvOk && attributes != nullptr && *attributes != nullptr; ++attributes) {
            code = host.world.set(dn, (*attributes)->name, &(*attributes)->value);
        }
        return code;
    });
}

}

OrvOamSpiManagedObject_3* router3() {
    static OrvOamSpiManagedObject_3 table =
        Router3<Slot::RouterSet>::table("OrvOamSpiCmRouterService", "OrvOamSpiManagedObject");
    return &table;
}

OrvOamSpiManagedObject_3* vekRouter3() {
    static OrvOamSpiManagedObject_3 table =
        Router3<Slot::VekSet>::table("VekOamSpiCmRouterService", "VekOamSpiManagedObject");
    return &table;
}

VekOamSpiManagedObject_3_1* router3_1() {
    static VekOamSpiManagedObject_3_1 table = {
        {"VekOamSpiCmRouterService", "VekOamSpiManagedObject", "3_1"}, &setMoAttributes};
    return &table;
}

}
