// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MeIdTranslator.h"

#include <cstddef>
#include <mutex>
#include <shared_mutex>
#include <string_view>

namespace Orv {

namespace {

constexpr std::string_view rootClass = "ManagedElement";
constexpr std::string_view internalIdentity = "1";

// True if the first step is of the class ManagedElement, in the form `Class=value` or
// `Class.attr=value`, or cut short after the class.
bool beginsWithRoot(std::string_view dn) {
    if (dn.substr(0, rootClass.size()) != rootClass) {
        return false;
    }
    const std::string_view rest = dn.substr(rootClass.size());
    return rest.empty() || rest.front() == '=' || rest.front() == '.' || rest.front() == ',';
}

// The DN with the value of its first step exchanged; empty if that is not `from`.
std::string exchangeRootValue(std::string_view dn, std::string_view from, std::string_view to) {
    const std::size_t stepEnd = dn.find(',');
    const std::string_view step = dn.substr(0, stepEnd);
    const std::size_t equals = step.find('=');
    // Without an identity nothing outside corresponds to the root, in either direction.
    if (from.empty() || to.empty() || equals == std::string_view::npos ||
        step.substr(equals + 1) != from) {
        return {};
    }
    std::string exchanged;
    exchanged.reserve(dn.size() - from.size() + to.size());
    exchanged.append(step.substr(0, equals + 1)).append(to);
    if (stepEnd != std::string_view::npos) {
        exchanged.append(dn.substr(stepEnd));
    }
    return exchanged;
}

}

MeIdTranslator* MeIdTranslator::instance() {
    static MeIdTranslator theInstance;
    return &theInstance;
}

void MeIdTranslator::start() {}

void MeIdTranslator::stop() {}

std::string MeIdTranslator::toInternalDn(const std::string& dn) {
    if (!beginsWithRoot(dn)) {
        return dn;
    }
    const std::shared_lock<std::shared_mutex> guard(mMutex);
    return exchangeRootValue(dn, chosenIdentity(), internalIdentity);
}

std::string MeIdTranslator::toExternalDn(const std::string& dn) {
    if (!beginsWithRoot(dn)) {
        return dn;
    }
    const std::shared_lock<std::shared_mutex> guard(mMutex);
    return exchangeRootValue(dn, internalIdentity, chosenIdentity());
}

const char* MeIdTranslator::identity() {
    const std::shared_lock<std::shared_mutex> guard(mMutex);
    return chosenIdentity().c_str();
}

void MeIdTranslator::configure(const std::string& preferred, const std::string& fallback) {
    const std::lock_guard<std::shared_mutex> guard(mMutex);
    mPreferredIdentity = preferred;
    mFallbackIdentity = fallback;
}

const std::string& MeIdTranslator::chosenIdentity() const {
    return mPreferredIdentity.empty() ? mFallbackIdentity : mPreferredIdentity;
}

}
