// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SETUP_COMMANDSPLIT_H
#define ORV_HOST_CLI_SETUP_COMMANDSPLIT_H

#include <map>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace OrvHost {

/// Separates the options of the program from the command: puts `--` before the first word that is
/// neither an option of \p app nor the value of one, so that all words after it belong to the
/// command. Only `--json` may stand after the command, too; `--help` or `-h` there makes it
/// `help COMMAND`. Nothing is separated if that word is one of \p verbs: those take options of the
/// program.
///
/// Throws CLI::ExtrasError for a word before the command that is no option, and if another option
/// of the program stands after the command. It would be taken for a word of the command.
std::vector<std::string> withCommandApart(const CLI::App& app,
                                          const std::vector<std::string>& arguments,
                                          const std::vector<std::string>& verbs);

/// Options with their values; that of a flag is empty.
using GivenOptions = std::map<std::string, std::string>;

/// The options of the program in \p arguments, before a command, under their long names. Of a
/// repeated one the last value.
GivenOptions givenOptions(const CLI::App& app, const std::vector<std::string>& arguments);

/// The word after those options: the command, or a verb in its place; empty if there is none.
std::string commandWord(const CLI::App& app, const std::vector<std::string>& arguments);

}

#endif
