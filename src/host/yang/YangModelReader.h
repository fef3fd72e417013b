// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_YANGMODELREADER_H
#define ORV_HOST_YANG_YANGMODELREADER_H

#include "model/ModelError.h"
#include "yang/YangSchema.h"

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// What modules of YANG say.
struct YangModel {
    Model model;
    /// What the readers and writers of instance data need besides. Lives as long as they do.
    std::shared_ptr<const YangSchema> schema;
    /// What the modules say and the model leaves out, for people; nothing that stops anybody.
    std::vector<ModelProblem> notes;
};

/// Reads several YANG 1.1 modules into one model. docs/models-in-yang.md tells how a model is
/// written; the module orv-associations is always found.
///
/// One thread at a time.
class YangModelReader {
public:
    /// Adds a directory, with all below it, to search for modules: those named here and those that
    /// are imported. Directories are searched in the order in which they were added.
    YangModelReader& searchIn(std::filesystem::path directory);

    /// A module to load, by its name, or by the path of its file: whatever ends in ".yang" or holds
    /// a "/". What it imports is looked for beside that file too.
    YangModelReader& load(std::string module);

    /// A module that has no file. It is offered to imports, and loaded if load() names it.
    /// `label` stands for its file in messages.
    YangModelReader& offerText(std::string name, std::string label, std::string text);

    /// \throws ModelError with all that is wrong, each with file and line as far as they are known:
    /// modules that are missing or malformed, classes of one name, associations whose ends do not
    /// agree.
    YangModel read() const;

private:
    struct Text {
        std::string name;
        std::string label;
        std::string text;
    };

    std::vector<std::filesystem::path> mSearchPath;
    std::vector<std::string> mModules;
    std::vector<Text> mTexts;
};

}

#endif
