// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_RUNTIME_COMPONENTLOADERROR_H
#define ORV_HOST_RUNTIME_COMPONENTLOADERROR_H

#include "OrvReturn.h"

#include <stdexcept>
#include <string>

namespace OrvHost {

/// The reason why a shared object could not be loaded as a component. what() begins with the path.
class ComponentLoadError : public std::runtime_error {
public:
    enum class Reason {
        NotALibrary,       ///< no file, not a shared object, or its own libraries are missing
        AlreadyLoaded,     ///< the same file is open as a component
        MissingEntryPoint, ///< one of the two exported functions is not there
        InitRefused,       ///< orvLCMinit answered a code: see code()
        InitThrew          ///< orvLCMinit threw an exception
    };

    ComponentLoadError(Reason reason, const std::string& path, const std::string& text,
                       OrvReturnT code = OrvFailure)
        : std::runtime_error(path + ": " + text), mReason(reason), mCode(code) {}

    Reason reason() const { return mReason; }
    OrvReturnT code() const { return mCode; }

private:
    Reason mReason;
    OrvReturnT mCode;
};

}

#endif
