// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OwnFolders.h"

#include "netconf/server/ServerError.h"

#include <cerrno>
#include <deque>
#include <filesystem>
#include <system_error>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace OrvHost {

namespace {

using Path = std::filesystem::path;

/// As many as the kernel follows.
constexpr int kMostLinks = 40;

bool isOwn(const struct stat& known) {
    return known.st_uid == geteuid() || known.st_uid == 0;
}

/// Goes a path name by name, as the kernel does. Who may write into a folder on the way can
/// exchange what the next name leads to: a folder, or a link to one.
class Walk {
public:
    explicit Walk(const std::string& path) : mPath(path) {}

    /// To the folder of the path, which is then checked, too.
    void go() {
        follow(std::filesystem::absolute(mPath).parent_path());
        while (!mAhead.empty()) {
            const Path name = std::move(mAhead.front());
            mAhead.pop_front();
            step(name);
        }
        requireOwn(0);
    }

private:
    void step(const Path& name) {
        if (name.empty() || name == ".") {
            return;
        }
        if (name == "..") { // checked on the way down
            mFolder = mFolder.parent_path();
            return;
        }
        requireOwn(S_ISVTX);
        const Path next = mFolder / name;
        const struct stat known = look(next, lstat);
        if (!S_ISLNK(known.st_mode)) {
            mFolder = next;
            return;
        }
        if (!isOwn(known)) {
            throw ServerError(mPath + ": the symbolic link " + next.string() +
                              " belongs to somebody else, who can exchange it; for a shell's "
                              "socket, one of the server's user or of root was expected");
        }
        if (++mLinks > kMostLinks) {
            fail(ELOOP);
        }
        std::error_code error;
        const Path target = std::filesystem::read_symlink(next, error);
        if (error) {
            fail(error.value());
        }
        follow(target);
    }

    /// The names of \p path are the next ones.
    void follow(const Path& path) {
        if (path.is_absolute()) {
            mFolder = path.root_path();
        }
        const Path names = path.relative_path();
        mAhead.insert(mAhead.begin(), names.begin(), names.end());
    }

    /// Who may write into a folder can put something of their own there, in the place of what is
    /// there already, too, unless the folder is one where only owners move what is theirs.
    /// \p harmless: bits of the mode that say so.
    void requireOwn(mode_t harmless) const {
        const struct stat known = look(mFolder, stat);
        const bool isOpen =
            (known.st_mode & (S_IWGRP | S_IWOTH)) != 0 && (known.st_mode & harmless) == 0;
        if (!isOwn(known) || isOpen) {
            throw ServerError(mPath + ": others can write into the folder " + mFolder.string() +
                              "; for a shell's socket, one was expected that only the server's "
                              "user can write into, and so all above it");
        }
    }

    struct stat look(const Path& at, int (*how)(const char*, struct stat*)) const {
        struct stat known {};
        if (how(at.c_str(), &known) != 0) {
            fail(errno);
        }
        return known;
    }

    [[noreturn]] void fail(int error) const {
        throw ServerError(mPath + ": " + std::generic_category().message(error));
    }

    const std::string& mPath;
    Path mFolder; ///< no link leads to it any more
    std::deque<Path> mAhead;
    int mLinks = 0;
};

}

void requireOwnFolders(const std::string& path) {
    Walk(path).go();
}

}
