// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SETUP_PROJECTFILE_H
#define ORV_HOST_CLI_SETUP_PROJECTFILE_H

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace OrvHost {

/// A project file or a variable that cannot be used: what() names it, and says why.
class ProjectError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What a project file and the environment add to the command line.
struct ProjectSettings {
    std::vector<std::string> arguments; ///< options with their values, to put in front
    std::vector<std::string> notes;     ///< for people: what was read, what was left out
};

/// The settings for \p arguments, the words of a command line. An option that is on the command
/// line is taken from nowhere else; one that is in the environment (`ORVHOST_ME_ID` for --me-id) is
/// not taken from the project file.
///
/// The file is that of `--project`, or orvhost.toml in the working folder; an empty name means
/// none. Paths in it are relative to its folder. A file that was found by itself loads no shared
/// object unless it was trusted: with `--trust`, which remembers it in the home directory until it
/// is changed. Throws ProjectError.
ProjectSettings projectSettings(const CLI::App& app, const std::vector<std::string>& arguments);

/// Writes a template of a project file into the working folder. Throws ProjectError if there is one
/// already, FileError if it cannot be written.
void writeProjectTemplate();

/// The name of a project file.
extern const char* const kProjectFile;

}

#endif
