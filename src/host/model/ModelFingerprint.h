// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_MODELFINGERPRINT_H
#define ORV_HOST_MODEL_MODELFINGERPRINT_H

#include "Model.h"

#include <string>
#include <vector>

namespace OrvHost {

/// One thing about a model that stored objects depend on.
struct ModelFact {
    std::string subject; ///< "attribute 'label' of class 'Node'"; no two facts have the same
    std::string text;    ///< "place 3, string, 0..1"

    bool operator==(const ModelFact&) const = default;
};

/// What stored objects, and the rules that they follow, depend on: classes, attributes in order,
/// types, enumerators, members, bounds, containment and associations; no descriptions.
std::vector<ModelFact> modelFacts(const Model& model);

/// A short text that is the same for the same facts, in every process and version of the compiler.
std::string fingerprintOf(const std::vector<ModelFact>& facts);

/// The first difference, for people: "attribute 'label' of class 'Node' was: place 3, string; it
/// is: place 4, string". Empty if there is none.
std::string firstDifference(const std::vector<ModelFact>& before,
                            const std::vector<ModelFact>& after);

}

#endif
