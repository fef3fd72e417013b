// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_COMPONENT_ARGUMENTS_H
#define ORV_FUZZ_COMPONENT_ARGUMENTS_H

#include "AutoMemory.h"
#include "Names.h"
#include "ValueMaker.h"

#include <cstdint>
#include <string>

namespace Fuzz {

/// What a client hands over in one call, made from bytes. It goes with this object, right after the
/// call, so that code that keeps a part of it is found. Any pointer can be null.
class Arguments {
public:
    explicit Arguments(ByteSource& source) : mSource(source) {
        constexpr std::uint8_t kSomeNull = 200; // and above
        mNulls = mSource.byte() >= kSomeNull ? mSource.byte() : std::uint8_t{0};
    }

    const char* dn() { return text(makeDn(mSource, Form::External)); }
    const char* className() { return text(makeClass(mSource)); }
    const char* attribute() { return text(makeAttribute(mSource)); }
    const char* namingValue() { return text(makeNamingValue(mSource)); }

    /// For an out parameter: \p out, or null.
    template <class Out>
    Out* out(Out& place) {
        return isNull() ? nullptr : &place;
    }

    template <class Version>
    typename Version::Container* value() {
        auto* const made = ValueMaker<Version>(mSource, mMemory, Form::External).container();
        return isNull() ? nullptr : made;
    }

    /// Parameters of version 1, ended by a null pointer.
    OrvMoAttributeValueContainer** values() {
        const auto count = static_cast<unsigned int>(mSource.below(4));
        auto** const made = mMemory.malloc<OrvMoAttributeValueContainer*>(count + 1);
        for (unsigned int at = 0; at < count; ++at) {
            made[at] = ValueMaker<Version1>(mSource, mMemory, Form::External).container();
        }
        return isNull() ? nullptr : made;
    }

    OrvMoNamedAttributeValueContainer_3** named() {
        constexpr std::uint8_t kNameless = 250; // and above
        const auto count = static_cast<unsigned int>(mSource.below(4));
        auto** const made = mMemory.malloc<OrvMoNamedAttributeValueContainer_3*>(count + 1);
        for (unsigned int at = 0; at < count; ++at) {
            made[at] = mMemory.malloc<OrvMoNamedAttributeValueContainer_3>(1);
            const bool isNameless = mSource.byte() >= kNameless;
            made[at]->name = isNameless ? nullptr : mMemory.strdup(makeAttribute(mSource).c_str());
            ValueMaker<Version3>(mSource, mMemory, Form::External).fill(made[at]->value, 0);
        }
        return isNull() ? nullptr : made;
    }

    /// Names of attributes, ended by a null pointer.
    const char** names() {
        const auto count = static_cast<unsigned int>(mSource.below(5));
        auto** const made = mMemory.malloc<const char*>(count + 1);
        for (unsigned int at = 0; at < count; ++at) {
            made[at] = mMemory.strdup(makeAttribute(mSource).c_str());
        }
        return isNull() ? nullptr : made;
    }

private:
    bool isNull() {
        const bool isNext = mNulls % 2 == 1;
        mNulls = static_cast<std::uint8_t>(mNulls / 2);
        return isNext;
    }
    const char* text(const std::string& made) {
        return isNull() ? nullptr : mMemory.strdup(made.c_str());
    }

    ByteSource& mSource;
    Orv::AutoMemory mMemory;
    std::uint8_t mNulls;
};

}

#endif
