// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Features.h"

#include <algorithm>
#include <cstdint>
#include <regex>
#include <utility>

namespace OrvHost {
namespace {

/// The features of a module and of its submodules.
std::vector<const lysp_feature*> featuresOf(const lys_module& module) {
    std::vector<const lysp_feature*> features;
    std::uint32_t submodule = 0;
    const lysp_feature* feature = nullptr;
    while ((feature = lysp_feature_next(feature, module.parsed, &submodule)) != nullptr) {
        features.push_back(feature);
    }
    return features;
}

std::string namesOf(const std::vector<const lysp_feature*>& features) {
    std::string names;
    for (const lysp_feature* feature : features) {
        names += (names.empty() ? "" : ", ") + std::string(feature->name);
    }
    return names.empty() ? "it has none" : "it has " + names;
}

bool isOn(const lysp_feature& feature) {
    return (feature.flags & LYS_FENABLED) != 0;
}

/// The condition of a feature that is false as things stand, or null.
const char* falseCondition(const lysp_feature& feature) {
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; i < LY_ARRAY_COUNT(feature.iffeatures_c); ++i) {
        if (lysc_iffeature_value(&feature.iffeatures_c[i]) != LY_SUCCESS) {
            return feature.iffeatures[i].str;
        }
    }
    return nullptr;
}

/// Whether it depends on another feature that is off.
bool hasNegation(const lysp_feature& feature) {
    static const std::regex negation("\\bnot\\s");
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; i < LY_ARRAY_COUNT(feature.iffeatures); ++i) {
        if (std::regex_search(feature.iffeatures[i].str, negation)) {
            return true;
        }
    }
    return false;
}

/// Leaves the features of the module on that are named, and no other one. Whether they fit together
/// is found when the module is compiled.
void setFeatures(lys_module& module, const std::vector<std::string>& names) {
    std::vector<const char*> texts;
    texts.reserve(names.size() + 1);
    for (const std::string& name : names) {
        texts.push_back(name.c_str());
    }
    texts.push_back(nullptr);
    lys_set_implemented(&module, texts.data());
}

/// Switches on those features of the module that can be on and are not: all that depend on no other
/// one being off, or one of the others. False if there is nothing to do.
bool grow(lys_module& module, bool withNegations) {
    std::vector<std::string> names;
    bool isMore = false;
    for (const lysp_feature* feature : featuresOf(module)) {
        const bool isNew = !isOn(*feature) && falseCondition(*feature) == nullptr &&
                           (withNegations ? !isMore : !hasNegation(*feature));
        if (isOn(*feature) || isNew) {
            names.emplace_back(feature->name);
        }
        isMore = isMore || isNew;
    }
    if (isMore) {
        setFeatures(module, names);
    }
    return isMore;
}

/// A feature can depend on those of other modules, so this goes on until nothing changes. Features
/// that depend on another one being off come last, when it is known which ones are.
void switchAllOn(const std::vector<lys_module*>& modules) {
    const auto growAny = [&modules](bool withNegations) {
        bool isMore = false;
        for (lys_module* module : modules) {
            isMore = grow(*module, withNegations) || isMore;
        }
        return isMore;
    };
    while (growAny(false) || growAny(true)) {
    }
}

/// Switches on the chosen features of one module. False if it does not have them.
bool switchChosenOn(lys_module& module, const std::vector<std::string>& names,
                    std::vector<Problem>& problems) {
    const std::vector<const lysp_feature*> features = featuresOf(module);
    const std::size_t before = problems.size();
    for (const std::string& name : names) {
        const auto hasName = [&name](const lysp_feature* one) { return one->name == name; };
        if (std::none_of(features.begin(), features.end(), hasName)) {
            problems.push_back({{},
                                "the module \"" + std::string(module.name) +
                                    "\" has no feature \"" + name + "\"; " + namesOf(features)});
        }
    }
    if (problems.size() > before) {
        return false;
    }
    setFeatures(module, names);
    return true;
}

void requireConditions(const lys_module& module, std::vector<Problem>& problems) {
    for (const lysp_feature* feature : featuresOf(module)) {
        const char* condition = isOn(*feature) ? falseCondition(*feature) : nullptr;
        if (condition != nullptr) {
            problems.push_back({{},
                                "the feature \"" + std::string(feature->name) +
                                    "\" of the module \"" + module.name +
                                    "\" is chosen, but its condition is false: if-feature \"" +
                                    condition + "\""});
        }
    }
}

}

FeatureResult switchFeatures(ly_ctx* context, const std::vector<std::string>& modules,
                             const FeatureSelection& selection) {
    FeatureResult result;
    std::vector<lys_module*> chosen;
    for (const auto& [name, names] : selection.byModule) {
        lys_module* module = ly_ctx_get_module_latest(context, name.c_str());
        if (module == nullptr) {
            result.problems.push_back({{},
                                       "features of the module \"" + name +
                                           "\" are chosen, but no such module is loaded; "
                                           "load it with -m, or import it"});
            continue;
        }
        if (module->implemented == 0) {
            result.borrowed.insert(name);
        }
        if (switchChosenOn(*module, names, result.problems)) {
            chosen.push_back(module);
        }
    }
    std::vector<lys_module*> others;
    for (const std::string& name : modules) {
        if (selection.areOthersOn && selection.byModule.count(name) == 0) {
            others.push_back(ly_ctx_get_module_latest(context, name.c_str()));
        }
    }
    switchAllOn(others);
    for (const lys_module* module : chosen) {
        requireConditions(*module, result.problems);
    }
    return result;
}

}
