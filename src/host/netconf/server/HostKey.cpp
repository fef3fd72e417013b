// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "HostKey.h"

#include "ServerError.h"
#include "netconf/core/ServerLog.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <libssh/libssh.h>
#include <sys/stat.h>
#include <unistd.h>

namespace OrvHost {

namespace {

// The file is made with its mode before the key is written into it, so that nobody can open it
// meanwhile; and it gets its name when it is complete, because a server that finds half a key
// cannot start.
void makeKey(const std::string& path) {
    const std::string unfinished = path + "." + std::to_string(getpid()) + ".tmp";
    const int fd = open(unfinished.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0) {
        throw ServerError(path + ": the server's key cannot be written: " +
                          std::generic_category().message(errno));
    }
    close(fd);
    ssh_key key = nullptr;
    const bool isMade =
        ssh_pki_generate(SSH_KEYTYPE_ECDSA_P256, 256, &key) == SSH_OK &&
        ssh_pki_export_privkey_file(key, nullptr, nullptr, nullptr, unfinished.c_str()) == SSH_OK &&
        rename(unfinished.c_str(), path.c_str()) == 0;
    ssh_key_free(key);
    if (!isMade) {
        unlink(unfinished.c_str());
        throw ServerError(path + ": the server's key cannot be made");
    }
    logServer(6, "made a new key of the server: " + path);
}

}

void ensureHostKey(const std::string& path) {
    struct stat known {};
    if (stat(path.c_str(), &known) != 0) {
        makeKey(path);
    } else if ((known.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        throw ServerError(path + ": others than its owner can use the server's key; a file with "
                                 "mode 0600 was expected");
    }
}

}
