// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The router's table of version 1.

#include "Host.h"
#include "Names.h"
#include "ValueMaker.h"

#include <bit>

namespace Fuzz {

namespace {

using Container = OrvMoAttributeValueContainer;
using Maker = ValueMaker<Version1>;

Journal& call(const char* name, unsigned long txHandle) {
    Host& host = Host::current();
    host.journal.call("router1").word(name);
    return host.journal.number(static_cast<long long>(txHandle - host.firstHandle));
}

/// What an operation hands out lives until its transaction is finished.
Orv::AutoMemory& memoryOf(unsigned long txHandle) {
    return Host::current().givenInVersion1[txHandle];
}

OrvReturnT answerHonestly(unsigned long txHandle, const char* attribute, Container** result) {
    if (result == nullptr || attribute == nullptr) {
        return OrvInvalidArgument;
    }
    Orv::AutoMemory& memory = memoryOf(txHandle);
    ByteSource none(nullptr, 0);
    Container* const value =
        Maker(none, memory, Form::Internal).references({"ManagedElement=1,Unit=1"});
    if (std::string_view(attribute).ends_with("Id")) {
        value->type = OrvMoAttributeTypeString_3;
        value->values[0].string = memory.strdup("1");
    }
    *result = value;
    return OrvOk;
}

OrvReturnT lie(unsigned long txHandle, Container** result, ByteSource& details) {
    if (result != nullptr) {
        *result = details.below(8) == 0
                      ? nullptr
                      : Maker(details, memoryOf(txHandle), Form::Internal).container();
    }
    return OrvOk;
}

OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                          const Container* value) {
    call("set", txHandle).text(dn).text(attrName).value(value);
    return Host::current().play(Slot::Router1Set, [] { return OrvOk; });
}

OrvReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                          Container** result) {
    call("get", txHandle).text(dn).text(attrName);
    return Host::current().play(
        Slot::Router1Get, [&] { return answerHonestly(txHandle, attrName, result); },
        [&](ByteSource& details) { return lie(txHandle, result, details); });
}

OrvReturnT newMoIterator(unsigned long txHandle, const char* dn, const char* className,
                         void** iterator) {
    call("iterate", txHandle).text(dn).text(className);
    unsigned long long opened = 0;
    const OrvReturnT code = Host::current().play(Slot::Router1Iterate, [&] {
        return vekRouter3()->newMoIterator(txHandle, dn, className, &opened);
    });
    *iterator = std::bit_cast<void*>(opened);
    return code;
}

OrvReturnT nextMo(void* iterator, char** result) {
    const auto opened = std::bit_cast<unsigned long long>(iterator);
    call("next", Host::current().firstHandle).number(static_cast<long long>(opened));
    return Host::current().play(Slot::Router1Next,
                                [&] { return vekRouter3()->nextMo(opened, result); });
}

OrvReturnT createMo(unsigned long txHandle, const char* dn, const char* className,
                    const char* attrName, const char* attrValue) {
    call("create", txHandle).text(dn).text(className).text(attrName).text(attrValue);
    return Host::current().play(Slot::Router1Create, [] { return OrvOk; });
}

OrvReturnT deleteMo(unsigned long txHandle, const char* dn) {
    call("delete", txHandle).text(dn);
    return Host::current().play(
        Slot::Router1Delete, [&] { return Host::current().world.remove(dn != nullptr ? dn : ""); });
}

OrvReturnT action(unsigned long txHandle, const char* dn, const char* name, Container** parameters,
                  Container** result) {
    Journal& journal = call("action", txHandle).text(dn).text(name);
    for (; parameters != nullptr && *parameters != nullptr; ++parameters) {
        journal.value(*parameters);
    }
    return Host::current().play(
        Slot::Router1Action, [&] { return answerHonestly(txHandle, name, result); },
        [&](ByteSource& details) { return lie(txHandle, result, details); });
}

}

OrvOamSpiManagedObject_1* router1() {
    static OrvOamSpiManagedObject_1 table = {
        {"OrvOamSpiCmRouterService", "OrvOamSpiManagedObject", "1"},
        &setMoAttribute,
        &getMoAttribute,
        &newMoIterator,
        &nextMo,
        &createMo,
        &deleteMo,
        &action};
    return &table;
}

}
