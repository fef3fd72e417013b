// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_INTERCEPTORFUNCTIONS_H
#define ORV_RECORD_INTERCEPTORFUNCTIONS_H

#include "OrvReturn.h"

#include <optional>
#include <string>

namespace OrvExtCmRouterService {
class MoInterceptorBase;
}

namespace OrvRecord {

/// The functions that a component exports for its object of interceptors. A program that is to work
/// with any build looks them up by their names; linked, they would be those of one build. Each
/// takes the object first, as member functions of this platform do.
struct InterceptorFunctions {
    void (*construct)(void* memory);
    void (*destroy)(void* object);
    OrvReturnT (*enter)(void* object, OrvExtCmRouterService::MoInterceptorBase& interceptor,
                        const std::string& mocPath);
    void (*remove)(void* object, const std::string& mocPath);
    OrvExtCmRouterService::MoInterceptorBase* (*find)(void* object, const std::string& mocPath);
};

/// None if one of them is missing. \p library: the shared object as dlopen gave it.
std::optional<InterceptorFunctions> findInterceptorFunctions(void* library);

}

#endif
