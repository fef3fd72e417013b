// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_ORV_COMMON_ORVEXCEPTION_H
#define ORV_ORV_COMMON_ORVEXCEPTION_H

#include "OrvReturn.h"

#include <exception>
#include <string>

namespace Orv {

/// A failure with a return code and a text built from a printf format. It never crosses a table:
/// what leaves a slot is its code, or OrvFailure. Conventions: OrvConventions.h.
///
/// Threads: as any exception object.
class OrvException : public std::exception {
public:
    /// `format` and its arguments are borrowed; the text is built at once.
    OrvException(OrvReturnT code, const char* format, ...) __attribute__((format(printf, 3, 4)));
    /// The code is OrvFailure.
    explicit OrvException(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// Owned by this object.
    const char* what() const noexcept override;
    OrvReturnT returnCode() const noexcept;

private:
    OrvReturnT mCode;
    std::string mText;
};

}

#endif
