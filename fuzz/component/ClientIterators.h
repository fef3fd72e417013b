// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_COMPONENT_CLIENTITERATORS_H
#define ORV_FUZZ_COMPONENT_CLIENTITERATORS_H

#include "Client.h"

#include <bit>

/// \file
/// Iteration, which differs between the versions in the type of a handle only.

namespace Fuzz {

template <class Handle, class Table>
void Client::openWith(const Table& table, std::vector<Iterator>& iterators, const char* name,
                      Slot callee) {
    Arguments made(mSource);
    const unsigned long txHandle = transaction();
    const char* const dn = made.dn();
    const char* const className = made.className();
    Handle handle{};
    Handle* const out = made.out(handle);
    Demand demand;
    demand.lacks = dn == nullptr || out == nullptr;
    demand.dn = dn;
    demand.mayBeEmpty = true;
    demand.hasGate = false;
    const Outcome outcome =
        call(name, demand, [&] { return table.newMoIterator(txHandle, dn, className, out); });
    judgeByCallee(outcome, {callee}, hasJoinFailed(txHandle));
    if (outcome == OrvOk) {
        iterators.push_back({txHandle, std::bit_cast<unsigned long long>(handle), true});
    }
}

/// With a handle that has been given, or one of the other version, or one that never was.
template <class Handle, class Table>
void Client::stepWith(const Table& table, const std::vector<Iterator>& iterators,
                      const std::vector<Iterator>& others, const char* name, Slot callee) {
    Arguments made(mSource);
    const std::size_t choice = mSource.byte();
    Iterator used{0, choice, false};
    if (!iterators.empty() && choice < 192) {
        used = iterators[choice % iterators.size()];
    } else if (!others.empty() && choice < 224) {
        used = {0, others[choice % others.size()].handle, false};
    }
    char untouched[] = "untouched";
    char* child = untouched;
    char** const out = made.out(child);
    mHost.begin(name);
    Demand demand;
    demand.hasGate = false;
    demand.lacks = used.isLiving && out == nullptr;
    demand.whenStopped = OrvNotActive;
    const std::size_t calls = mHost.journal.calls();
    const Outcome outcome =
        call(name, demand, [&] { return table.nextMo(std::bit_cast<Handle>(used.handle), out); });
    if (!used.isLiving) {
        requireThat(outcome == OrvNotActive, "an iterator lives that is not");
        requireThat(mHost.journal.calls() == calls, "the host is called for nothing");
        requireThat(child == untouched, "the result is touched");
    }
    judgeByCallee(outcome, {callee}, false);
    if (outcome == OrvOk && out != nullptr) {
        mHost.journal.text(child).end();
    }
}

}

#endif
