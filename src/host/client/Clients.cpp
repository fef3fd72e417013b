// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Clients.h"

#include "base/Suggestion.h"

namespace OrvHost {

std::vector<std::string> Clients::versions() {
    return {"1", "3", "3_1"};
}

void Clients::cancelBy(const CancellationToken* token) {
    for (const Known& known : mKnown) {
        known.second->cancelBy(token);
    }
}

void Clients::choose(const std::string& version) {
    for (Known& known : mKnown) {
        if (known.first == version) {
            mChosen = &known;
            return;
        }
    }
    throw RequestError("there is no interface version '" + version +
                       "'; versions: " + enumerate(versions()));
}

}
