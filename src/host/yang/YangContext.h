// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_YANGCONTEXT_H
#define ORV_HOST_YANG_YANGCONTEXT_H

#include "model/ModelError.h"
#include "yang/ModuleFinder.h"

#include <libyang/libyang.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace OrvHost {

/// One message of the YANG library.
struct YangMessage {
    std::string text;
    std::string path; ///< of the schema or data node, if it is known
    int line = 0;     ///< in the text that was read, or 0
};

/// A context of the YANG library, with the modules that were loaded into it.
///
/// load() and compile() are for one thread, before anything else. After that the context does not
/// change and serves any number of threads.
class YangContext {
public:
    YangContext();
    ~YangContext();
    YangContext(const YangContext&) = delete;
    YangContext& operator=(const YangContext&) = delete;

    /// Loads the modules of these names, and what they import, with all their features, and
    /// compiles them. The finder is used during the call only.
    /// \throws ModelError with all that is wrong: a module that fails does not hide the next one.
    void load(const std::vector<std::string>& modules, ModuleFinder& finder);

    ly_ctx* get() const { return mContext; }

    /// The loaded modules that are there for their data, in the order of loading.
    std::vector<const lys_module*> implementedModules() const;

    /// Takes the calling thread's messages out of the library. Errors only.
    std::vector<YangMessage> takeMessages() const;

    /// Why `text` is no value of that leaf or leaf-list; empty if it is one. Any thread.
    std::string refusal(const lysc_node* node, const std::string& text) const;

    /// The same, and `text` must be in the canonical form of its type: "7" and not "007". Any
    /// thread.
    std::string refusalOfName(const lysc_node* node, const std::string& text) const;

    /// The type that `text` has as a value of that leaf or leaf-list: for a union the member that
    /// it belongs to. Null if it is no value. Any thread.
    const lysc_type* typeOf(const lysc_node* node, const std::string& text) const;

private:
    std::vector<ModelProblem> loadProblems(const std::string& module,
                                           const ModuleFinder& finder) const;
    std::vector<ModelProblem> compileProblems(const ModuleFinder& finder) const;

    ly_ctx* mContext = nullptr;
    /// The library promises nothing on checking values from several threads.
    mutable std::mutex mValidation;
};

}

#endif
