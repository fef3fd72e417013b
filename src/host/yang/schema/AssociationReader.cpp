// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AssociationReader.h"

#include "base/Join.h"
#include "yang/source/StatementPlacement.h"
#include "yang/types/TypeFacts.h"
#include "yang/types/TypedefChain.h"

#include <algorithm>
#include <string_view>

namespace OrvHost {
namespace {

constexpr std::string_view kUniDir = "unidirectional";
constexpr std::string_view kBiDir = "bidirectional";
constexpr std::string_view kForeignReference = "DistinguishedName";

/// A statement of orv-associations: name and argument.
struct Statement {
    std::string name;
    std::string argument;
};

std::vector<Statement> statementsIn(const lysc_ext_instance* extensions) {
    std::vector<Statement> statements;
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; i < LY_ARRAY_COUNT(extensions); ++i) {
        const lysc_ext_instance& extension = extensions[i];
        if (std::string_view(extension.def->module->name) == kAssociationsModule) {
            statements.push_back(
                {extension.def->name, extension.argument != nullptr ? extension.argument : ""});
        }
    }
    return statements;
}

std::vector<Statement> associationsIn(const lysc_ext_instance* extensions) {
    std::vector<Statement> statements = statementsIn(extensions);
    const auto isOther = [](const Statement& s) { return s.name != kUniDir && s.name != kBiDir; };
    statements.erase(std::remove_if(statements.begin(), statements.end(), isOther),
                     statements.end());
    return statements;
}

std::string toText(const Statement& statement) {
    return statement.name + " \"" + statement.argument + "\"";
}

void apply(const ReferenceTerms& terms, ReferenceDraft& draft) {
    draft.cardinality = terms.bounds;
    draft.roleText = terms.role;
    draft.keep = terms.keepAtDelete;
}

}

bool hasStatement(const lysc_node* node, const std::string& name) {
    const std::vector<Statement> statements = statementsIn(node->exts);
    return std::any_of(statements.begin(), statements.end(),
                       [&name](const Statement& s) { return s.name == name; });
}

std::string associationsText(const lysc_node* node) {
    std::string text;
    for (const Statement& statement : statementsIn(node->exts)) {
        text += statement.name + " " + statement.argument + ";";
    }
    return text;
}

namespace {

bool isForeignReference(const std::string& typedefName) {
    return withoutPrefix(typedefName) == kForeignReference;
}

}

bool isReferenceByType(const lysc_node* node) {
    const std::vector<std::string> names = typedefsOf(node);
    return std::any_of(names.begin(), names.end(), [](const std::string& name) {
        return name == std::string(kAssociationsModule) + ":reference" || isForeignReference(name);
    });
}

void ignorePatternsOfReferences(YangContext& context) {
    const auto visit = [](lysc_node* node, void* data, ly_bool*) {
        const bool isLeaf = (node->nodetype & (LYS_LEAF | LYS_LEAFLIST)) != 0;
        const std::vector<std::string> names =
            isLeaf ? typedefsOf(node) : std::vector<std::string>();
        if (std::any_of(names.begin(), names.end(), isForeignReference)) {
            static_cast<YangContext*>(data)->ignorePatterns(typeOfLeaf(node));
        }
        return LY_SUCCESS;
    };
    for (const lys_module* module : context.implementedModules()) {
        lysc_module_dfs_full(module, visit, &context);
    }
}

void AssociationReader::refuse(const Place& place, const std::string& reason) {
    const Problem problem{place.source, place.statement + ": " + reason};
    const auto isSame = [&problem](const Problem& other) {
        return toText(other) == toText(problem);
    };
    // The statement is read at each place where its leaf is found.
    if (std::none_of(mProblems.begin(), mProblems.end(), isSame)) {
        mProblems.push_back(problem);
    }
}

/// The name in the model of the class that a statement means. A class that does not exist is
/// reported later, where it is used.
std::string AssociationReader::use(const ClassName& name, const Place& place) {
    const std::vector<std::string> found = mNames.find(toText(name), place.module);
    if (found.size() == 1) {
        return found.front();
    }
    if (!found.empty()) {
        std::string all;
        for (const std::string& one : found) {
            all += (all.empty() ? "" : ", ") + one;
        }
        mProblems.push_back(
            {place.source, "\"" + toText(name) + "\" is the name of several classes: " + all});
        return found.front();
    }
    const std::vector<std::string> others = mNames.find(name.name, "");
    if (!others.empty()) {
        mProblems.push_back({place.source, "class \"" + name.name + "\" is not of the module \"" +
                                               name.module + "\" but of \"" +
                                               mNames.moduleOf(others.front()) + "\""});
        return others.front();
    }
    return name.name;
}

void AssociationReader::readModule(const lys_module* module) {
    for (const Statement& statement : associationsIn(module->compiled->exts)) {
        readModuleStatement(statement.name, statement.argument,
                            {module->name, mLocator.of(module, statement.name, statement.argument),
                             toText(statement)});
    }
}

void AssociationReader::readModuleStatement(const std::string& keyword, const std::string& argument,
                                            const Place& place) {
    try {
        if (keyword == kUniDir) {
            add(parseUniDirInModule(argument), place);
        } else {
            add(parseBiDirInModule(argument), place);
        }
    } catch (const StatementError& error) {
        refuse(place, error.what());
    }
}

void AssociationReader::add(const UniDirInModule& statement, const Place& place) {
    ReferenceDraft draft(use(statement.owner.moc, place), statement.owner.attribute);
    draft.to(use(statement.target, place)).at(place.source);
    apply(statement.terms, draft);
    enterFromModule(std::move(draft), place);
}

void AssociationReader::enterFromModule(ReferenceDraft draft, const Place& place) {
    mFromModules[{draft.owner, draft.attribute}].push_back(place);
    mReferences.push_back(std::move(draft));
}

void AssociationReader::add(const BiDirInModule& statement, const Place& place) {
    const std::string classes[] = {use(statement.sides[0].first.moc, place),
                                   use(statement.sides[1].first.moc, place)};
    const bool isOneAttribute = classes[0] == classes[1] && statement.sides[0].first.attribute ==
                                                                statement.sides[1].first.attribute;
    for (std::size_t i = 0; i < (isOneAttribute ? 1 : 2); ++i) {
        const auto& [near, terms] = statement.sides[i];
        const AttributeName& far = statement.sides[1 - i].first;
        ReferenceDraft draft(classes[i], near.attribute);
        draft.to(classes[1 - i]).pointedBackBy(far.attribute).at(place.source);
        apply(terms, draft);
        enterFromModule(std::move(draft), place);
    }
}

void AssociationReader::readAttribute(const lysc_node* node, const std::string& className,
                                      const std::string& name) {
    for (const Statement& statement : associationsIn(node->exts)) {
        const Place place{node->module->name, mLocator.of(node, statement.name, statement.argument),
                          toText(statement)};
        ReferenceDraft draft(className, name);
        draft.at(place.source);
        readInAttribute(statement.name, statement.argument, std::move(draft), place);
    }
}

void AssociationReader::refuseKey(const lysc_node* node, const std::string& className,
                                  const std::string& name) {
    std::vector<Place> places;
    for (const Statement& statement : associationsIn(node->exts)) {
        places.push_back({node->module->name, mLocator.of(node, statement.name, statement.argument),
                          toText(statement)});
    }
    if (const auto known = mFromModules.find({className, name}); known != mFromModules.end()) {
        places.insert(places.end(), known->second.begin(), known->second.end());
        mFromModules.erase(known); // the class can be found at further places
    }
    for (const Place& place : places) {
        refuse(place, joined({"\"", name, "\" is a key of class \"", className,
                              "\" and names its objects; another attribute was expected"}));
        // The other end of the same statement must not be reported, too.
        const auto isOfStatement = [&place](const ReferenceDraft& draft) {
            return draft.source.file == place.source.file && draft.source.line == place.source.line;
        };
        mReferences.erase(std::remove_if(mReferences.begin(), mReferences.end(), isOfStatement),
                          mReferences.end());
    }
}

void AssociationReader::readInAttribute(const std::string& keyword, const std::string& argument,
                                        ReferenceDraft draft, const Place& place) {
    try {
        if (keyword == kUniDir) {
            const UniDirInLeaf statement = parseUniDirInLeaf(argument);
            draft.to(use(statement.target, place));
            apply(statement.terms, draft);
        } else {
            const BiDirInLeaf statement = parseBiDirInLeaf(argument);
            draft.to(use(statement.opposite.moc, place));
            draft.pointedBackBy(statement.opposite.attribute);
            apply(statement.terms, draft);
        }
        mReferences.push_back(std::move(draft));
    } catch (const StatementError& error) {
        refuse(place, error.what());
    }
}

std::vector<std::string> AssociationReader::readMember(const lysc_node* node) {
    std::vector<std::string> targets;
    for (const Statement& statement : associationsIn(node->exts)) {
        const SourcePosition source = mLocator.of(node, statement.name, statement.argument);
        targets.push_back(readInMember(statement.name, statement.argument,
                                       {node->module->name, source, toText(statement)}));
    }
    targets.erase(std::remove(targets.begin(), targets.end(), ""), targets.end());
    return targets;
}

std::string AssociationReader::readInMember(const std::string& keyword, const std::string& argument,
                                            const Place& place) {
    try {
        if (keyword == kBiDir) {
            throw StatementError(
                "a reference inside a struct or a parameter cannot be kept consistent "
                "with another one; only an attribute of a class can");
        }
        const UniDirInLeaf statement = parseUniDirInLeaf(argument);
        if (!statement.terms.isEmpty()) {
            throw StatementError(
                "in a struct or a parameter only the class is given; mandatory, min-elements and "
                "max-elements say how many there may be");
        }
        return use(statement.target, place);
    } catch (const StatementError& error) {
        refuse(place, error.what());
        return "";
    }
}

bool AssociationReader::isReference(const lysc_node* node, const std::string& className,
                                    const std::string& name) const {
    return mFromModules.count({className, name}) > 0 || !associationsIn(node->exts).empty();
}

void AssociationReader::addTo(ModelBuilder& builder) {
    for (ReferenceDraft& reference : mReferences) {
        builder.add(std::move(reference));
    }
    mReferences.clear();
}

}
