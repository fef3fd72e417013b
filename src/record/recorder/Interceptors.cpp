// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Interceptors.h"

#include "DnUtil.h"
#include "InterceptorFunctions.h"
#include "MoInterceptorBase.h"
#include "Taps.h"
#include "Tell.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <utility>

namespace OrvRecord {

namespace {

using OrvExtCmRouterService::MoInterceptorBase;

/// Stands in front of what is entered under one path.
class RecordedInterceptor : public MoInterceptorBase {
public:
    explicit RecordedInterceptor(std::uint32_t number) : mNumber(number) {}

    OrvReturnT setMoAttribute(unsigned long txHandle, char const* dn, char const* attrName,
                              OrvMoAttributeValueContainer_3 const* value) override {
        return record<Number, Text, Text, Value>(0, &MoInterceptorBase::setMoAttribute, txHandle,
                                                 dn, attrName, value);
    }
    OrvReturnT getMoAttribute(unsigned long txHandle, char const* dn, char const* attrName,
                              OrvMoAttributeValueResult_3* result) override {
        return record<Number, Text, Text, OutResult>(1, &MoInterceptorBase::getMoAttribute,
                                                     txHandle, dn, attrName, result);
    }
    OrvReturnT getMoAttributes(unsigned long txHandle, char const* dn, char const** attrNames,
                               OrvMoAttributeValuesResult_3* result) override {
        return record<Number, Text, Texts, OutResults>(2, &MoInterceptorBase::getMoAttributes,
                                                       txHandle, dn, attrNames, result);
    }
    OrvReturnT setMoAttributes(unsigned long txHandle, char const* dn,
                               VekMoNamedAttributeValueContainer_3** attributes) override {
        return record<Number, Text, NamedValues>(3, &MoInterceptorBase::setMoAttributes, txHandle,
                                                 dn, attributes);
    }

    std::uint32_t number() const { return mNumber; }
    MoInterceptorBase* target() const { return mTarget; }
    /// Stays also when \p target has been taken out: operations that have begun before go on to it.
    void setTarget(MoInterceptorBase* target) { mTarget = target; }

private:
    template <class... Codecs, class Member, class... Arguments>
    OrvReturnT record(std::uint8_t slot, Member member, Arguments... arguments) {
        MoInterceptorBase* const target = mTarget;
        const auto callee = [&](Arguments... each) { return (target->*member)(each...); };
        return recordedCall<Codecs...>(CallName{Side::Host, Shape::Interceptor, slot, mNumber},
                                       callee, arguments...);
    }

    std::uint32_t mNumber;
    std::atomic<MoInterceptorBase*> mTarget{nullptr};
};

}

/// The object that is offered in place of the component's, and what was entered in that one.
class InterceptorFront {
public:
    InterceptorFront(const InterceptorFunctions& functions, VekMgmtSpiInterface_1* real)
        : mFunctions(functions), mReal(real) {
        mFunctions.construct(mMemory);
    }
    InterceptorFront(const InterceptorFront&) = delete;
    InterceptorFront& operator=(const InterceptorFront&) = delete;
    ~InterceptorFront() { mFunctions.destroy(mMemory); }

    VekMgmtSpiInterface_1* offered() { return reinterpret_cast<VekMgmtSpiInterface_1*>(mMemory); }
    VekMgmtSpiInterface_1* real() const { return mReal; }

    void follow(const std::string& path) {
        // What is found must still hold when it is acted on: the lock comes first.
        const std::lock_guard lock(mMutex);
        MoInterceptorBase* const entered = mFunctions.find(mMemory, path);
        Entry* const known = entryOf(path, entered != nullptr);
        if (known == nullptr) {
            return;
        }
        if (entered != nullptr) {
            known->front->setTarget(entered);
        }
        if (known->isEntered == (entered != nullptr)) {
            return;
        }
        // First what may fail without harm: what the component has must be known here.
        std::string event;
        if (entered != nullptr) {
            EventWriter(event).entered(known->front->number(), path);
            const OrvReturnT code = mFunctions.enter(mReal, *known->front, path);
            // It is there already if the component failed after it had taken it.
            if (code != OrvOk && code != OrvAlreadyExist) {
                throw std::runtime_error("the component does not take an interceptor");
            }
        } else {
            EventWriter(event).text(EventKind::Removed, path);
            mFunctions.remove(mReal, path);
        }
        known->isEntered = entered != nullptr;
        noteBeforeNextCall(event);
    }

private:
    struct Entry {
        std::unique_ptr<RecordedInterceptor> front;
        bool isEntered = false; ///< in the component's object
    };

    Entry* entryOf(const std::string& path, bool isToBeMade) {
        const auto found = mEntries.find(path);
        if (found != mEntries.end() || !isToBeMade) {
            return found != mEntries.end() ? &found->second : nullptr;
        }
        Entry made{std::make_unique<RecordedInterceptor>(++mLast)};
        return &mEntries.emplace(path, std::move(made)).first->second;
    }

    InterceptorFunctions mFunctions;
    VekMgmtSpiInterface_1* mReal;
    // Of another build, whose object can be of another size.
    alignas(std::max_align_t) unsigned char mMemory[4096] = {};
    std::mutex mMutex; ///< guards what follows
    std::map<std::string, Entry> mEntries;
    std::uint32_t mLast = 0;
};

namespace {

std::atomic<InterceptorFront*> theFront{nullptr};

}

VekMgmtSpiInterface_1* inFrontOfInterceptors(VekMgmtSpiInterface_1* real, void* library) {
    InterceptorFront* const before = theFront;
    if (before != nullptr && before->real() == real) {
        return before->offered();
    }
    const std::optional<InterceptorFunctions> functions = findInterceptorFunctions(library);
    if (!functions) {
        tell("interceptors are not recorded: the component exports no ExtCmInterceptorRepository");
        return real;
    }
    theFront = new InterceptorFront(*functions, real);
    return theFront.load()->offered();
}

void forgetInterceptors() {
    delete theFront.exchange(nullptr);
}

bool followInterceptor(const char* dn) {
    InterceptorFront* const front = theFront;
    if (front == nullptr || dn == nullptr) {
        return true;
    }
    try {
        front->follow(Orv::DnUtil::getMocPath(dn));
        return true;
    } catch (const std::exception&) {
        recordFile().stop("an interceptor could not be looked up");
        return false;
    }
}

}
