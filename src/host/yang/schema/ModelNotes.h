// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_MODELNOTES_H
#define ORV_HOST_YANG_SCHEMA_MODELNOTES_H

#include "base/Problem.h"

#include <cstddef>
#include <string>
#include <vector>

namespace OrvHost {

/// Collects what the modules say but the model does not represent. Large sets of modules say the
/// same kind of thing hundreds of times: it is counted, and reported once with its first place.
class ModelNotes {
public:
    /// `what` is the kind: "`must` statements are not evaluated".
    void count(const std::string& what, const SourcePosition& source, const std::string& place);

    /// Adds a note that is not counted.
    void add(const SourcePosition& source, std::string text);

    std::vector<Problem> take() &&;

private:
    struct Counted {
        std::string what;
        std::size_t times = 0;
        SourcePosition source;
        std::string place;
    };

    std::vector<Counted> mCounted;
    std::vector<Problem> mNotes;
};

}

#endif
