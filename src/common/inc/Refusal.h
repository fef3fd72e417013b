// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_COMMON_REFUSAL_H
#define ORV_COMMON_REFUSAL_H

#include "OrvReturn.h"
#include "Portal.h"
#include "VekMgmtSpiThreadContext_2.h"

#include <exception>
#include <string>

/// \file
/// How an interceptor says why it refuses. Conventions: OrvConventions.h.

namespace Orv {

/// Gives the client that the calling thread works for the reason of a refusal, and returns \p code:
/// `return Orv::refuse(OrvValidationFailed, "a locked cell has nothing to shut down");`. The
/// component passes both on as they are.
///
/// In:      \p code, not OrvOk. \p reason for people, UTF-8: what is refused, why, and what would
///          be accepted. The client knows which object it has asked for. If there are other DNs in
///          the text, they are internal, as in all messages, and not every host translates them.
/// Without: if the host has no thread context, or does not take the message, the client gets the
///          code alone. Portal logs a thread context that is missing. A std::exception of the host
///          is dropped, because the code is what counts; any other exception passes.
/// When:    within the operation that is refused, on its thread, after the host has attached its
///          lookup to Orv::Portal. Not for an operation that succeeds: hosts do not show that.
inline OrvReturnT refuse(OrvReturnT code, const std::string& reason) {
    constexpr int whyRefused = 1;
    try {
        const VekMgmtSpiThreadContext_2* context =
            Portal::instance()->getInterface<VekMgmtSpiThreadContext_2>(
                VekMgmtSpiThreadContext_2_Id);
        if (context != nullptr && context->addMessage != nullptr) {
            context->addMessage(whyRefused, reason.c_str());
        }
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): see above
    }
    return code;
}

}

#endif
