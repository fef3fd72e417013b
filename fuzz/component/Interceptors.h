// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_COMPONENT_INTERCEPTORS_H
#define ORV_FUZZ_COMPONENT_INTERCEPTORS_H

#include "Host.h"
#include "Interceptor.h"

#include <memory>
#include <string>
#include <vector>

namespace Fuzz {

/// The interceptors of one run. They pass on to the router what the mischief does not keep.
class Interceptors {
public:
    explicit Interceptors(Host& host);
    ~Interceptors();

    /// Registers a new interceptor, or takes one out, for a path that \p source chooses.
    void enter(ByteSource& source);
    void takeOut(ByteSource& source);

private:
    class Observer;

    std::unique_ptr<Observer> mObserver;
    std::vector<std::unique_ptr<Scripted::Interceptor>> mInterceptors;
};

}

#endif
