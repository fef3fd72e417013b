// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_CALL_H
#define ORV_TESTS_COMPONENT_SUPPORT_CALL_H

#include "OrvMgmtSpiInterface_1.h"
#include "Value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Scripted {

/// One argument of a recorded call.
struct Argument {
    std::string text;           ///< as a person reads it
    std::uint64_t number = 0;   ///< numbers and handles
    std::optional<Value> value; ///< a deep copy of a container
    NamedValues named;          ///< a deep copy of an array of named attributes

    /// The pointer itself, to compare with: what it points at may be gone.
    const void* address = nullptr;
    /// The `values` pointer of a container, to compare with.
    const void* slots = nullptr;
};

// What the argument of a table function looks like in the journal.
Argument arg(unsigned long number);
Argument arg(unsigned long long number);
Argument arg(int number);
Argument arg(const char* text);
Argument arg(const char* const* names); ///< ended by a null pointer
Argument arg(const VekMgmtSpiInterface_1& id);
Argument arg(const OrvMoAttributeValueContainer_3* value);
Argument arg(const OrvMoAttributeValueContainer* value);
Argument arg(OrvMoAttributeValueContainer* const* values); ///< ended by a null pointer
Argument arg(OrvMoNamedAttributeValueContainer_3* const* attributes);
/// A pointer of which only the identity matters; \p text is what a person reads.
Argument arg(const void* address, std::string text);

/// One call that the scripted host got. Out parameters are no arguments.
struct Call {
    std::string name; ///< "Router3.getMoAttribute"
    std::vector<Argument> arguments;
    void* out = nullptr; ///< where the answer goes; valid during the call only

    /// "Router3.getMoAttribute(1, 'Parent=1', 'label')"
    std::string text() const;
};

}

#endif
