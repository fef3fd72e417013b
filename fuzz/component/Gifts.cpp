// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Gifts.h"

#include "Host.h"
#include "ValueMaker.h"
#include "support/Require.h"

#include <string>

namespace Fuzz {

void Gifts::enter(std::unique_ptr<Orv::AutoMemory> memory, const void* gift, bool hasRelease) {
    mOut[gift] = {std::move(memory), ++mGiven, hasRelease && gift != nullptr};
}

void Gifts::give(std::unique_ptr<Orv::AutoMemory> memory, OrvMoAttributeValueContainer_3* container,
                 bool hasRelease, One& result) {
    result = {hasRelease ? &releaseOne : nullptr, container};
    enter(std::move(memory), container, hasRelease);
}

void Gifts::give(std::unique_ptr<Orv::AutoMemory> memory,
                 OrvMoAttributeValueContainer_3** containers, bool hasRelease, Many& result) {
    result = {hasRelease ? &releaseMany : nullptr, containers};
    enter(std::move(memory), static_cast<const void*>(containers), hasRelease);
}

OrvReturnT Gifts::giveAny(One* result, ByteSource& details) {
    const std::size_t choice = details.below(8);
    if (result != nullptr && choice == 0) {
        *result = {&releaseOne, nullptr};
    } else if (result != nullptr) {
        auto memory = std::make_unique<Orv::AutoMemory>();
        auto* const container = ValueMaker<Version3>(details, *memory, Form::Internal).container();
        give(std::move(memory), container, choice != 1, *result);
    }
    return OrvOk;
}

OrvReturnT Gifts::giveAny(Many* result, ByteSource& details) {
    const std::size_t choice = details.below(8);
    if (result != nullptr && choice == 0) {
        *result = {&releaseMany, nullptr};
    } else if (result != nullptr) {
        auto memory = std::make_unique<Orv::AutoMemory>();
        const auto count = static_cast<unsigned int>(details.below(6));
        auto** const containers = memory->malloc<OrvMoAttributeValueContainer_3*>(count + 1);
        for (unsigned int at = 0; at < count; ++at) {
            containers[at] = ValueMaker<Version3>(details, *memory, Form::Internal).container();
        }
        give(std::move(memory), containers, choice != 1, *result);
    }
    return OrvOk;
}

void Gifts::forgiveAfter(std::size_t given) {
    for (auto& [gift, record] : mOut) {
        record.mustReturn = record.mustReturn && record.number <= given;
    }
}

void Gifts::endOperation(const char* operation) {
    for (const auto& [gift, record] : mOut) {
        require(!record.mustReturn, std::string("a result is not released: ") + operation);
    }
    mOut.clear();
}

void Gifts::takeBack(const void* gift) {
    require(mOut.erase(gift) == 1,
            std::string("released twice, or never given: ") + Host::current().operation);
}

// It has been given back, even if an exception is thrown afterwards.
void Gifts::releaseOne(OrvMoAttributeValueContainer_3* container) {
    Host& host = Host::current();
    host.journal.call("release");
    host.gifts.takeBack(container);
    host.play(Slot::Release, [] { return OrvOk; });
}

void Gifts::releaseMany(OrvMoAttributeValueContainer_3** containers) {
    Host& host = Host::current();
    host.journal.call("releaseMany");
    if (containers != nullptr) {
        host.gifts.takeBack(static_cast<const void*>(containers));
    }
    host.play(Slot::Release, [] { return OrvOk; });
}

}
