// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ModelNotes.h"

#include <algorithm>
#include <utility>

namespace OrvHost {

void ModelNotes::count(const std::string& what, const SourcePosition& source,
                       const std::string& place) {
    const auto found = std::find_if(mCounted.begin(), mCounted.end(),
                                    [&what](const Counted& c) { return c.what == what; });
    if (found != mCounted.end()) {
        ++found->times;
        return;
    }
    mCounted.push_back({what, 1, source, place});
}

void ModelNotes::add(const SourcePosition& source, std::string text) {
    mNotes.push_back({source, std::move(text)});
}

std::vector<Problem> ModelNotes::take() && {
    for (const Counted& counted : mCounted) {
        const std::string more =
            counted.times > 1 ? " and at " + std::to_string(counted.times - 1) + " more places"
                              : "";
        mNotes.push_back({counted.source, counted.what + ": at " + counted.place + more});
    }
    return std::move(mNotes);
}

}
