// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "UnconfirmedNote.h"

#include "base/AtomicFile.h"
#include "base/TextFile.h"
#include "netconf/core/ServerLog.h"

namespace OrvHost {

namespace {

/// In one line; empty: there is no file.
std::string readNote(const std::filesystem::path& file) {
    if (!std::filesystem::exists(file)) {
        return {};
    }
    const TextFile note = readTextFile(file);
    if (!note.isRead()) {
        throw FileError(file.string() + ": " + note.problem);
    }
    if (note.text.compare(0, UnconfirmedNote::kBegin.size(), UnconfirmedNote::kBegin) != 0) {
        throw FileError(file.string() + ": a note of a confirmed commit was expected, or no file; "
                                        "this one has something else, and is left alone");
    }
    return note.text.substr(0, note.text.find('\n'));
}

}

UnconfirmedNote::UnconfirmedNote(const std::filesystem::path& file) : mFile(file) {
    if (!isKept()) {
        return;
    }
    try {
        const AtomicFile trial(mFile); // what cannot be written is said now, not at a commit
        mHolder = std::make_unique<FileHolder>(mFile);
    } catch (const FileError& failure) {
        throw FileError(std::string(failure.what()) +
                        "; a file was expected that can be written, and that no other server uses");
    }
    mLeft = readNote(mFile);
}

void UnconfirmedNote::tellLeft() {
    if (!mLeft.empty()) {
        logServer(4, mLeft);
        mLeft.clear();
        clear();
    }
}

void UnconfirmedNote::write(const std::string& text) noexcept {
    contain("the next start will not say that a confirmed commit waits", [&] {
        if (isKept()) {
            tellLeft();
            writeWholeFile(mFile, text + "\n");
        }
    });
}

void UnconfirmedNote::clear() noexcept {
    contain("the next start will say that a confirmed commit waits, which is done", [this] {
        if (isKept() && mLeft.empty()) {
            std::filesystem::remove(mFile);
        }
    });
}

}
