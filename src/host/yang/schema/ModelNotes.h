// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_MODELNOTES_H
#define ORV_HOST_YANG_SCHEMA_MODELNOTES_H

#include "base/Problem.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace OrvHost {

/// Collects what the modules say but the model does not represent. A statement in a grouping is at
/// as many places as the grouping is used: it is reported once, with its first place and their
/// number.
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
        std::size_t times = 1;
        SourcePosition source;
        std::string place;
    };

    std::vector<Counted> mCounted;
    std::map<std::string, std::size_t> mPosition; ///< in mCounted, by kind and source
    std::vector<Problem> mNotes;
};

}

#endif
