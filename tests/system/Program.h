// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SYSTEM_PROGRAM_H
#define ORV_TESTS_SYSTEM_PROGRAM_H

#include <filesystem>
#include <string>
#include <vector>

namespace SystemTest {

/// The result of running a program.
struct ProgramResult {
    int status = -1; ///< exit status, or -1 if a signal ended it
    std::string out;
    std::string err;
};

/// A directory that is deleted with this object.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    std::filesystem::path path() const { return mPath; }
    /// Writes a file and returns its path.
    std::string file(const std::string& name, const std::string& text) const;

private:
    std::filesystem::path mPath;
};

/// Runs orvhost in the directory of test data until it ends.
ProgramResult runOrvhost(const std::vector<std::string>& arguments, const std::string& input = {});

/// The same in the folder of \p directory, which is also the home directory.
ProgramResult runOrvhostIn(const TemporaryDirectory& directory,
                           const std::vector<std::string>& arguments);

/// The same, but its standard output goes to \p out, an existing file or device, or is closed if
/// the path is empty. The output in the result stays empty.
ProgramResult runOrvhostInto(const std::string& out, const std::vector<std::string>& arguments);

/// The same with one module, and data for it, which are written into \p directory.
ProgramResult runOrvhostOn(const TemporaryDirectory& directory, const std::string& module,
                           const std::string& data, const std::vector<std::string>& options);

/// The options that load the small model and its data, followed by \p more.
std::vector<std::string> withSite(const std::vector<std::string>& more);

/// Runs orvhost with the small model and one command line for each of \p commands.
ProgramResult runCommands(const std::vector<std::string>& commands,
                          const std::vector<std::string>& options = {});

/// The options that load the example network, followed by \p more.
std::vector<std::string> withHarbour(const std::vector<std::string>& more);

/// Runs a script on the example network, to its end even if commands fail.
ProgramResult runOnHarbour(const std::string& script, const std::vector<std::string>& options = {});

/// For the child process after fork: replaces the process by orvhost. Does not return.
[[noreturn]] void becomeOrvhost(const std::vector<std::string>& arguments,
                                const std::string& directory = TEST_DATA_DIR);

std::string readFile(const std::filesystem::path& path);

}

#endif
