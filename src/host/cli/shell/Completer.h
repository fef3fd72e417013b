// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SHELL_COMPLETER_H
#define ORV_HOST_CLI_SHELL_COMPLETER_H

#include "base/DnView.h"
#include "cli/commands/CommandTable.h"
#include "model/Model.h"

#include <string>
#include <vector>

namespace OrvHost {

class Session;

/// What the last word of a line could be completed to.
struct Completion {
    std::size_t start = 0;               ///< where the last word begins
    std::vector<std::string> candidates; ///< whole words, in order, unquoted
    bool canGoOn = false;                ///< a candidate can be the beginning of a longer word
    std::size_t shownFrom = 0;           ///< a list of candidates need not repeat what is before it
};

/// Completes commands, DNs, classes, attributes, their values, actions, transactions, files and
/// options. Objects are looked up through the component, as a command does it. One thread at a
/// time.
class Completer {
public:
    /// Both must outlive this object.
    Completer(Session& session, const CommandTable& commands)
        : mSession(session), mCommands(commands) {}

    /// Completes the word at the end of \p line. If anything fails, the result is empty.
    Completion complete(const std::string& line);

private:
    std::vector<std::string> candidates(std::vector<std::string> words);
    std::vector<std::string> candidatesOf(WordKind kind, const std::vector<std::string>& words);
    std::vector<std::string> assignments(const std::vector<AttributeDef>& all,
                                         const std::string& word);
    std::vector<std::string> values(const AttributeDef& def, const std::string& typed);
    std::string parentOf(DnView dn, const std::string& here) const;
    void addClasses(DnView dn, const std::string& parent, std::vector<std::string>& result) const;
    std::vector<std::string> dns(const std::string& word, const std::string& here);
    std::vector<std::string> classesAndAttributes(const std::string& word);
    std::vector<std::string> files(const std::string& word);

    Session& mSession;
    const CommandTable& mCommands;
    bool mCanGoOn = false;
    std::size_t mShownFrom = 0;
};

/// The longest common prefix of \p words.
std::string commonPrefix(const std::vector<std::string>& words);

}

#endif
