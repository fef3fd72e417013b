// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_UNCONFIRMEDNOTE_H
#define ORV_HOST_NETCONF_CORE_UNCONFIRMEDNOTE_H

#include "base/FileHolder.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace OrvHost {

/// Remembers in a file that a confirmed commit waits, for people: a store keeps what was committed,
/// but not that it was to be confirmed. If the process ends meanwhile, the next one can say it.
/// As long as this lives, the file belongs to it: see FileHolder.
///
/// One thread at a time.
class UnconfirmedNote {
public:
    /// Remembers nothing.
    UnconfirmedNote() = default;
    /// Reads what a process before this one has left in \p file, which stays as it is. Empty:
    /// remembers nothing. Throws FileError if another process has it, no file can be made there, or
    /// what is there cannot be read or is no note.
    explicit UnconfirmedNote(const std::filesystem::path& file);

    bool isKept() const { return !mFile.empty(); }

    /// What every note begins with, so that a file of something else is not taken for one.
    static constexpr std::string_view kBegin = "a confirmed commit of ";

    /// Logs what a process before this one has left, and removes it; once.
    void tellLeft();
    /// \p text begins as a note must. The note is on the disk when this returns. If that is not
    /// possible, it is logged. Tells what was left before.
    void write(const std::string& text) noexcept;
    /// What was left and is not told yet stays. If it is not possible, it is logged.
    void clear() noexcept;

private:
    std::filesystem::path mFile;
    std::unique_ptr<FileHolder> mHolder; ///< null: nothing is kept
    std::string mLeft;                   ///< one line; empty: nothing, or it is told
};

}

#endif
