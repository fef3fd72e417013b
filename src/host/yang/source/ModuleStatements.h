// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SOURCE_MODULESTATEMENTS_H
#define ORV_HOST_YANG_SOURCE_MODULESTATEMENTS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace OrvHost {

/// The statements of a YANG module as text, to find the line of a definition, which the YANG
/// library does not keep. Understands only the surface of the grammar (words, quoted texts, blocks,
/// comments) and accepts any text: the YANG library reports what is malformed.
///
/// Immutable after construction.
class ModuleStatements {
public:
    struct Statement {
        std::string keyword; ///< as written, with its prefix
        std::string argument;
        int line = 0;
        std::size_t parent = kNone; ///< position in statements()
        /// Its place in the text, with its block or semicolon.
        std::size_t begin = 0;
        std::size_t end = 0;
    };
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    explicit ModuleStatements(std::string_view text);

    const std::vector<Statement>& statements() const { return mStatements; }

    /// The line of the statement with that path below the module: "list Site/leaf name". The
    /// statement of an extension is given without its prefix, and arguments with single spaces. 0:
    /// there is none.
    int lineOf(const std::string& path) const;

    /// The line of the first statement with that keyword, without prefix, and argument; or 0.
    int lineOfFirst(std::string_view keyword, std::string_view argument) const;

    /// The line of the first statement that `text` mentions in quotes: an extension's by its
    /// keyword with its prefix, an import or include by the name in it. 0 if there is none.
    int lineOfMentioned(const std::string& text) const;

    /// Keyword and argument of the outermost statement; empty texts if there is none.
    const Statement& top() const;

    /// The statements with that keyword directly in the module.
    std::vector<Statement> inModule(std::string_view keyword) const;

    /// The prefix under which the module imports that other module; empty if it does not import it.
    std::string prefixOf(std::string_view importedModule) const;

private:
    void endStatement(std::size_t statement, std::size_t end);
    std::string pathOf(const Statement& statement) const;

    std::vector<Statement> mStatements;
    std::vector<std::string> mPaths; ///< of the statement at the same position
    std::unordered_map<std::string, int> mLineByPath;
};

/// `text` with each run of blanks replaced by one space: the form in which arguments over several
/// lines are compared.
std::string withSingleSpaces(std::string_view text);

/// `keyword` without its prefix.
std::string_view withoutPrefix(std::string_view keyword);

}

#endif
