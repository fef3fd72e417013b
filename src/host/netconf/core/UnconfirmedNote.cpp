// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "UnconfirmedNote.h"

#include "base/AtomicFile.h"
#include "base/TextFile.h"
#include "netconf/core/ServerLog.h"

namespace OrvHost {

std::string UnconfirmedNote::take() {
    if (!isKept() || !std::filesystem::exists(mFile)) {
        return {};
    }
    const TextFile note = readTextFile(mFile);
    if (!note.isRead()) {
        throw FileError(mFile.string() + ": " + note.problem);
    }
    if (note.text.compare(0, kBegin.size(), kBegin) != 0) {
        throw FileError(mFile.string() + ": a note of a confirmed commit was expected, or no file; "
                                         "this one has something else, and is left alone");
    }
    clear();
    return note.text.substr(0, note.text.find('\n'));
}

void UnconfirmedNote::write(const std::string& text) noexcept {
    contain("the next start will not say that a confirmed commit waits", [&] {
        if (isKept()) {
            writeWholeFile(mFile, text + "\n");
        }
    });
}

void UnconfirmedNote::clear() noexcept {
    contain("the next start will say that a confirmed commit waits, which is done", [this] {
        if (isKept()) {
            std::filesystem::remove(mFile);
        }
    });
}

}
