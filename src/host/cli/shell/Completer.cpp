// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Completer.h"

#include "base/DnView.h"
#include "cli/commands/DataFile.h"
#include "cli/input/LogLevel.h"
#include "cli/input/Place.h"
#include "cli/input/WordSplitter.h"
#include "cli/session/Session.h"
#include "client/DnResolver.h"
#include "client/ErrorExplainer.h"

#include <algorithm>
#include <exception>
#include <filesystem>

namespace OrvHost {

namespace {

bool beginsWith(const std::string& text, const std::string& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

std::vector<std::string> withPrefix(const std::string& prefix, std::vector<std::string> texts) {
    for (std::string& text : texts) {
        text.insert(0, prefix);
    }
    return texts;
}

// The key's own name, too, if the naming attribute has another one.
std::vector<std::string> readableNames(const ClassDef& moc) {
    std::vector<std::string> names = attributeNames(moc);
    if (moc.keys.size() == 1 && moc.keys.front() != moc.namingAttribute) {
        names.push_back(moc.keys.front());
    }
    return names;
}

// After the colon of an expectation comes a command like any other.
std::vector<std::string> withoutExpectation(std::vector<std::string> words) {
    auto command = words.begin();
    while (*command == "expect") {
        const auto colon = std::find(command, words.end() - 1, ":");
        if (colon == words.end() - 1) {
            break;
        }
        command = colon + 1;
    }
    words.erase(words.begin(), command);
    return words;
}

}

std::string commonPrefix(const std::vector<std::string>& words) {
    if (words.empty()) {
        return {};
    }
    std::string prefix = words.front();
    for (const std::string& word : words) {
        const auto differ =
            std::mismatch(prefix.begin(), prefix.end(), word.begin(), word.end()).first;
        prefix.erase(differ, prefix.end());
    }
    return prefix;
}

Completion Completer::complete(const std::string& line) {
    SplitLine split = splitWords(line);
    if (!split.endsInWord) {
        split.words.emplace_back();
        split.starts.push_back(line.size());
    }
    Completion completion{split.starts.back(), {}};
    mCanGoOn = false;
    mShownFrom = 0;
    try {
        completion.candidates = candidates(split.words);
    } catch (const std::exception&) {
        return {split.starts.back(), {}};
    }
    completion.canGoOn = mCanGoOn;
    completion.shownFrom = mShownFrom;
    auto& all = completion.candidates;
    all.erase(std::remove_if(all.begin(), all.end(),
                             [&](const std::string& candidate) {
                                 return !beginsWith(candidate, split.words.back());
                             }),
              all.end());
    return completion;
}

std::vector<std::string> Completer::candidates(std::vector<std::string> words) {
    words = withoutExpectation(words);
    if (words.size() == 1) {
        return mCommands.names(mSession);
    }
    const Command* command = mCommands.find(words.front());
    if (command == nullptr) {
        return {};
    }
    if (beginsWith(words.back(), "-")) {
        return command->options;
    }
    if (command->words.empty()) {
        return {};
    }
    const std::size_t position = std::min(words.size() - 2, command->words.size() - 1);
    return candidatesOf(command->words[position], words);
}

std::vector<std::string> Completer::candidatesOf(WordKind kind,
                                                 const std::vector<std::string>& words) {
    const DnResolver resolver(mSession.model());
    const ClassDef* moc = resolver.classOf(fromTop(mSession.model(), mSession.here(), words[1]));
    switch (kind) {
    case WordKind::Dn:
        return dns(words.back(), mSession.here());
    case WordKind::ChildClass:
        return resolver.childClasses(moc);
    case WordKind::Attribute:
        return moc != nullptr ? readableNames(*moc) : std::vector<std::string>();
    case WordKind::Assignment:
        return moc != nullptr ? assignments(moc->attributes, words.back())
                              : std::vector<std::string>();
    case WordKind::Action:
        return moc != nullptr ? actionNames(*moc) : std::vector<std::string>();
    case WordKind::Parameter: {
        const ActionDef* action = moc != nullptr ? moc->findAction(words[2]) : nullptr;
        return action != nullptr ? assignments(action->parameters, words.back())
                                 : std::vector<std::string>();
    }
    case WordKind::DnOrClass: {
        std::vector<std::string> result = dns(words.back(), mSession.here());
        const std::vector<std::string> classes = classesAndAttributes(words.back());
        result.insert(result.end(), classes.begin(), classes.end());
        return result;
    }
    case WordKind::ClassOrAttribute:
        return classesAndAttributes(words.back());
    case WordKind::AnyClass:
        return classNames(mSession.model());
    case WordKind::Command:
        return mCommands.names();
    case WordKind::Transaction:
        return mSession.transactions().names();
    case WordKind::Version:
        return Clients::versions();
    case WordKind::File:
        return mSession.isServed() ? std::vector<std::string>() : files(words.back());
    case WordKind::State: {
        std::vector<std::string> result = mSession.transactions().names();
        result.insert(result.begin(), kCommitted);
        if (mSession.isServed()) {
            return result;
        }
        const std::vector<std::string> found = files(words.back());
        result.insert(result.end(), found.begin(), found.end());
        return result;
    }
    case WordKind::LoadMode:
        return {"merge", "replace"};
    case WordKind::LogPart:
        return {"level", "tail"};
    case WordKind::LogLevel:
        return words[1] == "level" ? logLevelWords() : std::vector<std::string>();
    case WordKind::Other:
        break;
    }
    return {};
}

// First the classes, then the attributes of that which \p word begins with.
std::vector<std::string> Completer::classesAndAttributes(const std::string& word) {
    mCanGoOn = true;
    std::vector<std::string> result;
    for (const ClassDef& moc : mSession.model().classes) {
        result.push_back(moc.name);
        const std::string prefix = moc.name + ".";
        if (beginsWith(word, prefix)) {
            const std::vector<std::string> names = withPrefix(prefix, readableNames(moc));
            result.insert(result.end(), names.begin(), names.end());
        }
    }
    return result;
}

// The files of a directory, and its directories with a "/" at the end.
std::vector<std::string> Completer::files(const std::string& word) {
    mCanGoOn = true;
    const std::string directory = word.substr(0, word.rfind('/') + 1);
    std::vector<std::string> result;
    for (const auto& entry :
         std::filesystem::directory_iterator(directory.empty() ? "." : directory)) {
        const std::string name = directory + entry.path().filename().string();
        result.push_back(name + (entry.is_directory() ? "/" : ""));
    }
    std::sort(result.begin(), result.end());
    return result;
}

// First the name with its "=", then the values that are known.
std::vector<std::string> Completer::assignments(const std::vector<AttributeDef>& all,
                                                const std::string& word) {
    const std::size_t equals = word.find('=');
    std::vector<std::string> result;
    for (const AttributeDef& def : all) {
        if (equals == std::string::npos && !def.isGivenByName() && def.isWritable) {
            result.push_back(def.name + "=");
        } else if (def.name == word.substr(0, equals)) {
            result = withPrefix(def.name + "=", values(def, word.substr(equals + 1)));
            mShownFrom = equals + 1;
        }
    }
    return result;
}

std::vector<std::string> Completer::values(const AttributeDef& def, const std::string& typed) {
    switch (def.type.kind) {
    case ValueKind::Bool:
        return {"true", "false"};
    case ValueKind::Enumeration:
        return def.type.enumerators;
    case ValueKind::MoRef:
        return dns(typed, {}); // references begin at the top level
    default:
        return {};
    }
}

// From the top level.
std::string Completer::parentOf(DnView dn, const std::string& here) const {
    return dn.hasParent() ? fromTop(mSession.model(), here, std::string(dn.parent().text())) : here;
}

void Completer::addClasses(DnView dn, const std::string& parent,
                           std::vector<std::string>& result) const {
    const DnResolver resolver(mSession.model());
    const ClassDef* moc = resolver.classOf(parent);
    if (parent.empty() || moc != nullptr) {
        for (const std::string& className : resolver.childClasses(moc)) {
            result.push_back(dn.parent().childPrefix(className));
        }
    }
}

// First the class of the last step with its "=", then the objects of that class.
std::vector<std::string> Completer::dns(const std::string& word, const std::string& here) {
    mCanGoOn = true;
    if (beginsWith(word, "/")) {
        return withPrefix("/", dns(word.substr(1), {})); // begins at the top level
    }
    const DnView dn(word);
    // Asked in the short form, and offered in the form in which the word begins.
    std::vector<std::string> result;
    if (!dn.last().hasEquals()) {
        addClasses(dn, parentOf(dn, here), result);
        if (!dn.hasParent() && !here.empty()) {
            addClasses(dn, {}, result); // a DN can begin at the top level, too
        }
        return result;
    }
    const std::string asked = fromTop(mSession.model(), here, word);
    const std::string parent(DnView(asked).parent().text());
    const std::string type(DnView(asked).last().type());
    const std::string beginning(dn.last().value());
    mSession.read([&](unsigned long txHandle) {
        mSession.client().forEachChild(txHandle, parent, type, [&](const std::string& name) {
            if (beginsWith(name, beginning)) {
                result.push_back(dn.parent().child(dn.last().type(), name));
            }
            return true;
        });
    });
    return result;
}

}
