// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_CODECS_H
#define ORV_RECORD_CODECS_H

#include "OrvMgmtSpiComponent_1.h"
#include "OrvReturn.h"
#include "Show.h"
#include "Values.h"

#include <cstring>
#include <map>
#include <string>
#include <type_traits>
#include <unordered_set>

/// \file
/// How each kind of argument of a slot is written, read and shown. A codec is a type with static
/// functions:
///
///     in       writes what goes in; of an out parameter, whether the pointer is there
///     out      writes what came out, after OrvOk
///     load     makes the argument of a call that is played: what went in, or a place for what
///              comes out
///     fill     writes into the place of the caller what came out
///     showIn   what `in` has written, for people
///     showOut  what `out` has written, for people
///     adopt    shows what came out to somebody who takes it over

namespace OrvRecord {

/// Who is called: the component by its client, or the host or an interceptor by the component.
enum class Side : std::uint8_t { Component, Host };

/// True if what came out in an argument with the codec \p Codec is written and read after \p code.
template <class Codec>
constexpr bool isWrittenAfter(OrvReturnT code, Side side) {
    return code == OrvOk || (Codec::isAlwaysWritten && side == Side::Host);
}

/// The handles that a component gave when it was recorded, and those that it gives now.
using HandleMap = std::map<std::uint64_t, std::uint64_t>;

/// Texts that live as long as this object, each once.
using TextPool = std::unordered_set<std::string>;

/// What a codec needs to make arguments and answers.
struct LoadContext {
    Arena& arena;    ///< for arguments, and for results that are given
    Arena& lasting;  ///< for values that the callee goes on owning
    TextPool& texts; ///< for texts of that kind
    const HandleMap& handles;
};

/// What came out: `values` are to be the same each time, `handles` need not.
template <class Bytes>
struct Outcome {
    Bytes& values;
    Bytes& handles;
};

template <class Number>
std::uint64_t toNumber(Number value) {
    if constexpr (std::is_pointer_v<Number>) {
        return reinterpret_cast<std::uintptr_t>(value);
    } else {
        return static_cast<std::uint64_t>(value);
    }
}

template <class Number>
Number fromNumber(std::uint64_t value) {
    if constexpr (std::is_pointer_v<Number>) {
        // The slots of version "1" carry handles as pointers.
        // NOLINTNEXTLINE(performance-no-int-to-ptr)
        return reinterpret_cast<Number>(static_cast<std::uintptr_t>(value));
    } else {
        return static_cast<Number>(value);
    }
}

/// What all codecs for arguments that go in have in common.
struct InCodec {
    static constexpr bool isAlwaysWritten = false;
    template <class Argument>
    static void out(Outcome<ByteWriter>, Argument, Side) {}
    template <class Argument>
    static void fill(Outcome<ByteReader>, Argument, LoadContext&, Side) {}
    static void showOut(ByteReader&, std::string&) {}
    template <class Argument, class Adopter>
    static void adopt(Argument, const Adopter&) {}
};

/// What all codecs for out parameters have in common.
template <class Derived>
struct OutCodec {
    /// Also after a failure: the component reads what a host has left in a variable of its own.
    static constexpr bool isAlwaysWritten = false;
    template <class Argument>
    static void in(ByteWriter& out, Argument place) {
        out.byte(place != nullptr ? 1 : 0);
    }
    template <class Argument>
    static Argument load(ByteReader& in, LoadContext& context) {
        using Place = std::remove_pointer_t<Argument>;
        if (in.byte() == 0) {
            return nullptr;
        }
        return std::pmr::polymorphic_allocator<>(&context.arena).new_object<Place>();
    }
    static void showIn(ByteReader& in, std::string& text) {
        if (in.byte() == 0) {
            text += "null";
        }
    }
    template <class Argument>
    static void out(Outcome<ByteWriter> outcome, Argument place, Side side) {
        if (place != nullptr) {
            Derived::write(outcome, place, side);
        }
    }
    template <class Argument>
    static void fill(Outcome<ByteReader> outcome, Argument place, LoadContext& context, Side side) {
        if (place != nullptr && !outcome.values.atEnd()) {
            Derived::read(outcome, place, context, side);
        }
    }
    template <class Argument, class Adopter>
    static void adopt(Argument, const Adopter&) {}
};

struct Number : InCodec {
    template <class Argument>
    static void in(ByteWriter& out, Argument value) {
        out.number(toNumber(value));
    }
    template <class Argument>
    static Argument load(ByteReader& in, LoadContext&) {
        return fromNumber<Argument>(in.number());
    }
    static void showIn(ByteReader& in, std::string& text) { text += std::to_string(in.number()); }
};

/// A handle that the component may have given.
struct Handle : Number {
    template <class Argument>
    static Argument load(ByteReader& in, LoadContext& context) {
        const std::uint64_t recorded = in.number();
        const auto found = context.handles.find(recorded);
        return fromNumber<Argument>(found == context.handles.end() ? recorded : found->second);
    }
};

struct Text : InCodec {
    static void in(ByteWriter& out, const char* text) { out.text(text); }
    template <class Argument>
    static Argument load(ByteReader& in, LoadContext& context) {
        std::string_view text;
        return in.text(text) ? copyText(text, context.arena) : nullptr;
    }
    static void showIn(ByteReader& in, std::string& text) { showText(in, text); }
};

/// A pointer of which only is written whether it is there.
struct Present : InCodec {
    static void in(ByteWriter& out, const void* pointer) { out.byte(pointer != nullptr ? 1 : 0); }
    static void showIn(ByteReader& in, std::string& text) {
        text += in.byte() != 0 ? "present" : "null";
    }
};

/// The identity of an interface.
struct Identity : InCodec {
    static void in(ByteWriter& out, const OrvMgmtSpiInterface_1& id) {
        out.text(id.componentName);
        out.text(id.interfaceName);
        out.text(id.interfaceVersion);
    }
    static void showIn(ByteReader& in, std::string& text) {
        for (const char* separator : {"", " ", " "}) {
            text += separator;
            showText(in, text);
        }
    }
};

/// What a component says of itself: its name and what it offers.
struct ComponentRecord : InCodec {
    static void in(ByteWriter& out, const OrvMgmtSpiComponent_1* record) {
        out.text(record != nullptr ? record->componentName : nullptr);
        for (VekMgmtSpiInterface_1** offered = record != nullptr ? record->interfaceArray : nullptr;
             offered != nullptr && *offered != nullptr; ++offered) {
            out.byte(1);
            Identity::in(out, **offered);
        }
        out.byte(0);
    }
    static void showIn(ByteReader& in, std::string& text) {
        showText(in, text);
        for (const char* separator = ", which offers "; in.byte() != 0; separator = ", ") {
            text += separator;
            Identity::showIn(in, text);
        }
    }
};

struct Texts : InCodec {
    static void in(ByteWriter& out, const char* const* list) { writeTexts(out, list); }
    template <class Argument>
    static Argument load(ByteReader& in, LoadContext& context) {
        return readTexts(in, context.arena);
    }
    static void showIn(ByteReader& in, std::string& text) { showTexts(in, text); }
};

struct Value : InCodec {
    template <class Container>
    static void in(ByteWriter& out, const Container* value) {
        writeContainer(out, reinterpret_cast<const OrvMoAttributeValueContainer_3*>(value));
    }
    template <class Argument>
    static Argument load(ByteReader& in, LoadContext& context) {
        return reinterpret_cast<Argument>(readContainer(in, context.arena));
    }
    static void showIn(ByteReader& in, std::string& text) { showContainer(in, text); }
};

/// Parameters by position.
struct Values : InCodec {
    template <class Container>
    static void in(ByteWriter& out, Container* const* list) {
        writeContainers(out, reinterpret_cast<const OrvMoAttributeValueContainer_3* const*>(list));
    }
    template <class Argument>
    static Argument load(ByteReader& in, LoadContext& context) {
        return reinterpret_cast<Argument>(readContainers(in, context.arena));
    }
    static void showIn(ByteReader& in, std::string& text) { showContainers(in, text); }
};

struct NamedValues : InCodec {
    static void in(ByteWriter& out, const OrvMoNamedAttributeValueContainer_3* const* list) {
        writeNamed(out, list);
    }
    template <class Argument>
    static Argument load(ByteReader& in, LoadContext& context) {
        return readNamed(in, context.arena);
    }
    static void showIn(ByteReader& in, std::string& text) { showNamed(in, text); }
};

struct OutNumber : OutCodec<OutNumber> {
    static constexpr bool isAlwaysWritten = true;
    template <class Place>
    static void write(Outcome<ByteWriter> outcome, const Place* place, Side) {
        outcome.values.number(toNumber(*place));
    }
    template <class Place>
    static void read(Outcome<ByteReader> outcome, Place* place, LoadContext&, Side) {
        *place = fromNumber<Place>(outcome.values.number());
    }
    static void showOut(ByteReader& in, std::string& text) { text += std::to_string(in.number()); }
};

/// A handle. One that the component gives can be another one next time.
struct OutHandle : OutCodec<OutHandle> {
    template <class Place>
    static void write(Outcome<ByteWriter> outcome, const Place* place, Side side) {
        if (side == Side::Component) {
            outcome.handles.number(toNumber(*place));
        } else {
            outcome.values.number(toNumber(*place));
        }
    }
    template <class Place>
    static void read(Outcome<ByteReader> outcome, Place* place, LoadContext&, Side) {
        *place = fromNumber<Place>(outcome.values.number());
    }
    static void showOut(ByteReader& in, std::string& text) {
        text += in.atEnd() ? "a handle" : std::to_string(in.number());
    }
};

/// A flag: one byte, which need be neither 0 nor 1.
struct OutFlag : OutCodec<OutFlag> {
    static void write(Outcome<ByteWriter> outcome, const bool* place, Side) {
        std::uint8_t flag = 0;
        std::memcpy(&flag, place, 1);
        outcome.values.byte(flag);
    }
    static void read(Outcome<ByteReader> outcome, bool* place, LoadContext&, Side) {
        const std::uint8_t flag = outcome.values.byte();
        std::memcpy(place, &flag, 1);
    }
    static void showOut(ByteReader& in, std::string& text) {
        text += in.byte() != 0 ? "true" : "false";
    }
};

struct OutText : OutCodec<OutText> {
    static void write(Outcome<ByteWriter> outcome, const char* const* place, Side) {
        outcome.values.text(*place);
    }
    template <class Place>
    static void read(Outcome<ByteReader> outcome, Place* place, LoadContext& context, Side) {
        std::string_view text;
        if (!outcome.values.text(text)) {
            *place = nullptr;
            return;
        }
        // Nobody writes to it; the slot of version "3" lacks the const.
        *place = const_cast<char*>(context.texts.emplace(text).first->c_str());
    }
    static void showOut(ByteReader& in, std::string& text) { showText(in, text); }
};

/// A container that the callee goes on owning.
struct OutValue : OutCodec<OutValue> {
    template <class Container>
    static void write(Outcome<ByteWriter> outcome, Container* const* place, Side) {
        writeContainer(outcome.values,
                       reinterpret_cast<const OrvMoAttributeValueContainer_3*>(*place));
    }
    template <class Container>
    static void read(Outcome<ByteReader> outcome, Container** place, LoadContext& context, Side) {
        *place = reinterpret_cast<Container*>(readContainer(outcome.values, context.lasting));
    }
    static void showOut(ByteReader& in, std::string& text) { showContainer(in, text); }
};

/// A container that is given, and what releases it.
struct OutResult : OutCodec<OutResult> {
    static void write(Outcome<ByteWriter> outcome, const OrvMoAttributeValueResult_3* place, Side) {
        outcome.values.byte(place->release != nullptr ? 1 : 0);
        writeContainer(outcome.values, place->container);
    }
    static void read(Outcome<ByteReader> outcome, OrvMoAttributeValueResult_3* place,
                     LoadContext& context, Side) {
        place->release =
            outcome.values.byte() != 0 ? +[](OrvMoAttributeValueContainer_3*) {} : nullptr;
        place->container = readContainer(outcome.values, context.arena);
    }
    static void showOut(ByteReader& in, std::string& text) {
        const bool isGiven = in.byte() != 0;
        showContainer(in, text);
        text += isGiven ? "" : " (nothing to release)";
    }
    template <class Adopter>
    static void adopt(OrvMoAttributeValueResult_3* place, const Adopter& adopter) {
        if (place != nullptr) {
            adopter(place->container, place->release);
        }
    }
};

/// Several containers that are given, and what releases them.
struct OutResults : OutCodec<OutResults> {
    static void write(Outcome<ByteWriter> outcome, const OrvMoAttributeValuesResult_3* place,
                      Side) {
        outcome.values.byte(place->release != nullptr ? 1 : 0);
        writeContainers(outcome.values, place->containers);
    }
    static void read(Outcome<ByteReader> outcome, OrvMoAttributeValuesResult_3* place,
                     LoadContext& context, Side) {
        place->release =
            outcome.values.byte() != 0 ? +[](OrvMoAttributeValueContainer_3**) {} : nullptr;
        place->containers = readContainers(outcome.values, context.arena);
    }
    static void showOut(ByteReader& in, std::string& text) {
        const bool isGiven = in.byte() != 0;
        showContainers(in, text);
        text += isGiven ? "" : " (nothing to release)";
    }
    template <class Adopter>
    static void adopt(OrvMoAttributeValuesResult_3* place, const Adopter& adopter) {
        if (place != nullptr) {
            adopter(place->containers, place->release);
        }
    }
};

}

#endif
