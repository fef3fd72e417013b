// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SOURCE_MODULEFINDER_H
#define ORV_HOST_YANG_SOURCE_MODULEFINDER_H

#include "model/ModelError.h"
#include "yang/source/ModuleStatements.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

/// A module or submodule that was found or offered.
struct ModuleSource {
    std::string name;
    std::string file; ///< as given or found, for messages
    std::string text;
    ModuleStatements statements;
};

/// Finds modules and submodules by name: first those that were offered, then those on the search
/// path, in its order, subdirectories included. If a directory has several revisions of one module,
/// the newest is taken. Keeps what it has found.
///
/// One thread at a time.
class ModuleFinder {
public:
    explicit ModuleFinder(std::vector<std::filesystem::path> searchPath);

    /// Offers a module by its text. `label` is used as the file name in messages.
    void addText(const std::string& name, std::string label, std::string text);

    /// Reads a file and offers it under the module name in the file, which it returns. The file's
    /// directory, without those below it, is added to the end of the search path.
    /// \throws ModelError if the file cannot be read or is not a module.
    std::string addFile(const std::filesystem::path& file);

    /// The module with that name, and with that revision unless it is empty; null if there is none.
    const ModuleSource* find(const std::string& name, const std::string& revision);

    /// The modules that were found, or offered, so far.
    const std::map<std::string, ModuleSource>& found() const { return mFound; }

    /// The files of all modules and submodules on the search path.
    std::vector<std::filesystem::path> allFiles();

    /// True if find() did not find that module.
    bool wasMissed(const std::string& name) const;

    /// The modules that find() did not find.
    const std::vector<std::string>& missed() const { return mMissed; }

    /// The problems with the search path, or with a file on it.
    const std::vector<Problem>& problems() const { return mProblems; }

    /// "looked for NAME.yang in DIR, DIR": where find() has searched.
    std::string describeSearch(const std::string& name) const;

private:
    struct Directory {
        std::filesystem::path path;
        /// The files by module name and revision. The revision is empty if the file name has none.
        std::map<std::string, std::map<std::string, std::filesystem::path>> files;
        bool withSubdirectories = true;
        bool isScanned = false;
    };

    static void scan(Directory& directory);
    std::optional<std::filesystem::path> locate(const std::string& name,
                                                const std::string& revision);

    bool mHasSearchPath;
    std::vector<Directory> mDirectories;
    std::map<std::string, ModuleSource> mFound;
    std::vector<std::string> mMissed;
    std::vector<Problem> mProblems;
};

}

#endif
