// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Stage.h"

#include "HostCode.h"

#include <cstdint>
#include <deque>

namespace Scripted {

namespace {

// The two version "3" routers are one implementation under two names in the journal.
constexpr char kRouter3[] = "Router3.";
constexpr char kVekRouter3[] = "VekRouter3.";

// What version 1 hands out stays until the program ends: nobody gives it back.
OrvMoAttributeValueContainer* keptForVersion1(const Value& value) {
    static std::mutex mutex;
    static Records1 records;
    const std::lock_guard<std::mutex> guard(mutex);
    return records.container(value);
}

std::string labelOf(const char* dn, const char* attrName) {
    return std::string(dn) + "." + attrName;
}

template <const char* Name>
struct Router3Functions {
    static OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                     const OrvMoAttributeValueContainer_3* value) {
        Stage& stage = Stage::current();
        return play("setMoAttribute", {arg(txHandle), arg(dn), arg(attrName), arg(value)}, nullptr,
                    [&] { return stage.world.set(dn, attrName, *readValue(value)); });
    }

    static OrvReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                     OrvMoAttributeValueResult_3* result) {
        Stage& stage = Stage::current();
        bool given = false;
        const OrvReturnT code = play(
            "getMoAttribute", {arg(txHandle), arg(dn), arg(attrName)}, result, [&]() -> OrvReturnT {
                const std::optional<Value> value = stage.world.attribute(dn, attrName);
                if (!value) {
                    return OrvNotExist;
                }
                stage.results.give(labelOf(dn, attrName), *value, *result);
                given = true;
                return OrvOk;
            });
        if (code != OrvOk && given) {
            stage.results.forgive(result->container);
        }
        return code;
    }

    static OrvReturnT getMoAttributes(unsigned long txHandle, const char* dn,
                                      const char** attrNames,
                                      OrvMoAttributeValuesResult_3* result) {
        Stage& stage = Stage::current();
        bool given = false;
        const OrvReturnT code =
            play("getMoAttributes", {arg(txHandle), arg(dn), arg(attrNames)}, result,
                 [&]() -> OrvReturnT {
                     std::vector<Value> values;
                     for (const char** name = attrNames; *name != nullptr; ++name) {
                         const std::optional<Value> value = stage.world.attribute(dn, *name);
                         if (!value) {
                             return OrvNotExist;
                         }
                         values.push_back(*value);
                     }
                     stage.results.giveAll(dn, values, *result);
                     given = true;
                     return OrvOk;
                 });
        if (code != OrvOk && given) {
            stage.results.forgive(result->containers);
        }
        return code;
    }

    static OrvReturnT newMoIterator(unsigned long txHandle, const char* dn, const char* className,
                                    unsigned long long* iterator) {
        Stage& stage = Stage::current();
        return play("newMoIterator", {arg(txHandle), arg(dn), arg(className)}, iterator, [&] {
            *iterator = stage.iterations.open(stage.world.children(dn, className));
            return OrvOk;
        });
    }

    static OrvReturnT nextMo(unsigned long long iterator, char** result) {
        return play("nextMo", {arg(iterator)}, result,
                    [&] { return Stage::current().iterations.next(iterator, result); });
    }

    static OrvReturnT createMo(unsigned long txHandle, const char* dn, const char* className,
                               const char* attrName, const char* attrValue,
                               OrvMoNamedAttributeValueContainer_3** attributes) {
        Stage& stage = Stage::current();
        return play("createMo",
                    {arg(txHandle), arg(dn), arg(className), arg(attrName), arg(attrValue),
                     arg(attributes)},
                    nullptr, [&] {
                        const std::string step = std::string(className) + "=" + attrValue;
                        return stage.world.create(childDn(dn, step), readNamed(attributes));
                    });
    }

    static OrvReturnT deleteMo(unsigned long txHandle, const char* dn) {
        return play("deleteMo", {arg(txHandle), arg(dn)}, nullptr,
                    [&] { return Stage::current().world.remove(dn); });
    }

    /// The ordinary action does nothing and has no result.
    static OrvReturnT action(unsigned long txHandle, const char* dn, const char* name,
                             OrvMoNamedAttributeValueContainer_3** parameters,
                             OrvMoAttributeValueResult_3* result) {
        return play("action", {arg(txHandle), arg(dn), arg(name), arg(parameters)}, result, [&] {
            *result = OrvMoAttributeValueResult_3{nullptr, nullptr};
            return OrvOk;
        });
    }

    static OrvReturnT finalizeMoIterator(unsigned long long iterator) {
        return play("finalizeMoIterator", {arg(iterator)}, nullptr,
                    [&] { return Stage::current().iterations.finalize(iterator); });
    }

    static OrvReturnT existsMo(unsigned long txHandle, const char* dn, bool* exists) {
        return play("existsMo", {arg(txHandle), arg(dn)}, exists, [&] {
            *exists = Stage::current().world.exists(dn);
            return OrvOk;
        });
    }

    static OrvReturnT countMoChildren(unsigned long txHandle, const char* dn, const char* className,
                                      unsigned long long* count) {
        return play("countMoChildren", {arg(txHandle), arg(dn), arg(className)}, count, [&] {
            *count = Stage::current().world.children(dn, className).size();
            return OrvOk;
        });
    }

    static OrvReturnT play(const char* function, std::vector<Argument> arguments, void* out,
                           const Act& act) {
        return Stage::current().script.play(
            Call{std::string(Name) + function, std::move(arguments), out}, act);
    }

    static OrvOamSpiManagedObject_3 table(const char* service, const char* interface) {
        return {{service, interface, "3"},   asHostCode<&setMoAttribute>,
                asHostCode<&getMoAttribute>, asHostCode<&getMoAttributes>,
                asHostCode<&newMoIterator>,  asHostCode<&nextMo>,
                asHostCode<&createMo>,       asHostCode<&deleteMo>,
                asHostCode<&action>,         asHostCode<&finalizeMoIterator>,
                asHostCode<&existsMo>,       asHostCode<&countMoChildren>};
    }
};

OrvReturnT setMoAttributes3_1(unsigned long txHandle, const char* dn,
                              VekMoNamedAttributeValueContainer_3** attributes) {
    Stage& stage = Stage::current();
    return stage.script.play(
        Call{"Router3_1.setMoAttributes", {arg(txHandle), arg(dn), arg(attributes)}, nullptr},
        [&]() -> OrvReturnT {
            if (!stage.world.exists(dn)) {
                return OrvNotExist;
            }
            for (const auto& [name, value] : readNamed(attributes)) {
                stage.world.set(dn, name, value);
            }
            return OrvOk;
        });
}

OrvReturnT play1(const char* function, std::vector<Argument> arguments, void* out, const Act& act) {
    return Stage::current().script.play(
        Call{std::string("Router1.") + function, std::move(arguments), out}, act);
}

OrvReturnT setMoAttribute1(unsigned long txHandle, const char* dn, const char* attrName,
                           const OrvMoAttributeValueContainer* value) {
    return play1("setMoAttribute", {arg(txHandle), arg(dn), arg(attrName), arg(value)}, nullptr,
                 [&] { return Stage::current().world.set(dn, attrName, *readValue(value)); });
}

OrvReturnT getMoAttribute1(unsigned long txHandle, const char* dn, const char* attrName,
                           OrvMoAttributeValueContainer** result) {
    return play1(
        "getMoAttribute", {arg(txHandle), arg(dn), arg(attrName)}, result, [&]() -> OrvReturnT {
            const std::optional<Value> value = Stage::current().world.attribute(dn, attrName);
            if (!value) {
                return OrvNotExist;
            }
            *result = keptForVersion1(*value);
            return OrvOk;
        });
}

// A handle of version 1 is a pointer that points nowhere.
void* asPointer(unsigned long long handle) {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(handle));
}

OrvReturnT newMoIterator1(unsigned long txHandle, const char* dn, const char* className,
                          void** iterator) {
    Stage& stage = Stage::current();
    return play1("newMoIterator", {arg(txHandle), arg(dn), arg(className)}, iterator, [&] {
        *iterator = asPointer(stage.iterations.open(stage.world.children(dn, className)));
        return OrvOk;
    });
}

OrvReturnT nextMo1(void* iterator, char** result) {
    const auto handle = static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(iterator));
    return play1("nextMo", {arg(handle)}, result,
                 [&] { return Stage::current().iterations.next(handle, result); });
}

OrvReturnT createMo1(unsigned long txHandle, const char* dn, const char* className,
                     const char* attrName, const char* attrValue) {
    return play1("createMo",
                 {arg(txHandle), arg(dn), arg(className), arg(attrName), arg(attrValue)}, nullptr,
                 [&] {
                     const std::string step = std::string(className) + "=" + attrValue;
                     return Stage::current().world.create(childDn(dn, step), {});
                 });
}

OrvReturnT deleteMo1(unsigned long txHandle, const char* dn) {
    return play1("deleteMo", {arg(txHandle), arg(dn)}, nullptr,
                 [&] { return Stage::current().world.remove(dn); });
}

/// The ordinary action answers its first parameter, or an empty value if it has none.
OrvReturnT action1(unsigned long txHandle, const char* dn, const char* name,
                   OrvMoAttributeValueContainer** parameters,
                   OrvMoAttributeValueContainer** result) {
    return play1("action", {arg(txHandle), arg(dn), arg(name), arg(parameters)}, result, [&] {
        *result = keptForVersion1(*parameters == nullptr ? none(0) : *readValue(*parameters));
        return OrvOk;
    });
}

}

OrvOamSpiManagedObject_1* router1Table() {
    static OrvOamSpiManagedObject_1 table = {
        {"OrvOamSpiCmRouterService", "OrvOamSpiManagedObject", "1"},
        asHostCode<&setMoAttribute1>,
        asHostCode<&getMoAttribute1>,
        asHostCode<&newMoIterator1>,
        asHostCode<&nextMo1>,
        asHostCode<&createMo1>,
        asHostCode<&deleteMo1>,
        asHostCode<&action1>};
    return &table;
}

OrvOamSpiManagedObject_3* router3Table() {
    static OrvOamSpiManagedObject_3 table =
        Router3Functions<kRouter3>::table("OrvOamSpiCmRouterService", "OrvOamSpiManagedObject");
    return &table;
}

OrvOamSpiManagedObject_3* vekRouter3Table() {
    static OrvOamSpiManagedObject_3 table =
        Router3Functions<kVekRouter3>::table("VekOamSpiCmRouterService", "VekOamSpiManagedObject");
    return &table;
}

VekOamSpiManagedObject_3_1* router3_1Table() {
    static VekOamSpiManagedObject_3_1 table = {
        {"VekOamSpiCmRouterService", "VekOamSpiManagedObject", "3_1"},
        asHostCode<&setMoAttributes3_1>};
    return &table;
}

}
