// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SOURCE_FEATURES_H
#define ORV_HOST_YANG_SOURCE_FEATURES_H

#include "base/Problem.h"

#include <libyang/libyang.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace OrvHost {

/// Which features of the modules to load are on.
struct FeatureSelection {
    /// Modules of which only these features are on.
    std::map<std::string, std::vector<std::string>> byModule;
    /// Whether the features of the other modules that are loaded by name are on, or none.
    bool areOthersOn = true;
};

struct FeatureResult {
    std::vector<Problem> problems;
    /// Modules whose features are selected and that are only imported. The library takes them into
    /// the model for it; their data is not meant.
    std::set<std::string> borrowed;
};

/// Switches features on in \p context, in which \p modules are loaded, with all features off, and
/// not yet compiled. Where all features are to be on, one whose `if-feature` is false stays off.
FeatureResult switchFeatures(ly_ctx* context, const std::vector<std::string>& modules,
                             const FeatureSelection& selection);

}

#endif
