// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Interceptors.h"

#include "LoadedComponent.h"
#include "support/Require.h"

#include <iterator>

namespace Fuzz {

namespace {

constexpr const char* kPaths[] = {"ManagedElement,Unit", "ManagedElement",
                                  "ManagedElement,Unit,Cell", "ManagedElement,Part", ""};

}

/// Asked by all interceptors of the run.
class Interceptors::Observer : public Scripted::InterceptorObserver {
public:
    explicit Observer(Host& host) : mHost(host) {}

    bool hasRouter = true;

    OrvReturnT getMoAttribute(unsigned long, const char* dn, const char* attrName,
                              OrvMoAttributeValueResult_3* result, const Base& base) override {
        mHost.journal.call("interceptor get").text(dn).text(attrName);
        return mHost.play(
            Slot::InterceptorGet, [&] { return passOn(base); },
            [&](ByteSource& details) { return mHost.gifts.giveAny(result, details); });
    }
    OrvReturnT getMoAttributes(unsigned long, const char* dn, const char**,
                               OrvMoAttributeValuesResult_3* result, const Base& base) override {
        mHost.journal.call("interceptor getMany").text(dn);
        return mHost.play(
            Slot::InterceptorGetMany, [&] { return passOn(base); },
            [&](ByteSource& details) { return mHost.gifts.giveAny(result, details); });
    }
    OrvReturnT setMoAttribute(unsigned long, const char* dn, const char* attrName,
                              const OrvMoAttributeValueContainer_3* value,
                              const Base& base) override {
        require(value != nullptr, "an interceptor is given no value");
        mHost.journal.call("interceptor set").text(dn).text(attrName).value(value);
        return mHost.play(Slot::InterceptorSet, [&] { return passOn(base); });
    }
    OrvReturnT setMoAttributes(unsigned long, const char* dn,
                               OrvMoNamedAttributeValueContainer_3** attributes,
                               const Base& base) override {
        mHost.journal.call("interceptor setMany").text(dn).number(attributes != nullptr ? 1 : 0);
        return mHost.play(Slot::InterceptorSetMany, [&] { return passOn(base); });
    }

private:
    /// Without a router there is nobody to pass anything on to.
    OrvReturnT passOn(const Base& base) const { return hasRouter ? base() : OrvNotActive; }

    Host& mHost;
};

Interceptors::Interceptors(Host& host) : mObserver(std::make_unique<Observer>(host)) {}

Interceptors::~Interceptors() {
    for (const auto& interceptor : mInterceptors) {
        for (const char* const path : kPaths) {
            interceptor->deregisterClass(path);
        }
    }
}

void Interceptors::enter(ByteSource& source) {
    constexpr std::size_t kMost = 4;
    const char* const path = kPaths[source.below(std::size(kPaths))];
    if (mInterceptors.size() == kMost) {
        return;
    }
    std::unique_ptr<Scripted::Interceptor> made(
        LoadedComponent::instance().makeInterceptor(mObserver.get()));
    try {
        made->initialize();
    } catch (const std::exception&) {
        return;
    } catch (const OtherException&) {
        return;
    }
    if (made->repository() == nullptr) {
        return;
    }
    mObserver->hasRouter =
        mObserver->hasRouter && made->router3() != nullptr && made->router3_1() != nullptr;
    const bool isFree = made->getInterceptor(path) == nullptr;
    const OrvReturnT code = made->registerClass(path);
    require(code == (isFree ? OrvOk : OrvAlreadyExist), "registered in another way");
    mInterceptors.push_back(std::move(made));
}

void Interceptors::takeOut(ByteSource& source) {
    const char* const path = kPaths[source.below(std::size(kPaths))];
    if (!mInterceptors.empty()) {
        mInterceptors.front()->deregisterClass(path);
        require(mInterceptors.front()->getInterceptor(path) == nullptr, "not taken out");
    }
}

}
