// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_RECORDER_INTERCEPTORS_H
#define ORV_RECORD_RECORDER_INTERCEPTORS_H

#include "Recording.h"

/// \file
/// How interceptors are recorded. The component offers an object in which interceptors enter
/// themselves with member functions that the component exports. The recorder offers one of its own
/// in its place, made by the same component. Before an operation that may be intercepted it looks
/// there, and enters in the component's object an interceptor that records and goes on to the
/// other.

namespace OrvRecord {

/// The slots whose calls the component gives to interceptors.
constexpr bool isIntercepted(Shape shape, std::uint8_t slot) {
    return (shape == Shape::Mo3 && slot <= 2) || shape == Shape::Mo3_1;
}

/// What stands in front of \p real, the object that the component offers for interceptors.
/// \p library is the component's shared object as dlopen gave it. Answers \p real, with a line in
/// the log, if the shared object lacks the functions: then interceptors are not recorded. Throws
/// std::bad_alloc.
VekMgmtSpiInterface_1* inFrontOfInterceptors(VekMgmtSpiInterface_1* real, void* library);

/// Undoes inFrontOfInterceptors, before the component is closed.
void forgetInterceptors();

/// Lets the component have an interceptor of the MO \p dn, which may be null, exactly if one is
/// entered. False if that failed, with the end of the recording: the component might then pass an
/// interceptor over that refuses what the operation is to do. Throws only what a log sink of the
/// host throws that is no std::exception, as the component's own lookup does.
bool followInterceptor(const char* dn);

}

#endif
