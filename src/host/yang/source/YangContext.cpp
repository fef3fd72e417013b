// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "YangContext.h"

#include "base/TextScanner.h"
#include "yang/source/Includes.h"
#include "yang/source/LoadReport.h"
#include "yang/source/MissingModules.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace OrvHost {
namespace {

constexpr std::uint16_t kOptions = LY_CTX_DISABLE_SEARCHDIRS | LY_CTX_DISABLE_SEARCHDIR_CWD |
                                   LY_CTX_EXPLICIT_COMPILE | LY_CTX_REF_IMPLEMENTED;
constexpr std::uint16_t kModelOptions = LY_CTX_NO_YANGLIBRARY | LY_CTX_SET_PRIV_PARSED;

void freeText(void* text, void*) {
    std::free(text); // NOLINT(cppcoreguidelines-no-malloc)
}

/// The text that the library gets for a submodule of `module`, or for the module itself if the name
/// of the submodule is null. Nothing if it is not found.
std::optional<std::string> textFor(const char* module, const char* submodule, const char* revision,
                                   ModuleFinder& finder) {
    const char* name = submodule != nullptr ? submodule : module;
    const ModuleSource* found = finder.find(name, revision != nullptr ? revision : "");
    if (found == nullptr) {
        return std::nullopt;
    }
    const ModuleSource* whole = submodule != nullptr ? finder.find(module, "") : found;
    if (whole == nullptr || whole == found) {
        return withAllIncludes(*found, finder);
    }
    return withoutIncludes(*found, *whole, finder);
}

/// The library calls this for each module and submodule that it needs.
LY_ERR provideModule(const char* module, const char* revision, const char* submodule,
                     const char* submoduleRevision, void* finder, LYS_INFORMAT* format,
                     const char** text, ly_module_imp_data_free_clb* release) {
    const std::optional<std::string> found =
        textFor(module, submodule, submodule != nullptr ? submoduleRevision : revision,
                *static_cast<ModuleFinder*>(finder));
    if (!found) {
        return LY_ENOT;
    }
    // The library takes a copy of its own until it calls `release`.
    *text = strdup(found->c_str());
    *format = LYS_IN_YANG;
    *release = freeText;
    return *text == nullptr ? LY_EMEM : LY_SUCCESS;
}

int lineIn(const std::string& path) {
    const std::string_view rest = TextScanner(path).afterLast("ine number ").value_or("");
    const auto digits = rest.substr(0, rest.find_first_not_of("0123456789"));
    return static_cast<int>(numberIn(digits).value_or(0));
}

std::string nodeIn(const std::string& path) {
    TextScanner text(path);
    if (text.before("location \"")) {
        if (const auto node = text.before("\"")) {
            return std::string(*node);
        }
    }
    return path.compare(0, 1, "/") == 0 ? path : "";
}

std::string fileOf(const std::string& module, const ModuleFinder& finder) {
    const auto found = finder.found().find(module);
    return found == finder.found().end() ? "" : found->second.file;
}

void appendNew(std::vector<Problem>& all, std::vector<Problem> more) {
    for (Problem& problem : more) {
        const auto isSame = [&problem](const Problem& other) {
            return toText(other) == toText(problem);
        };
        if (std::none_of(all.begin(), all.end(), isSame)) {
            all.push_back(std::move(problem));
        }
    }
}

}

YangContext::YangContext(ContextUse use) {
    // A setting of the whole process: store messages in the context and print none.
    static const std::uint32_t previous = ly_log_options(LY_LOSTORE);
    static_cast<void>(previous);
    const int options = kOptions | (use == ContextUse::Model ? kModelOptions : 0);
    const LY_ERR code = ly_ctx_new(nullptr, static_cast<std::uint16_t>(options), &mContext);
    if (code == LY_EMEM) {
        throw std::bad_alloc();
    }
    if (code != LY_SUCCESS) {
        throw std::runtime_error("the YANG library cannot be set up");
    }
}

YangContext::~YangContext() {
    for (const auto& [type, patterns] : mIgnoredPatterns) {
        type->patterns = patterns;
    }
    ly_ctx_destroy(mContext);
}

void YangContext::load(const std::vector<std::string>& modules, const FeatureSelection& features,
                       ModuleFinder& finder) {
    ly_ctx_set_module_imp_clb(mContext, provideModule, &finder);
    std::vector<Problem> problems = loadAll(modules, finder);
    if (problems.empty()) {
        FeatureResult result = switchFeatures(mContext, modules, features);
        problems = std::move(result.problems);
        mBorrowed = std::move(result.borrowed);
        takeMessages(); // they say the same in other words
    }
    // After a failed load the library forgets the modules loaded before, and compiling "succeeds".
    if (problems.empty() && ly_ctx_compile(mContext) != LY_SUCCESS) {
        problems = compileProblems(finder);
    }
    ly_ctx_set_module_imp_clb(mContext, nullptr, nullptr);
    // They come first: a module may be missing for them.
    std::vector<Problem> all = finder.problems();
    appendNew(all, problems);
    if (!all.empty()) {
        throw ModelError(std::move(all));
    }
}

std::vector<Problem> YangContext::loadAll(const std::vector<std::string>& modules,
                                          ModuleFinder& finder) {
    std::vector<Problem> problems;
    for (const std::string& module : modules) {
        if (ly_ctx_load_module(mContext, module.c_str(), nullptr, nullptr) == nullptr) {
            appendNew(problems, loadProblems(module, finder));
        }
    }
    // The library ends at the first module that it does not find.
    if (!finder.missed().empty()) {
        const auto isBuiltIn = [this](const std::string& name) {
            return ly_ctx_get_module_latest(mContext, name.c_str()) != nullptr;
        };
        appendNew(problems, missingModules(modules, finder, isBuiltIn));
    }
    return problems;
}

std::vector<Problem> YangContext::loadProblems(const std::string& module,
                                               const ModuleFinder& finder) const {
    LoadReport report(finder);
    for (const YangMessage& message : takeMessages()) {
        report.take(message);
    }
    std::vector<Problem> problems = std::move(report).problems();
    if (problems.empty()) {
        problems.push_back({{fileOf(module, finder), 0}, "module cannot be loaded"});
    }
    return problems;
}

std::vector<Problem> YangContext::compileProblems(const ModuleFinder& finder) const {
    std::vector<Problem> problems;
    for (const YangMessage& message : takeMessages()) {
        problems.push_back({positionOf(message.path, finder), describe(message)});
    }
    if (problems.empty()) {
        problems.push_back({{}, "the modules do not fit together"});
    }
    return problems;
}

void YangContext::ignorePatterns(const lysc_type* type) {
    if (type->basetype != LY_TYPE_STRING) {
        return;
    }
    // The types belong to the context, which this object owns.
    auto* text = reinterpret_cast<lysc_type_str*>(const_cast<lysc_type*>(type)); // NOLINT
    if (text->patterns != nullptr) {
        mIgnoredPatterns.emplace_back(text, text->patterns);
        text->patterns = nullptr;
    }
}

std::vector<const lys_module*> YangContext::implementedModules() const {
    std::vector<const lys_module*> modules;
    std::uint32_t position = ly_ctx_internal_modules_count(mContext);
    while (const lys_module* module = ly_ctx_get_module_iter(mContext, &position)) {
        if (module->compiled != nullptr && mBorrowed.count(module->name) == 0) {
            modules.push_back(module);
        }
    }
    return modules;
}

std::vector<YangMessage> YangContext::takeMessages() const {
    std::vector<YangMessage> messages;
    for (const ly_err_item* item = ly_err_first(mContext); item != nullptr; item = item->next) {
        if (item->level == LY_LLERR) {
            const std::string path = item->path != nullptr ? item->path : "";
            messages.push_back({item->msg != nullptr ? item->msg : "", nodeIn(path), lineIn(path)});
        }
    }
    ly_err_clean(mContext, nullptr);
    return messages;
}

std::string YangContext::refusal(const lysc_node* node, const std::string& text) const {
    const std::lock_guard<std::mutex> lock(mValidation);
    const LY_ERR code =
        lyd_value_validate(mContext, node, text.c_str(), text.size(), nullptr, nullptr, nullptr);
    const std::vector<YangMessage> messages = takeMessages();
    if (code == LY_SUCCESS || code == LY_EINCOMPLETE) {
        return "";
    }
    return messages.empty() ? "not a value of this type" : messages.front().text;
}

std::string YangContext::refusalOfName(const lysc_node* node, const std::string& text) const {
    std::string refused = refusal(node, text);
    if (!refused.empty()) {
        return refused;
    }
    const std::lock_guard<std::mutex> lock(mValidation);
    const char* canonical = nullptr;
    lyd_value_validate(mContext, node, text.c_str(), text.size(), nullptr, nullptr, &canonical);
    if (canonical != nullptr && text != canonical) {
        refused = "\"" + text + "\" names an object as \"" + canonical + "\" only";
    }
    lydict_remove(mContext, canonical);
    takeMessages();
    return refused;
}

const lysc_type* YangContext::typeOf(const lysc_node* node, const std::string& text) const {
    const std::lock_guard<std::mutex> lock(mValidation);
    const lysc_type* type = nullptr;
    const LY_ERR code =
        lyd_value_validate(mContext, node, text.c_str(), text.size(), nullptr, &type, nullptr);
    takeMessages();
    return code == LY_SUCCESS || code == LY_EINCOMPLETE ? type : nullptr;
}

}
