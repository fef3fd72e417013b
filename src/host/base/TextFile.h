// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_TEXTFILE_H
#define ORV_HOST_BASE_TEXTFILE_H

#include <filesystem>
#include <string>

namespace OrvHost {

/// A file in UTF-8, as a whole, or why it could not be had.
struct TextFile {
    std::string text;    ///< without a byte order mark; empty if there is a problem
    std::string problem; ///< "cannot be read: there is no such file"; empty if it was read

    bool isRead() const { return problem.empty(); }
};

/// Reads \p file, which can also be a pipe, but no directory.
TextFile readTextFile(const std::filesystem::path& file);

/// "cannot be read: there is no such file", if \p file cannot be opened, or is a directory; empty
/// if it can be read.
std::string whyNotReadable(const std::filesystem::path& file);

}

#endif
