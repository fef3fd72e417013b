// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SOURCE_YANGCONTEXT_H
#define ORV_HOST_YANG_SOURCE_YANGCONTEXT_H

#include "model/ModelError.h"
#include "yang/source/Features.h"
#include "yang/source/ModuleFinder.h"

#include <libyang/libyang.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace OrvHost {

/// One message of the YANG library.
struct YangMessage {
    std::string text;
    std::string path; ///< of the schema or data node, if it is known
    int line = 0;     ///< in the text that was read, or 0
};

/// What a context is for.
enum class ContextUse : std::uint8_t {
    Model, ///< a model is read from its modules
    /// A protocol is spoken in its terms. It has the modules' list as data (ietf-yang-library), and
    /// leaves the private pointers of nodes to the protocol's library.
    Protocol
};

/// A context of the YANG library, with the modules that were loaded into it.
///
/// Call load() and compile() first, on one thread. After that the context does not change, and any
/// number of threads may use it.
class YangContext {
public:
    explicit YangContext(ContextUse use = ContextUse::Model);
    ~YangContext();
    YangContext(const YangContext&) = delete;
    YangContext& operator=(const YangContext&) = delete;

    /// Loads the modules with these names, and those that they import, and compiles them. The
    /// finder is used only during the call. \throws ModelError with all problems: a module that
    /// fails does not hide the next one.
    void load(const std::vector<std::string>& modules, const FeatureSelection& features,
              ModuleFinder& finder);

    ly_ctx* get() const { return mContext; }

    /// From now on texts that the patterns of this type refuse are values of it. It must be a type
    /// of this context's modules; leaves can share it. Call it before other threads use the
    /// context.
    void ignorePatterns(const lysc_type* type);

    /// The loaded modules that define data, in the order of loading.
    std::vector<const lys_module*> implementedModules() const;

    /// Takes the calling thread's messages out of the library. Errors only.
    std::vector<YangMessage> takeMessages() const;

    /// Why `text` is not a value of that leaf or leaf-list; empty if it is one. Any thread.
    std::string refusal(const lysc_node* node, const std::string& text) const;

    /// The same, and `text` must be in the canonical form of its type: "7" and not "007". Any
    /// thread.
    std::string refusalOfName(const lysc_node* node, const std::string& text) const;

    /// The type that `text` has as a value of that leaf or leaf-list: for a union the matching
    /// member. Null if it is not a value. Any thread.
    const lysc_type* typeOf(const lysc_node* node, const std::string& text) const;

private:
    std::vector<Problem> loadAll(const std::vector<std::string>& modules, ModuleFinder& finder);
    std::vector<Problem> loadProblems(const std::string& module, const ModuleFinder& finder) const;
    std::vector<Problem> compileProblems(const ModuleFinder& finder) const;

    ly_ctx* mContext = nullptr;
    std::set<std::string> mBorrowed; ///< modules that are there for their features only
    /// The patterns that were taken out of types; the types get them back at the end, because they
    /// own them.
    std::vector<std::pair<lysc_type_str*, lysc_pattern**>> mIgnoredPatterns;
    /// The library does not promise that values can be checked on several threads at once.
    mutable std::mutex mValidation;
};

}

#endif
