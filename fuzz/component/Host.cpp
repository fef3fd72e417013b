// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Host.h"

#include "OrvException.h"

#include <new>
#include <stdexcept>

namespace Fuzz {

Host::Host(const std::uint8_t* data, std::size_t size, ByteSource& source, unsigned long first)
    : model(source), world(source), mischief(data, size), firstHandle(first) {
    mischief.read(source);
    sCurrent = this;
}

Host::~Host() {
    sCurrent = nullptr;
}

void Host::begin(const char* name) {
    operation = name;
    mAnswers.fill({});
    mListSteps = 0;
    inventedChildren = 0;
    hasThrown = false;
    hasThrownOther = false;
    journal.word(name).end();
}

void Host::end() {
    gifts.endOperation(operation);
}

bool Host::stepsOn(bool isLong) {
    // Each repeat of an association is edited again, and each edit copies a list that grows.
    constexpr unsigned int kMost = 200;
    constexpr unsigned int kEndless = 1200000;
    if (isLong && isPatient) {
        return ++mLongListSteps < kEndless;
    }
    return ++mListSteps < kMost;
}

void Host::forgetTransaction(unsigned long txHandle) {
    joins.erase(txHandle);
    givenInVersion1.erase(txHandle);
}

OrvReturnT Host::answered(Slot slot, OrvReturnT code) {
    mAnswers[static_cast<std::size_t>(slot)] = {true, false, code};
    journal.number(code).end();
    return code;
}

void Host::thrown(Slot slot, ByteSource details, bool isOther) {
    mAnswers[static_cast<std::size_t>(slot)] = {true, true, OrvFailure};
    journal.word("throws").end();
    hasThrown = true;
    if (isOther) {
        hasThrownOther = true;
        throw OtherException{};
    }
    switch (details.byte() / 4 % 4) {
    case 0:
        throw std::runtime_error("of the host");
    case 1:
        throw std::bad_alloc();
    case 2:
        throw Orv::OrvException(-77, "of the host");
    default:
        throw std::logic_error("of the host");
    }
}

}
