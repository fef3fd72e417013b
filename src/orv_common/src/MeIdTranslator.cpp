// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MeIdTranslator.h"

#include <algorithm>
#include <cstddef>
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
    const std::size_t delimiter = dn.find_first_of("=,", rootClass.size());
    return delimiter != std::string_view::npos && dn[delimiter] == '=' ? delimiter + 1 : 0;
}

// The DN with `to` as the value of its first step, if that step is a ManagedElement with the value
// `from`. Empty if it is one with another value; the DN itself if it is none. Every call of a
// client comes through here.
std::string exchangeRootValue(const std::string& dn, std::string_view from, std::string_view to) {
    if (!beginsWithRoot(dn)) {
        return dn;
    }
    const std::string_view text(dn);
    const std::size_t value =
        dn[rootClass.size()] == '=' ? rootClass.size() + 1 : startOfRootValue(text);
    const std::size_t end = value + from.size();
    // Without an identity nothing outside corresponds to the root, in either direction.
    if (value == 0 || from.empty() || to.empty() || end > text.size() ||
        text.compare(value, from.size(), from) != 0 || (end < text.size() && text[end] != ',')) {
        return {};
    }
    std::string exchanged(text.size() - from.size() + to.size(), '\0');
    char* const exchangedValue = std::copy_n(text.data(), value, exchanged.data());
    char* const exchangedEnd = std::copy_n(to.data(), to.size(), exchangedValue);
    std::copy_n(text.data() + end, text.size() - end, exchangedEnd);
    return exchanged;
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
