// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_TEXTFILE_H
#define ORV_HOST_BASE_TEXTFILE_H

#include <filesystem>
#include <string>

namespace OrvHost {

/// A file in UTF-8, as a whole, or why it could not be had.
struct TextFile {
    enum class State { Read, NotOpened, CutOff };

    State state = State::NotOpened;
    std::string text; ///< without a byte order mark; empty unless Read

    bool isRead() const { return state == State::Read; }
};

/// Reads \p file, which can also be a pipe. A directory is NotOpened; CutOff means that reading
/// failed before the end.
TextFile readTextFile(const std::filesystem::path& file);

}

#endif
