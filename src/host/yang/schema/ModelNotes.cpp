// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ModelNotes.h"

#include <utility>

namespace OrvHost {

void ModelNotes::count(const std::string& what, const SourcePosition& source,
                       const std::string& place) {
    const auto [known, isNew] = mPosition.emplace(toText(Problem{source, what}), mCounted.size());
    if (isNew) {
        mCounted.push_back({what, 1, source, place});
    } else {
        ++mCounted[known->second].times;
    }
}

void ModelNotes::add(const SourcePosition& source, std::string text) {
    mNotes.push_back({source, std::move(text)});
}

std::vector<Problem> ModelNotes::take() && {
    for (const Counted& counted : mCounted) {
        const std::string more = counted.times > 1
                                     ? " and at " + std::to_string(counted.times - 1) +
                                           (counted.times > 2 ? " more places" : " more place")
                                     : "";
        mNotes.push_back({counted.source, counted.what + ": at " + counted.place + more});
    }
    return std::move(mNotes);
}

}
