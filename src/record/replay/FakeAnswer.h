// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_REPLAY_FAKEANSWER_H
#define ORV_RECORD_REPLAY_FAKEANSWER_H

#include "FakeHost.h"

#include <stdexcept>
#include <string>

// The templates of FakeHost.

namespace OrvRecord {

/// What a host threw that was no std::exception.
struct OtherException {};

template <class Write>
FakeHost::Answer FakeHost::takeCall(const CallName& name, const Write& write) {
    if (_player == nullptr || _player->isOver()) {
        return {};
    }
    Player& player = *_player;
    std::string values;
    ByteWriter bytes(values);
    write(bytes);
    const Event* const expected = player.next();
    const bool isCall = expected != nullptr && expected->kind == EventKind::Begin &&
                        expected->name.side == Side::Host;
    if (!isCall || expected->name != name || expected->values != values) {
        player.differ(isCall ? describeCall(expected->name, expected->values)
                             : "no call of the host",
                      describeCall(name, values));
        return {};
    }
    ++player.mReport.hostCalls;
    ++player.mAt;
    const Event begin = *expected;
    player.playInner();
    const Event* const end = player.isOver() ? nullptr : player.next();
    if (end == nullptr) {
        return {};
    }
    ++player.mAt;
    player.remember(begin, *end);
    if (end->kind == EventKind::Thrown) {
        if (end->isStdException) {
            throw std::runtime_error(std::string(end->values));
        }
        throw OtherException{};
    }
    return {end, begin.call};
}

template <class Given>
void FakeHost::keep(std::uint64_t call, std::unique_ptr<Arena>& memory, Given* given,
                    void (*&releaseFunction)(Given*)) {
    if (given == nullptr || releaseFunction == nullptr) {
        _player->mUnreleased.push_back(std::move(memory));
        return;
    }
    constexpr bool isOne = std::is_same_v<Given, OrvMoAttributeValueContainer_3>;
    constexpr ReleaseSlot slot = isOne ? ReleaseSlot::One : ReleaseSlot::Many;
    releaseFunction = &release<slot, Given>;
    _player->mTaken.emplace(given, Player::Taken{std::move(memory), call});
}

template <ReleaseSlot slot, class Given>
void FakeHost::release(Given* given) {
    if (_player == nullptr) {
        return;
    }
    const auto found = _player->mTaken.find(given);
    const std::uint64_t call = found == _player->mTaken.end() ? 0 : found->second.call;
    takeCall({Side::Host, Shape::Release, static_cast<std::uint8_t>(slot), 0},
             [&](ByteWriter& out) { out.number(call); });
    if (found != _player->mTaken.end()) {
        _player->mTaken.erase(found);
    }
}

template <class... Codecs, class... Arguments>
OrvReturnT FakeHost::answer(const CallName& name, Arguments... arguments) {
    const Answer given =
        takeCall(name, [&](ByteWriter& out) { (Codecs::in(out, arguments), ...); });
    if (given.end == nullptr) {
        return OrvFailure;
    }
    const auto code = static_cast<OrvReturnT>(given.end->code);
    auto memory = std::make_unique<Arena>();
    LoadContext context{*memory, _player->mLasting, _player->mTexts, _player->mHandles};
    ByteReader values(given.end->values);
    ByteReader handles(given.end->handles);
    [[maybe_unused]] const Outcome<ByteReader> outcome{values, handles};
    try {
        ((isWrittenAfter<Codecs>(code, Side::Host)
              ? Codecs::fill(outcome, arguments, context, Side::Host)
              : void()),
         ...);
    } catch (const DamagedBytes& damage) {
        _player->failHere(damage.what());
        return OrvFailure;
    }
    if (code == OrvOk) {
        [[maybe_unused]] const auto adopter = [&](auto* one, auto& releaseFunction) {
            keep(given.call, memory, one, releaseFunction);
        };
        (Codecs::adopt(arguments, adopter), ...);
    }
    return code;
}

}

#endif
