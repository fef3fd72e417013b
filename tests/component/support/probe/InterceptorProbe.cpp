// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Interceptor.h"

#include <orv/ExtCmInterceptorRepository.h>
#include <orv/MoInterceptorBase.h>

namespace {

using OrvExtCmRouterService::MoInterceptorBase;
using Scripted::InterceptorObserver;

/// The interceptor: hands the four operations that the component asks for to the observer.
class Probe : public MoInterceptorBase {
public:
    explicit Probe(InterceptorObserver& observer) : mObserver(observer) {}

    OrvReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              OrvMoAttributeValueResult_3* result) override {
        return mObserver.getMoAttribute(txHandle, dn, attrName, result, [&] {
            return MoInterceptorBase::getMoAttribute(txHandle, dn, attrName, result);
        });
    }
    OrvReturnT getMoAttributes(unsigned long txHandle, const char* dn, const char** attrNames,
                               OrvMoAttributeValuesResult_3* result) override {
        return mObserver.getMoAttributes(txHandle, dn, attrNames, result, [&] {
            return MoInterceptorBase::getMoAttributes(txHandle, dn, attrNames, result);
        });
    }
    OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              const OrvMoAttributeValueContainer_3* value) override {
        return mObserver.setMoAttribute(txHandle, dn, attrName, value, [&] {
            return MoInterceptorBase::setMoAttribute(txHandle, dn, attrName, value);
        });
    }
    OrvReturnT setMoAttributes(unsigned long txHandle, const char* dn,
                               VekMoNamedAttributeValueContainer_3** attributes) override {
        return mObserver.setMoAttributes(txHandle, dn, attributes, [&] {
            return MoInterceptorBase::setMoAttributes(txHandle, dn, attributes);
        });
    }

    using MoInterceptorBase::mo3_1Router;
    using MoInterceptorBase::mo3Router;
    using MoInterceptorBase::repository;

private:
    InterceptorObserver& mObserver;
};

/// The test's handle on a Probe.
class ProbeHandle : public Scripted::Interceptor {
public:
    explicit ProbeHandle(InterceptorObserver& observer) : mProbe(observer) {}

    void initialize() override { mProbe.initialize(); }
    OrvOamSpiManagedObject_3* router3() const override { return mProbe.mo3Router; }
    VekOamSpiManagedObject_3_1* router3_1() const override { return mProbe.mo3_1Router; }
    void* repository() const override { return mProbe.repository; }
    const void* address() const override { return static_cast<const MoInterceptorBase*>(&mProbe); }

    OrvReturnT registerClass(const std::string& mocPath) override {
        return mProbe.repository->registerClass(mProbe, mocPath);
    }
    void deregisterClass(const std::string& mocPath) override {
        mProbe.repository->deregisterClass(mocPath);
    }
    const void* getInterceptor(const std::string& mocPath) override {
        return mProbe.repository->getInterceptor(mocPath);
    }

    OrvReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              OrvMoAttributeValueResult_3* result) override {
        return mProbe.MoInterceptorBase::getMoAttribute(txHandle, dn, attrName, result);
    }
    OrvReturnT getMoAttributes(unsigned long txHandle, const char* dn, const char** attrNames,
                               OrvMoAttributeValuesResult_3* result) override {
        return mProbe.MoInterceptorBase::getMoAttributes(txHandle, dn, attrNames, result);
    }
    OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              const OrvMoAttributeValueContainer_3* value) override {
        return mProbe.MoInterceptorBase::setMoAttribute(txHandle, dn, attrName, value);
    }
    OrvReturnT setMoAttributes(unsigned long txHandle, const char* dn,
                               OrvMoNamedAttributeValueContainer_3** attributes) override {
        return mProbe.MoInterceptorBase::setMoAttributes(txHandle, dn, attributes);
    }
    OrvReturnT newMoIterator(unsigned long txHandle, const char* dn, const char* className,
                             unsigned long long* iterator) override {
        return mProbe.newMoIterator(txHandle, dn, className, iterator);
    }
    OrvReturnT nextMo(unsigned long long iterator, char** result) override {
        return mProbe.nextMo(iterator, result);
    }
    OrvReturnT createMo(unsigned long txHandle, const char* dn, const char* className,
                        const char* attrName, const char* attrValue,
                        OrvMoNamedAttributeValueContainer_3** attributes) override {
        return mProbe.createMo(txHandle, dn, className, attrName, attrValue, attributes);
    }
    OrvReturnT deleteMo(unsigned long txHandle, const char* dn) override {
        return mProbe.deleteMo(txHandle, dn);
    }
    OrvReturnT action(unsigned long txHandle, const char* dn, const char* name,
                      OrvMoNamedAttributeValueContainer_3** parameters,
                      OrvMoAttributeValueResult_3* result) override {
        return mProbe.action(txHandle, dn, name, parameters, result);
    }
    OrvReturnT finalizeMoIterator(unsigned long long iterator) override {
        return mProbe.finalizeMoIterator(iterator);
    }
    OrvReturnT existsMo(unsigned long txHandle, const char* dn, bool* exists) override {
        return mProbe.existsMo(txHandle, dn, exists);
    }
    OrvReturnT countMoChildren(unsigned long txHandle, const char* dn, const char* className,
                               unsigned long long* count) override {
        return mProbe.countMoChildren(txHandle, dn, className, count);
    }

private:
    Probe mProbe;
};

}

extern "C" __attribute__((visibility("default"))) Scripted::Interceptor*
makeInterceptor(InterceptorObserver* observer) {
    return new ProbeHandle(*observer);
}
