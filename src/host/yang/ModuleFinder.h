// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_MODULEFINDER_H
#define ORV_HOST_YANG_MODULEFINDER_H

#include "model/ModelError.h"
#include "yang/YangText.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

/// A module or submodule that was found.
struct ModuleText {
    std::string name;
    std::string file; ///< as it was told or found, for messages
    std::string text;
    YangText statements;
};

/// Finds modules and submodules by name: those that were handed over first, then those on the
/// search path, in its order, subdirectories included. Of several revisions of one module in a
/// directory the newest is taken. Keeps what it has found.
///
/// One thread at a time.
class ModuleFinder {
public:
    explicit ModuleFinder(std::vector<std::filesystem::path> searchPath);

    /// Offers a module by its text. `label` stands for the file in messages.
    void addText(const std::string& name, std::string label, std::string text);

    /// Reads a file and offers it under the name that it gives itself, which it returns. The
    /// file's directory, but none below it, joins the search path behind all others.
    /// \throws ModelError if the file cannot be read or is not a module.
    std::string addFile(const std::filesystem::path& file);

    /// The module of that name, and of that revision unless empty; null if there is none.
    const ModuleText* find(const std::string& name, const std::string& revision);

    /// The modules that were found, or offered, so far.
    const std::map<std::string, ModuleText>& found() const { return mFound; }

    /// True if find() did not find that module.
    bool wasMissed(const std::string& name) const;

    /// What was wrong with the search path, or with a file on it.
    const std::vector<ModelProblem>& problems() const { return mProblems; }

    /// "looked for NAME.yang in DIR, DIR": how find() went about it.
    std::string describeSearch(const std::string& name) const;

private:
    struct Directory {
        std::filesystem::path path;
        /// By module name and revision: the files. An empty revision stands for none in the name.
        std::map<std::string, std::map<std::string, std::filesystem::path>> files;
        bool withSubdirectories = true;
        bool isScanned = false;
    };

    static void scan(Directory& directory);
    std::optional<std::filesystem::path> locate(const std::string& name,
                                                const std::string& revision);

    std::vector<Directory> mDirectories;
    std::map<std::string, ModuleText> mFound;
    std::vector<std::string> mMissed;
    std::vector<ModelProblem> mProblems;
};

}

#endif
