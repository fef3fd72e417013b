// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CommandTable.h"

#include "Commands.h"
#include "Expectation.h"
#include "base/Suggestion.h"
#include "cli/errors/CliErrors.h"
#include "cli/session/Session.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace OrvHost {

// All facts about the commands are here: help, completion and the interpreter read them.
CommandTable::CommandTable()
    : mCommands{
          {.name = "exists",
           .synopsis = "DN",
           .summary = "show whether an object exists",
           .details = "Answers yes or no.\n",
           .words = {WordKind::Dn},
           .run = runExists},
          {.name = "count",
           .synopsis = "[DN [CLASS]]",
           .summary = "count children, of one class or of each",
           .details = "Without a DN, or with /, the objects at the top level are counted.\n",
           .words = {WordKind::Dn, WordKind::ChildClass},
           .run = runCount},
          {.name = "get",
           .synopsis = "DN [ATTRIBUTE...]",
           .summary = "read attributes: one, several, or all of the class",
           .details =
               R"(One attribute is printed as its bare value, a line for each of several values; more are
printed with their names. What is not set shows as -.
)",
           .words = {WordKind::Dn, WordKind::Attribute},
           .run = runGet},
          {.name = "ls",
           .synopsis = "[DN [CLASS]]",
           .summary = "list children, of one class or of all",
           .details =
               "Prints the DN of each child. Without a DN, or with /, the top level is listed.\n",
           .words = {WordKind::Dn, WordKind::ChildClass},
           .run = runList},
          {.name = "tree",
           .synopsis = "[DN] [--depth N]",
           .summary = "show an object with all that is below it",
           .details =
               R"(Without a DN, or with /, the whole tree is shown. --depth cuts it off below so many
levels; all that is below the cut is counted.
)",
           .words = {WordKind::Dn},
           .options = {"--depth"},
           .run = runTree},
          {.name = "find",
           .synopsis = "[DN] CLASS[.ATTRIBUTE OP VALUE]",
           .summary = "list objects of a class, or those with a value",
           .details =
               R"(Looks at the object and all below it; without a DN, where the session stands. OP is =, !=,
<, <=, > or >=. In CLASS, and in VALUE after = and !=, * is any text and ? one character:
  find Mast.height >= 30
  find / *.userLabel = *pier*
Of several values one must fit; for != none may be equal.
)",
           .words = {WordKind::DnOrClass, WordKind::ClassOrAttribute},
           .run = runFind},
          {.name = "cd",
           .synopsis = "[DN]",
           .summary = "go to an object; DNs can begin below it",
           .details =
               R"(Afterwards a DN whose first class can be below the object is below it. Others begin at
the top level, and so does a DN with a / in front. A point is the object itself, .. the one
above it: cd .., get ..,Mast=b height. Without a DN, or with /, cd goes to the top level.
)",
           .words = {WordKind::Dn},
           .run = runGoTo},
          {.name = "begin",
           .synopsis = "[NAME]",
           .summary = "open a transaction and work in it",
           .details =
               R"(Reads and writes go to it until it is committed or aborted, or another one is chosen
(use). Any number of transactions can be open side by side.
)",
           .words = {WordKind::Other},
           .run = runBegin},
          {.name = "use",
           .synopsis = "[NAME]",
           .summary = "work in another open transaction, or in none",
           .details =
               R"(Without a name no transaction is left or ended, but the commands after it see what
is committed, and each write is committed by itself.
)",
           .words = {WordKind::Transaction},
           .run = runUse},
          {.name = "transactions",
           .summary = "list the open transactions",
           .details = "A star marks the one that commands work in. WRITING COMMANDS are those that "
                      "wrote in it.\n",
           .run = runTransactions},
          {.name = "interface",
           .synopsis = "[1 | 3 | 3_1]",
           .summary = "show or choose the version of the MO interface",
           .details =
               R"(Operations that a version does not have go through version 3. Writes of version 1 take
no part in associations: no back-pointer follows, and validate does not look at them.
)",
           .words = {WordKind::Version},
           .run = runInterface},
          {.name = "create",
           .synopsis = "DN [ATTRIBUTE=VALUE...]",
           .summary = "create an object, with attributes",
           .details = "The DN is that of the new object. Values are as with set.\n",
           .words = {WordKind::Dn, WordKind::Assignment},
           .run = runCreate},
          {.name = "set",
           .synopsis = "DN ATTRIBUTE=VALUE...",
           .summary = "set attributes of an object",
           .details =
               R"(A value is a text, a number, true, false or a DN, as the attribute's type asks; null takes
the value away. Several values: the same attribute again, or a JSON list. A struct: a JSON
object. JSON goes into single quotes. Several attributes can also be one JSON object:
  set DN label=Harbour colour=red colour=white
  set DN 'position={"latitude": 59.3}' '{"label": null, "height": 12}'
Interface version 3_1 sets all or none, the others one after the other.
)",
           .words = {WordKind::Dn, WordKind::Assignment},
           .run = runSet},
          {.name = "delete",
           .synopsis = "DN",
           .summary = "delete an object with all below it",
           .words = {WordKind::Dn},
           .run = runDelete},
          {.name = "action",
           .synopsis = "DN ACTION [PARAMETER=VALUE...]",
           .summary = "call an action of an object",
           .details = "Prints the result, if there is one. Values are as with set.\n",
           .words = {WordKind::Dn, WordKind::Action, WordKind::Parameter},
           .run = runAction},
          {.name = "validate",
           .synopsis = "[NAME]",
           .summary = "ask for the verdict on a transaction",
           .details =
               R"(Without a name, on the current one. It stays open. Problems are reported in the
words of the component, with the objects and values that they are about.
)",
           .words = {WordKind::Transaction},
           .run = runValidate},
          {.name = "commit",
           .synopsis = "[NAME]",
           .summary = "end a transaction so that its writes hold",
           .details =
               R"(Without a name, the current one. It is validated first; if that or the commit is refused,
it is aborted, and nothing of it is left. If a store does not say what became of the commit, that is
reported.
)",
           .words = {WordKind::Transaction},
           .run = runCommit},
          {.name = "abort",
           .synopsis = "[NAME]",
           .summary = "end a transaction and drop its writes",
           .details = "Without a name, the current one. Nothing of it is left.\n",
           .words = {WordKind::Transaction},
           .run = runAbort},
          {.name = "expect",
           .synopsis = "[OUTCOME] [CLAUSE...] : COMMAND...",
           .summary = "run a command that must answer this and nothing else",
           .details =
               R"(OUTCOME is ok (default), error, usage, or a code by its name or number. Clauses:
  message [containing] TEXT       a message that the client gets
  messages N                      how many it gets
  output [containing] TEXT        what the command prints
  explanation containing TEXT     what the explanation of a failure contains
)",
           .words = {WordKind::Other},
           .takesCommand = true,
           .run = [this](Session& session,
                         Words words) { runExpect(*this, session, std::move(words)); }},
          {.name = "source",
           .synopsis = "FILE",
           .summary = "run the commands of a script",
           .details = "Stops at the first command that fails.\n",
           .words = {WordKind::File},
           .run = runSource},
          {.name = "save",
           .synopsis = "FILE [DN] [--format json|xml] [--config]",
           .summary = "write the objects to a file of instance data",
           .details =
               R"(Writes what the current transaction sees, or else what is committed: all objects, or
the subtree of the DN. A file ending in .xml becomes XML, others JSON. --config leaves out what
only the system sets. If anything fails, an old file of that name stays as it is.
)",
           .words = {WordKind::File, WordKind::Dn},
           .options = {"--format", "--config"},
           .whyNotServed = "it would write a file where the server runs. Use 'get', 'tree' or "
                           "'graph --html', or read the data by NETCONF",
           .run = runSave},
          {.name = "backup",
           .synopsis = "FILE",
           .summary = "copy the store to a new file",
           .details =
               R"(For a host with --store; clients go on meanwhile, and what they commit is copied as well.
The copy is the file of a store itself.
)",
           .words = {WordKind::File},
           .whyNotServed = "it would write a file where the server runs",
           .run = runBackup},
          {.name = "commits",
           .synopsis = "[NUMBER [SECONDS]]",
           .summary = "print the number of the last commit, or wait for one",
           .details =
               R"(All hosts of a store number its commits in the same way. After a commit the number says what
is the least that another host must show; there, commits NUMBER waits until it does, for at
most so many seconds (10).
)",
           .words = {WordKind::Other, WordKind::Other},
           .run = runCommits},
          {.name = "load",
           .synopsis = "FILE [merge | replace [DN]]",
           .summary = "bring the objects of a file into the network",
           .details =
               R"(merge (default) creates what is not there and sets the attributes that the file gives.
replace also takes away what the file does not give: of the whole network, or of the subtree of
the DN. Values that only the system sets are left out. A directory means all its files.
)",
           .words = {WordKind::File, WordKind::LoadMode, WordKind::Dn},
           .whyNotServed = "it would read a file where the server runs. Send a script of commands "
                           "with -f or 'source', or the data by NETCONF",
           .run = runLoad},
          {.name = "diff",
           .synopsis = "A B [DN]",
           .summary = "show how B differs from A",
           .details =
               R"(A and B are each a file of instance data, the store of another host (a file that nobody
uses, or postgresql:...), the name of an open transaction, or committed. Objects of A that B
lacks have a -, those that only B has a +, changed ones a ~ with the values of both. Prints
nothing if there is no difference. With a DN only its subtree is compared.
)",
           .words = {WordKind::State, WordKind::State, WordKind::Dn},
           .run = runDiff},
          {.name = "graph",
           .synopsis = "[DN] [--depth N] [--unfold] [--limit N] [--layout-time S] [--dot | --html] "
                       "[-o FILE] "
                       "| --classes [CLASS] [...]",
           .summary = "draw objects with their references, or the classes",
           .details =
               R"(Draws, as SVG, an object with all that is below it (without a DN, or with /, the whole
tree) and the references between objects. What violates an association, as the current
transaction sees it, is red. --classes draws the classes with their associations.
--depth cuts the picture off below so many levels. A picture with more than 100 boxes is
folded: objects of one class become a box with their number; --unfold draws each of them.
More than --limit objects (100000; with --unfold or --classes 300) are refused.
--dot gives the text that Graphviz draws, which may take --layout-time seconds (60).
--html writes one page for a browser instead, for up to 100000 objects: a tree to search and
fold, and of the chosen object the attributes, the references both ways and the violations.
-o writes to a file.
)",
           .words = {WordKind::Dn},
           .options = {"--classes", "--depth", "--unfold", "--limit", "--layout-time", "--dot",
                       "--html", "-o"},
           .run = runGraph},
          {.name = "who",
           .synopsis = "DN",
           .summary = "list what refers to an object",
           .details = "Prints the DN of each object that refers to it, and the attribute.\n",
           .words = {WordKind::Dn},
           .run = runWho},
          {.name = "audit",
           .synopsis = "[DN]",
           .summary = "list references to objects that do not exist",
           .details =
               R"(Looks at the object and all below it; without a DN, or with /, at all objects. Prints
the object, its attribute, and what it refers to; nothing if all is there.
)",
           .words = {WordKind::Dn},
           .run = runAudit},
          {.name = "watch",
           .synopsis = "[DN | --off [DN]]",
           .summary = "show the commits that touch an object",
           .details =
               R"(From now on, after each command, what was committed meanwhile in the object or below it is
shown, back-pointers included; / means all objects. Several objects can be watched; --off ends
it, for all without a DN. Prints what is watched.
)",
           .words = {WordKind::Dn},
           .options = {"--off"},
           .run = runWatch},
          {.name = "model",
           .synopsis = "[CLASS | --associations | --notes]",
           .summary = "show classes, associations, or what the model leaves out",
           .details = "Attributes and associations are shown as the model repository has them.\n",
           .words = {WordKind::AnyClass},
           .options = {"--associations", "--notes"},
           .run = runModel},
          {.name = "components",
           .summary = "show the loaded components and their state",
           .run = runComponents},
          {.name = "log",
           .synopsis = "[level LEVEL | tail [N]]",
           .summary = "show or set the level of logging, show the latest lines",
           .details = "LEVEL is off, error, warning, info, trace, or a number.\n",
           .words = {WordKind::LogPart, WordKind::LogLevel},
           .run = runLog},
          {.name = "help",
           .synopsis = "[COMMAND]",
           .summary = "show all commands, or one",
           .words = {WordKind::Command},
           .run = [this](Session& session,
                         Words words) { runHelp(*this, session, std::move(words)); }},
          {.name = "quit",
           .summary = "end the session",
           .details = "So do exit and Ctrl-D.\n",
           .alias = "exit",
           .run = runQuit}} {}

namespace {

constexpr const char* kEndOfOptions = "--";

// "--depth", but not "--new.json": that is rather a value.
bool looksLikeOption(const std::string& name) {
    return name.size() > 2 && name.compare(0, 2, "--") == 0 &&
           name.find_first_not_of("abcdefghijklmnopqrstuvwxyz-") == std::string::npos;
}

}

Words Command::read(const std::vector<std::string>& given, const std::string& here) const {
    const auto end = std::find(given.begin(), given.end(), kEndOfOptions);
    std::vector<std::string> result;
    for (auto word = given.begin(); word != end; ++word) {
        const std::size_t equals = std::min(word->find('='), word->size());
        const std::string option = word->substr(0, equals);
        if (!looksLikeOption(option)) {
            result.push_back(*word);
            continue;
        }
        if (std::find(options.begin(), options.end(), option) == options.end()) {
            throw UsageError("there is no option '" + option + "'." + didYouMean(option, options));
        }
        result.push_back(option);
        if (equals < word->size()) {
            result.push_back(word->substr(equals + 1));
        }
    }
    const auto values = end == given.end() ? end : end + 1;
    result.insert(result.end(), values, given.end());
    return Words(std::move(result), here, static_cast<std::size_t>(given.end() - values));
}

std::vector<std::string> CommandTable::names() const {
    std::vector<std::string> names;
    for (const Command& command : mCommands) {
        names.push_back(command.name);
    }
    return names;
}

std::vector<std::string> CommandTable::names(const Session& session) const {
    std::vector<std::string> names;
    for (const Command& command : mCommands) {
        if (!session.isServed() || command.whyNotServed.empty()) {
            names.push_back(command.name);
        }
    }
    return names;
}

const Command* CommandTable::find(const std::string& name) const {
    for (const Command& command : mCommands) {
        if (command.name == name || (!name.empty() && command.alias == name)) {
            return &command;
        }
    }
    return nullptr;
}

const Command& CommandTable::require(const std::string& name) const {
    const Command* command = find(name);
    if (command == nullptr) {
        std::error_code error;
        throw UsageError("there is no command '" + name + "'." + didYouMean(name, names()) +
                         (std::filesystem::is_regular_file(name, error)
                              ? " It is a file: 'source' runs it, and so does the option -f"
                              : " 'help' lists all"));
    }
    return *command;
}

void CommandTable::run(Session& session, const std::vector<std::string>& words) const {
    const Command& command = require(words.front());
    if (session.isServed() && !command.whyNotServed.empty()) {
        throw AnswerError("a server's shell does not have this command: " + command.whyNotServed);
    }
    const std::vector<std::string> rest(words.begin() + 1, words.end());
    command.run(session, command.takesCommand ? Words(rest, session.here())
                                              : command.read(rest, session.here()));
}

std::string CommandTable::namesIn(std::vector<std::string> words) const {
    std::string before;
    for (int depth = 0; depth <= kMostExpectations && !words.empty(); ++depth) {
        const Command* command = find(words.front());
        const std::string name = command != nullptr ? command->name : "no command";
        if (command == nullptr || !command->takesCommand) {
            before += before.empty() ? "" : " : ";
            return before.append(name);
        }
        before = name;
        Words rest({words.begin() + 1, words.end()});
        try {
            const Expectation skipped(rest);
        } catch (const RequestError&) {
            break; // no command runs
        }
        words = rest.takeRest();
    }
    return before;
}

std::string CommandTable::usageOf(const std::string& name) const {
    const Command* command = find(name);
    return command != nullptr ? command->usage() : std::string();
}

}
