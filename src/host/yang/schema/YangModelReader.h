// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_YANGMODELREADER_H
#define ORV_HOST_YANG_SCHEMA_YANGMODELREADER_H

#include "model/ModelError.h"
#include "yang/schema/YangSchema.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

class ModuleFinder;

/// The result of reading YANG modules.
struct YangModel {
    Model model;
    /// The additional facts that readers and writers of instance data need. They share its
    /// ownership.
    std::shared_ptr<const YangSchema> schema;
    /// What the modules say but the model does not represent, for people; these notes are not
    /// errors.
    std::vector<Problem> notes;
};

/// Reads several YANG 1.1 modules into one model. docs/models-in-yang.md explains how to write a
/// model; the module orv-associations is always found.
///
/// One thread at a time.
class YangModelReader {
public:
    /// Adds a directory, with all those below it, to search for modules: those given to load() and
    /// those that are imported. Directories are searched in the order in which they were added.
    YangModelReader& searchIn(std::filesystem::path directory);

    /// Adds a module to load, by its name, or by the path of its file: a path is what ends in
    /// ".yang" or contains a "/". Its imports are also looked for in the directory of that file.
    YangModelReader& load(std::string module);

    /// Of that module only these features are on. It need not be named in load(), but it must be
    /// loaded: imported, for example. Without such a call all features of the modules that load()
    /// names are on.
    YangModelReader& selectFeatures(std::string module, std::vector<std::string> names);

    /// The features of all modules without a selection are off.
    YangModelReader& withoutFeatures();

    /// Reads `must`, `unique`, what leafrefs and instance-identifiers refer to, and what YANG says
    /// of equal entries of lists and leaf-lists, as rules (see rulesOf). Without this call only
    /// `when` is read.
    YangModelReader& withAllRules();

    /// Offers a module that has no file. Imports can use it, and it is loaded if load() names it.
    /// `label` is used as its file name in messages.
    YangModelReader& offerText(std::string name, std::string label, std::string text);

    /// \throws ModelError with all problems, each with file and line if these are known: modules
    /// that are missing or malformed, classes with the same name, associations whose ends do not
    /// agree.
    YangModel read() const;

    /// The same modules with the same features in a context of its own, to speak a protocol in
    /// their terms. \throws ModelError as read() does, but for what only a model can have wrong.
    std::shared_ptr<YangContext> readForProtocol() const;

private:
    struct Text {
        std::string name;
        std::string label;
        std::string text;
    };

    ModuleFinder finder() const;

    std::vector<std::filesystem::path> mSearchPath;
    std::vector<std::string> mModules;
    std::vector<Text> mTexts;
    std::map<std::string, std::vector<std::string>> mFeatures;
    bool mHasOtherFeatures = true;
    bool mHasAllRules = false;
};

}

#endif
