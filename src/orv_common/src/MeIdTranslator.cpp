// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MeIdTranslator.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <string_view>

namespace Orv {

namespace {

constexpr std::string_view rootClass = "ManagedElement";
constexpr std::string_view internalIdentity = "1";

// True if the first step is of the class ManagedElement, in the form `Class=value` or
// `Class.attr=value`, or cut short after the class.
bool beginsWithRoot(std::string_view dn) {
    if (!dn.starts_with(rootClass)) {
        return false;
    }
    const char next = dn.size() == rootClass.size() ? ',' : dn[rootClass.size()];
    return next == '=' || next == '.' || next == ',';
}

// Where the value of the first step of `dn`, which begins with the root class, stands; 0 if it has
// none.
std::size_t startOfRootValue(std::string_view dn) {
    if (dn.size() > rootClass.size() && dn[rootClass.size()] == '=') {
        return rootClass.size() + 1;
    }
    const std::size_t delimiter = dn.find_first_of("=,", rootClass.size());
    return delimiter != std::string_view::npos && dn[delimiter] == '=' ? delimiter + 1 : 0;
}

// True if `value` stands in `dn` at `start` and the step ends with it.
[[gnu::always_inline]] inline bool hasValueAt(std::string_view dn, std::size_t start,
                                              std::string_view value) {
    const std::size_t end = start + value.size();
    return end <= dn.size() && std::memcmp(dn.data() + start, value.data(), value.size()) == 0 &&
           (end == dn.size() || dn[end] == ',');
}

// The two parts of an exchange that is made in one copy. `start` is where the value stands.

// For a new value that is not longer: the text from where the new beginning will stand.
[[gnu::always_inline]] inline std::string shortened(std::string_view dn, std::size_t start,
                                                    std::size_t by, std::string_view to) {
    std::string exchanged(dn.data() + by, dn.size() - by);
    if (by != 0) {
        std::copy_n(dn.data(), start, exchanged.data());
    }
    std::copy_n(to.data(), to.size(), exchanged.data() + start);
    return exchanged;
}

std::string lengthened(std::string_view dn, std::size_t start, std::size_t by,
                       std::string_view to) {
    std::string exchanged;
    exchanged.reserve(dn.size() + by);
    exchanged.append(dn.data(), start).append(to);
    const std::size_t end = start + to.size() - by;
    return exchanged.append(dn.data() + end, dn.size() - end);
}

// The DN with `to` as the value of its first step, if that step is a ManagedElement with the value
// `from`. Empty if it is one with another value; the DN itself if it is none. Every call of a
// client comes through here; inlined, since in each direction one of the two values is a constant.
[[gnu::always_inline]] inline std::string
exchangeRootValue(const std::string& text, std::string_view from, std::string_view to) {
    const std::string_view dn(text);
    if (!beginsWithRoot(dn)) {
        return text;
    }
    const std::size_t start = startOfRootValue(dn);
    // Without an identity nothing outside corresponds to the root, in either direction.
    if (start == 0 || from.empty() || to.empty() || !hasValueAt(dn, start, from)) {
        return {};
    }
    return to.size() <= from.size() ? shortened(dn, start, from.size() - to.size(), to)
                                    : lengthened(dn, start, to.size() - from.size(), to);
}

}

MeIdTranslator::MeIdTranslator() : mChosen(&*mEverChosen.emplace("", true).first) {}

MeIdTranslator* MeIdTranslator::instance() {
    // Never destroyed: threads of the host may translate until the process has ended.
    static auto* const theInstance = new MeIdTranslator;
    return theInstance;
}

void MeIdTranslator::start() {}

void MeIdTranslator::stop() {}

std::string MeIdTranslator::toInternalDn(const std::string& dn) {
    // An identity with a comma is never the value of a step.
    const auto& [identity, canBeAValue] = *mChosen.load(std::memory_order_acquire);
    const std::string_view from = canBeAValue ? std::string_view(identity) : std::string_view();
    return exchangeRootValue(dn, from, internalIdentity);
}

std::string MeIdTranslator::toExternalDn(const std::string& dn) {
    return exchangeRootValue(dn, internalIdentity, mChosen.load(std::memory_order_acquire)->first);
}

const char* MeIdTranslator::identity() {
    return mChosen.load(std::memory_order_acquire)->first.c_str();
}

void MeIdTranslator::configure(const std::string& preferred, const std::string& fallback) {
    const std::lock_guard<std::mutex> guard(mMutex);
    const std::string& chosen = preferred.empty() ? fallback : preferred;
    const bool canBeAValue = chosen.find(',') == std::string::npos;
    mChosen.store(&*mEverChosen.emplace(chosen, canBeAValue).first, std::memory_order_release);
}

}
