// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InterceptorFunctions.h"

#include <dlfcn.h>

namespace OrvRecord {

namespace {

#define ORV_REPOSITORY "_ZN21OrvExtCmRouterService26ExtCmInterceptorRepository"
#define ORV_TEXT "RKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE"

constexpr const char* kConstruct = ORV_REPOSITORY "C1Ev";
constexpr const char* kDestroy = ORV_REPOSITORY "D1Ev";
constexpr const char* kEnter = ORV_REPOSITORY "13registerClassERNS_17MoInterceptorBaseE" ORV_TEXT;
constexpr const char* kRemove = ORV_REPOSITORY "15deregisterClassE" ORV_TEXT;
constexpr const char* kFind = ORV_REPOSITORY "14getInterceptorE" ORV_TEXT;

template <class Function>
bool find(void* library, const char* name, Function*& function) {
    function = reinterpret_cast<Function*>(dlsym(library, name));
    return function != nullptr;
}

}

std::optional<InterceptorFunctions> findInterceptorFunctions(void* library) {
    InterceptorFunctions functions{};
    const bool isComplete =
        find(library, kConstruct, functions.construct) &&
        find(library, kDestroy, functions.destroy) && find(library, kEnter, functions.enter) &&
        find(library, kRemove, functions.remove) && find(library, kFind, functions.find);
    return isComplete ? std::optional(functions) : std::nullopt;
}

}
