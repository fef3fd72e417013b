// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_UNCONFIRMEDNOTE_H
#define ORV_HOST_NETCONF_CORE_UNCONFIRMEDNOTE_H

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

namespace OrvHost {

/// Remembers in a file that a confirmed commit waits, for people: a store keeps what was committed,
/// but not that it was to be confirmed. If the process ends meanwhile, the next one can say it.
///
/// One thread at a time.
class UnconfirmedNote {
public:
    /// \p file: empty: nothing is remembered.
    explicit UnconfirmedNote(std::filesystem::path file = {}) : mFile(std::move(file)) {}

    bool isKept() const { return !mFile.empty(); }

    /// What every note begins with, so that a file of something else is not taken for one.
    static constexpr std::string_view kBegin = "a confirmed commit of ";

    /// What a process before this one has left, in one line; empty: nothing. It is gone afterwards.
    /// Throws FileError if it is there and cannot be read, or is no note, and then it stays.
    std::string take();
    /// \p text begins as a note must. The note is on the disk when this returns. If that is not
    /// possible, it is logged.
    void write(const std::string& text) noexcept;
    /// If that is not possible, it is logged.
    void clear() noexcept;

private:
    std::filesystem::path mFile;
};

}

#endif
