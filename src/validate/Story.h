// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_VALIDATE_STORY_H
#define ORV_VALIDATE_STORY_H

#include "MemoryFile.h"

#include <string>
#include <vector>

namespace OrvValidate {

/// What the host of one case did, as far as its process got. Threads: every operation, any thread.
class Story {
public:
    /// Throws std::system_error, as the functions below do.
    Story();

    /// The file that the process of the case must have open as kStoryDescriptor.
    int descriptor() const { return mFile.descriptor(); }

    /// The steps of the host in their order, one in a line, below each the calls that it got, and
    /// how many before them were not kept. Steps that have not returned are marked. Empty if there
    /// was no step.
    std::string text() const;
    /// The same without the calls that the host got.
    std::string steps() const;
    /// The functions of the component that have been called and have not returned, in the order
    /// of the calls.
    std::vector<std::string> underWay() const;

private:
    MemoryFile mFile;
};

}

#endif
