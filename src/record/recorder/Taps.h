// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_RECORDER_TAPS_H
#define ORV_RECORD_RECORDER_TAPS_H

#include "CallFrame.h"
#include "GivenResults.h"
#include "Interceptors.h"

#include <algorithm>
#include <mutex>
#include <tuple>
#include <utility>

/// \file
/// Tables that stand in front of other tables and record what is called.

namespace OrvRecord {

/// Calls \p callee with \p arguments and records it. \p Codecs are those of the arguments.
template <class... Codecs, class Callee, class... Arguments>
OrvReturnT recordedCall(const CallName& name, const Callee& callee, Arguments... arguments) {
    CallFrame frame(name);
    if (!frame.isRecorded()) {
        return callee(arguments...);
    }
    frame.begin([&](ByteWriter& out) { (Codecs::in(out, arguments), ...); });
    const OrvReturnT code = frame.watch([&] { return callee(arguments...); });
    frame.end(static_cast<std::uint32_t>(code), [&]([[maybe_unused]] Outcome<ByteWriter> outcome) {
        ((isWrittenAfter<Codecs>(code, name.side) ? Codecs::out(outcome, arguments, name.side)
                                                  : void()),
         ...);
    });
    if (code == OrvOk) {
        [[maybe_unused]] const auto keep = [&](auto* given, auto& release) {
            keepForRelease(name.side, frame.call(), given, release);
        };
        (Codecs::adopt(arguments, keep), ...);
    }
    return code;
}

/// How many tables of one shape are told apart on one side. A component sees one or two.
constexpr int kMostTables = 4;

template <class Table, Side side, int instance>
struct Tapped {
    inline static const Table* real = nullptr;
    inline static Table table{};
};

template <class SlotType, Side side, int instance, std::uint8_t number,
          class Fn = typename SlotType::Fn>
struct Tap;

template <auto member, class... Codecs, Side side, int instance, std::uint8_t number,
          class... Arguments>
struct Tap<Slot<member, Codecs...>, side, instance, number, OrvReturnT (*)(Arguments...)> {
    using Table = typename Slot<member, Codecs...>::Table;

    static OrvReturnT call(Arguments... arguments) {
        constexpr CallName name{side, SlotsOf<Table>::shape, number,
                                static_cast<std::uint32_t>(instance)};
        if constexpr (side == Side::Component && isIntercepted(name.shape, number)) {
            if (!followInterceptor(std::get<1>(std::tie(arguments...)))) {
                return OrvFailure; // what the component answers when its own lookup fails
            }
        }
        return recordedCall<Codecs...>(name, Tapped<Table, side, instance>::real->*member,
                                       arguments...);
    }
};

/// Puts the taps of \p Table into a copy of \p real.
template <class Table, Side side, int instance>
void tapTable(const Table* real) {
    using Place = Tapped<Table, side, instance>;
    Place::real = real;
    Place::table = *real;
    const auto each = [&]<class... Slots, std::size_t... numbers>(SlotList<Slots...>,
                                                                  std::index_sequence<numbers...>) {
        const auto one = []<class SlotType, std::uint8_t number>() {
            if (Place::real->*SlotType::member != nullptr) {
                Place::table.*SlotType::member = &Tap<SlotType, side, instance, number>::call;
            }
        };
        (one.template operator()<Slots, static_cast<std::uint8_t>(numbers)>(), ...);
    };
    using List = typename SlotsOf<Table>::List;
    each(List{}, std::make_index_sequence<std::size(SlotsOf<Table>::names)>{});
}

/// What stands in front of a table, and which number it has.
template <class Table>
struct Front {
    Table* table = nullptr; ///< null: there were more tables than kMostTables
    std::uint32_t instance = 0;
};

/// Guards which tables are tapped.
std::mutex& tapMutex();

/// The table that stands in front of \p real, the same each time. What stands in front of
/// something already is answered as it is.
template <class Table, Side side, int instance = 0>
Front<Table> inFrontOf(Table* real) {
    if constexpr (instance < kMostTables) {
        using Place = Tapped<Table, side, instance>;
        {
            const std::lock_guard lock(tapMutex());
            if (Place::real == nullptr) {
                tapTable<Table, side, instance>(real);
            }
        }
        if (Place::real == real || &Place::table == real) {
            return {&Place::table, instance};
        }
        return inFrontOf<Table, side, instance + 1>(real);
    } else {
        return {};
    }
}

}

#endif
