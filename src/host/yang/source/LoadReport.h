// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SOURCE_LOADREPORT_H
#define ORV_HOST_YANG_SOURCE_LOADREPORT_H

#include "base/Problem.h"
#include "yang/source/ModuleFinder.h"
#include "yang/source/YangContext.h"

#include <map>
#include <regex>
#include <string>
#include <vector>

namespace OrvHost {

/// Where the definition stands that a schema path such as "/module:list/leaf" ends with; without a
/// line if it came from a grouping, empty if the module is not known.
SourcePosition positionOf(const std::string& path, const ModuleFinder& finder);

/// A message about modules, with what to do and the place in the tree.
std::string describe(const YangMessage& message);

/// Sorts the YANG library's messages about one failed load. The library reports the cause first,
/// with a line but without the file, then the modules around it from the inside out.
class LoadReport {
public:
    /// `finder` was used for the load, and must outlive this object.
    explicit LoadReport(const ModuleFinder& finder) : mFinder(finder) {}

    /// Takes the messages one by one, in their order.
    void take(const YangMessage& message);

    std::vector<Problem> problems() &&;

private:
    void takeFailedModule(const std::string& module, const std::string& text);
    void claim(const std::string& module);
    int lineOfCause(const ModuleSource& module, const std::string& text) const;

    const ModuleFinder& mFinder;
    const std::regex mParsing{R"(^Parsing (?:sub)?module "([^"]*)\" failed)"};
    const std::regex mLoading{R"(^(?:Loading "([^"]*)\" module|Including "([^"]*)\" submodule))"};
    std::string mMissing;
    std::map<std::string, std::string> mPaths; ///< of messages that have one, by the text
    std::vector<Problem> mProblems;
};

}

#endif
