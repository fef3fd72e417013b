// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ComponentFinder.h"

#include "base/Suggestion.h"
#include "cli/errors/CliErrors.h"

#include <filesystem>
#include <system_error>
#include <vector>

namespace OrvHost {

std::string findExtCm() {
    namespace fs = std::filesystem;
    std::error_code unreadable;
    const fs::path directory = fs::read_symlink("/proc/self/exe", unreadable).parent_path();
    std::vector<std::string> tried;
    for (const char* place : {".", "../lib", "../" ORVHOST_LIBDIR}) {
        const fs::path candidate = (directory / place / "libext_cm.so").lexically_normal();
        if (fs::exists(candidate, unreadable)) {
            return candidate.string();
        }
        tried.push_back(candidate.string());
    }
    throw LoadError("the component libext_cm.so is not there; looked for " + enumerate(tried) +
                    ". Name it with --ext-cm");
}

}
