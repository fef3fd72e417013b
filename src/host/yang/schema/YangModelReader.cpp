// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "YangModelReader.h"

#include "yang/schema/AssociationReader.h"
#include "yang/schema/ModelNotes.h"
#include "yang/schema/SchemaWalker.h"
#include "yang/source/ModuleFinder.h"
#include "yang/source/StatementPlacement.h"
#include "yang/source/YangContext.h"

extern const char kEmbedded_orv_associations_yang[];

namespace OrvHost {
namespace {

bool isPath(const std::string& module) {
    return module.find('/') != std::string::npos ||
           std::filesystem::path(module).extension() == ".yang";
}

/// The names of the modules to load; those given as files get their names after the finder has read
/// them.
std::vector<std::string> resolve(const std::vector<std::string>& modules, ModuleFinder& finder) {
    std::vector<std::string> names;
    std::vector<Problem> problems;
    for (const std::string& module : modules) {
        try {
            names.push_back(isPath(module) ? finder.addFile(module) : module);
        } catch (const ModelError& error) {
            problems.insert(problems.end(), error.problems().begin(), error.problems().end());
        }
    }
    if (names.empty() && problems.empty()) {
        problems.push_back({{}, "no module to load was named"});
    }
    if (!problems.empty()) {
        throw ModelError(std::move(problems));
    }
    return names;
}

}

YangModelReader& YangModelReader::searchIn(std::filesystem::path directory) {
    mSearchPath.push_back(std::move(directory));
    return *this;
}

YangModelReader& YangModelReader::load(std::string module) {
    mModules.push_back(std::move(module));
    return *this;
}

YangModelReader& YangModelReader::selectFeatures(std::string module,
                                                 std::vector<std::string> names) {
    std::vector<std::string>& all = mFeatures[std::move(module)];
    all.insert(all.end(), names.begin(), names.end());
    return *this;
}

YangModelReader& YangModelReader::withoutFeatures() {
    mHasOtherFeatures = false;
    return *this;
}

YangModelReader& YangModelReader::withAllRules() {
    mHasAllRules = true;
    return *this;
}

YangModelReader& YangModelReader::offerText(std::string name, std::string label, std::string text) {
    mTexts.push_back({std::move(name), std::move(label), std::move(text)});
    return *this;
}

ModuleFinder YangModelReader::finder() const {
    ModuleFinder finder(mSearchPath);
    finder.addText(kAssociationsModule, "orv-associations.yang (built in)",
                   kEmbedded_orv_associations_yang);
    for (const Text& text : mTexts) {
        finder.addText(text.name, text.label, text.text);
    }
    return finder;
}

std::shared_ptr<YangContext> YangModelReader::readForProtocol() const {
    ModuleFinder finder = this->finder();
    const std::vector<std::string> names = resolve(mModules, finder);
    auto context = std::make_shared<YangContext>(ContextUse::Protocol);
    context->load(names, {mFeatures, mHasOtherFeatures}, finder);
    return context;
}

YangModel YangModelReader::read() const {
    ModuleFinder finder = this->finder();
    const std::vector<std::string> names = resolve(mModules, finder);
    auto context = std::make_shared<YangContext>();
    context->load(names, {mFeatures, mHasOtherFeatures}, finder);
    ignorePatternsOfReferences(*context);

    auto schema = std::make_shared<YangSchema>(context);
    ModelNotes notes;
    SchemaWalker walker(context, finder, *schema, notes);
    if (mHasAllRules) {
        walker.readAllRules();
    }
    walker.walk();
    YangModel result{walker.build(), schema, {}};
    result.notes = std::move(notes).take();
    return result;
}

}
