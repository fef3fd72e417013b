// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_SERVER_USERTABLE_H
#define ORV_HOST_NETCONF_SERVER_USERTABLE_H

#include "netconf/core/NetconfSession.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <libssh/libssh.h>
#include <sys/types.h>

namespace OrvHost {

/// Who may log in: by a key, or by a password whose hash is known.
///
/// Any thread, once it is filled.
class UserTable {
public:
    /// Adds the public keys of a file in OpenSSH's form, one a line. Throws ServerError if it holds
    /// none or cannot be read.
    void addKeys(const std::string& user, const std::string& file);
    /// Adds a file of lines NAME:HASH, with hashes of crypt(3). Empty lines and those that begin
    /// with "#" say nothing. Throws ServerError, also if others can read the file.
    void addPasswords(const std::string& file);
    /// The user may only read, however he comes: by this name, or as \p local, a user of this
    /// machine.
    void setReadOnly(const std::string& user, std::optional<uid_t> local) {
        mReadOnly.insert(user);
        if (local) {
            mReadOnlyLocal.insert(*local);
        }
    }

    /// True if that user can log in by a key or a password.
    bool isKnown(const std::string& user) const {
        return mKeys.count(user) != 0 || mHashes.count(user) != 0;
    }
    bool isEmpty() const { return mKeys.empty() && mHashes.empty(); }
    bool hasKey(const std::string& user, ssh_key key) const;
    /// Takes the same time whether there is such a user or not.
    bool hasPassword(const std::string& user, const std::string& password) const;
    NetconfUser named(const std::string& user) const { return {user, mReadOnly.count(user) != 0}; }
    /// A user of this machine. The number decides, since a name is not always found.
    NetconfUser local(uid_t number, const std::string& name) const {
        return {name, mReadOnly.count(name) != 0 || mReadOnlyLocal.count(number) != 0};
    }

private:
    struct KeyDeleter {
        void operator()(ssh_key key) const { ssh_key_free(key); }
    };
    using Key = std::unique_ptr<ssh_key_struct, KeyDeleter>;

    std::map<std::string, std::vector<Key>> mKeys;
    std::map<std::string, std::string> mHashes;
    std::set<std::string> mReadOnly;
    std::set<uid_t> mReadOnlyLocal;
};

}

#endif
