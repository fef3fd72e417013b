// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Portal.h"

#include "LoggingWrapper.h"

namespace Orv {

Portal* Portal::instance() {
    static Portal theInstance;
    return &theInstance;
}

Portal::LookupFn Portal::lookup() const {
    return mLookup;
}

void Portal::attach(LookupFn hostLookup) {
    detach();
    mLookup = hostLookup;
    mCacheValid = true;
}

void Portal::detach() {
    mCacheValid = false;
    mLookup = nullptr;
    mRouter3 = nullptr;
    mRouter3_1 = nullptr;
    mModelRepository = nullptr;
    mThreadContext = nullptr;
}

void Portal::logNotFound(const char* interfaceName) {
    LoggingWrapper* log = LoggingWrapper::instance();
    if (log->get_level() > 3) {
        log->log_printf("getInterface", 4, 1, "Interface %s not found", interfaceName);
        log->trace_v2_printf(Trace::Common, 4, "src/common/inc/Portal", "getInterface", __LINE__,
                             "Interface %s not found", interfaceName);
    }
}

}
