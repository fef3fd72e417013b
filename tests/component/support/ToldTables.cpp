// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ToldTables.h"

#include "OrvInterfaceBinders.h"
#include "RawText.h"
#include "Steps.h"

#include <atomic>
#include <string>

namespace Scripted {

namespace {

// A result stands in the text only if it is missing.
template <class Argument>
std::string argumentText(Argument argument) {
    return rawText(argument);
}
template <class Argument>
std::string resultText(Argument result) {
    return result == nullptr ? "null" : "";
}
std::string argumentText(bool* result) {
    return resultText(result);
}
std::string argumentText(unsigned long long* result) {
    return resultText(result);
}
std::string argumentText(char** result) {
    return resultText(result);
}
std::string argumentText(void** result) {
    return resultText(result);
}
std::string argumentText(OrvMoAttributeValueResult_3* result) {
    return resultText(result);
}
std::string argumentText(OrvMoAttributeValuesResult_3* result) {
    return resultText(result);
}

void add(std::string& text, const std::string& argument) {
    text += (text.empty() || argument.empty() ? "" : ", ") + argument;
}

std::string argumentsText() {
    return "";
}
// Only the last one of this type is a result.
std::string argumentsText(OrvMoAttributeValueContainer** result) {
    return resultText(result);
}
template <class First, class... Rest>
std::string argumentsText(First first, Rest... rest) {
    std::string text = argumentText(first);
    add(text, argumentsText(rest...));
    return text;
}

// What came into the host's own memory; what lies in the component's may be anything.
template <class Argument>
std::string came(Argument /*argument*/) {
    return "";
}
std::string came(bool* result) {
    return result == nullptr ? "" : *result ? "true" : "false";
}
std::string came(unsigned long long* result) {
    return result == nullptr ? "" : std::to_string(*result);
}

template <class Slot, class... Arguments>
OrvReturnT callTold(const char* table, const char* name, Slot slot, Arguments... arguments) {
    Step step(Called::Component, [&] {
        return std::string(table) + "." + name + "(" + argumentsText(arguments...) + ")";
    });
    const OrvReturnT code = slot(arguments...);
    const HostCode here;
    std::string more;
    if (code == OrvOk) {
        (add(more, came(arguments)), ...);
    }
    return step.answered(code, more);
}

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are names, of slots and of types
#define ORV_TOLD_FUNCTION(slot)                                                                    \
    template <class... Arguments>                                                                  \
    static OrvReturnT slot(Arguments... arguments) {                                               \
        return callTold(kName, #slot, sOffered.load()->slot, arguments...);                        \
    }
#define ORV_TOLD_ENTRY(slot) made.slot = &slot;

#define ORV_TOLD_TABLE(Name, Table, SLOTS)                                                         \
    class Name {                                                                                   \
    public:                                                                                        \
        static const Table& of(const Table& offered) {                                             \
            sOffered = &offered;                                                                   \
            static const Table table = make();                                                     \
            return table;                                                                          \
        }                                                                                          \
                                                                                                   \
    private:                                                                                       \
        static Table make() {                                                                      \
            Table made = {};                                                                       \
            made.identity = Table##_ExtCmId;                                                       \
            SLOTS(ORV_TOLD_ENTRY)                                                                  \
            return made;                                                                           \
        }                                                                                          \
        SLOTS(ORV_TOLD_FUNCTION)                                                                   \
                                                                                                   \
        static constexpr const char* kName = #Table;                                               \
        static inline std::atomic<const Table*> sOffered{nullptr};                                 \
    };

ORV_TOLD_TABLE(Told1, OrvOamSpiManagedObject_1, ORV_MANAGED_OBJECT_1_SLOTS)
ORV_TOLD_TABLE(Told3, OrvOamSpiManagedObject_3, ORV_MANAGED_OBJECT_3_SLOTS)
ORV_TOLD_TABLE(Told3_1, VekOamSpiManagedObject_3_1, ORV_MANAGED_OBJECT_3_1_SLOTS)
ORV_TOLD_TABLE(ToldResource, OrvOamSpiTransactionalResource_2, ORV_TRANSACTIONAL_RESOURCE_2_SLOTS)
// NOLINTEND(bugprone-macro-parentheses)

}

const OrvOamSpiManagedObject_1& told(const OrvOamSpiManagedObject_1& offered) {
    return isStoryKept() ? Told1::of(offered) : offered;
}

const OrvOamSpiManagedObject_3& told(const OrvOamSpiManagedObject_3& offered) {
    return isStoryKept() ? Told3::of(offered) : offered;
}

const VekOamSpiManagedObject_3_1& told(const VekOamSpiManagedObject_3_1& offered) {
    return isStoryKept() ? Told3_1::of(offered) : offered;
}

const OrvOamSpiTransactionalResource_2& told(const OrvOamSpiTransactionalResource_2& offered) {
    return isStoryKept() ? ToldResource::of(offered) : offered;
}

}
