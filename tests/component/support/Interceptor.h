// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_INTERCEPTOR_H
#define ORV_TESTS_COMPONENT_SUPPORT_INTERCEPTOR_H

#include "OrvMoAttributeValue.h"
#include "OrvOamSpiManagedObject_3.h"
#include "OrvReturn.h"
#include "VekOamSpiManagedObject_3_1.h"

#include <functional>
#include <string>

/// \file
/// What the test program and the probe say to each other. The probe is a shared object of its own,
/// so that nothing of the component is linked into the test program: it finds the interceptor
/// classes in whatever build of the component has been loaded before it.

namespace Scripted {

/// Sees each operation that the component asks of an interceptor; \p base is the default of the
/// base class with the same arguments. The answer is the interceptor's.
class InterceptorObserver {
public:
    using Base = std::function<OrvReturnT()>;

    InterceptorObserver() = default;
    InterceptorObserver(const InterceptorObserver&) = delete;
    InterceptorObserver& operator=(const InterceptorObserver&) = delete;
    virtual ~InterceptorObserver() = default;

    virtual OrvReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                      OrvMoAttributeValueResult_3* result, const Base& base) = 0;
    virtual OrvReturnT getMoAttributes(unsigned long txHandle, const char* dn,
                                       const char** attrNames, OrvMoAttributeValuesResult_3* result,
                                       const Base& base) = 0;
    virtual OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                      const OrvMoAttributeValueContainer_3* value,
                                      const Base& base) = 0;
    virtual OrvReturnT setMoAttributes(unsigned long txHandle, const char* dn,
                                       OrvMoNamedAttributeValueContainer_3** attributes,
                                       const Base& base) = 0;
};

/// An interceptor as a test holds it.
class Interceptor {
public:
    Interceptor() = default;
    Interceptor(const Interceptor&) = delete;
    Interceptor& operator=(const Interceptor&) = delete;
    virtual ~Interceptor() = default;

    virtual void initialize() = 0;

    // The fields of the base class.
    virtual OrvOamSpiManagedObject_3* router3() const = 0;
    virtual VekOamSpiManagedObject_3_1* router3_1() const = 0;
    virtual void* repository() const = 0;
    /// The object as the repository knows it.
    virtual const void* address() const = 0;

    // The operations of the repository that the base class found.
    virtual OrvReturnT registerClass(const std::string& mocPath) = 0;
    virtual void deregisterClass(const std::string& mocPath) = 0;
    virtual const void* getInterceptor(const std::string& mocPath) = 0;

    // The defaults of the base class.
    virtual OrvReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                      OrvMoAttributeValueResult_3* result) = 0;
    virtual OrvReturnT getMoAttributes(unsigned long txHandle, const char* dn,
                                       const char** attrNames,
                                       OrvMoAttributeValuesResult_3* result) = 0;
    virtual OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                      const OrvMoAttributeValueContainer_3* value) = 0;
    virtual OrvReturnT setMoAttributes(unsigned long txHandle, const char* dn,
                                       OrvMoNamedAttributeValueContainer_3** attributes) = 0;
    virtual OrvReturnT newMoIterator(unsigned long txHandle, const char* dn, const char* className,
                                     unsigned long long* iterator) = 0;
    virtual OrvReturnT nextMo(unsigned long long iterator, char** result) = 0;
    virtual OrvReturnT createMo(unsigned long txHandle, const char* dn, const char* className,
                                const char* attrName, const char* attrValue,
                                OrvMoNamedAttributeValueContainer_3** attributes) = 0;
    virtual OrvReturnT deleteMo(unsigned long txHandle, const char* dn) = 0;
    virtual OrvReturnT action(unsigned long txHandle, const char* dn, const char* name,
                              OrvMoNamedAttributeValueContainer_3** parameters,
                              OrvMoAttributeValueResult_3* result) = 0;
    virtual OrvReturnT finalizeMoIterator(unsigned long long iterator) = 0;
    virtual OrvReturnT existsMo(unsigned long txHandle, const char* dn, bool* exists) = 0;
    virtual OrvReturnT countMoChildren(unsigned long txHandle, const char* dn,
                                       const char* className, unsigned long long* count) = 0;
};

/// The probe's one exported function, under the name "makeInterceptor". \p observer is borrowed;
/// the caller deletes the interceptor.
using MakeInterceptor = Interceptor* (*)(InterceptorObserver* observer);

}

#endif
