// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "UserTable.h"

#include "ServerError.h"
#include "base/TextFile.h"

#include <fstream>
#include <sstream>

#include <crypt.h>
#include <sys/stat.h>

namespace OrvHost {

namespace {

std::ifstream openToRead(const std::string& file) {
    if (const std::string problem = whyNotReadable(file); !problem.empty()) {
        throw ServerError(file + ": " + problem);
    }
    return std::ifstream(file);
}

bool saysSomething(const std::string& line) {
    const std::size_t first = line.find_first_not_of(" \t");
    return first != std::string::npos && line[first] != '#';
}

bool isSame(const std::string& left, const std::string& right) {
    if (left.size() != right.size()) {
        return false;
    }
    bool isSame = true;
    for (std::size_t at = 0; at < left.size(); ++at) {
        isSame = (left[at] == right[at]) & isSame; // no early end, which would tell how far it goes
    }
    return isSame;
}

std::string hashOf(const std::string& password, const std::string& setting) {
    const auto data = std::make_unique<crypt_data>();
    const char* const hash = crypt_r(password.c_str(), setting.c_str(), data.get());
    return hash != nullptr && hash[0] != '*' ? hash : "";
}

}

void UserTable::addKeys(const std::string& user, const std::string& file) {
    std::ifstream in = openToRead(file);
    std::vector<Key>& keys = mKeys[user];
    for (std::string line; std::getline(in, line);) {
        if (!saysSomething(line)) {
            continue;
        }
        std::istringstream words(line);
        std::string type;
        std::string text;
        words >> type >> text;
        ssh_key key = nullptr;
        if (ssh_pki_import_pubkey_base64(text.c_str(), ssh_key_type_from_name(type.c_str()),
                                         &key) != SSH_OK) {
            throw ServerError(file + ": a public key was expected, such as 'ssh-ed25519 AAAA...'");
        }
        keys.emplace_back(key);
    }
    if (keys.empty()) {
        throw ServerError(file + ": holds no public key");
    }
}

void UserTable::addPasswords(const std::string& file) {
    std::ifstream in = openToRead(file);
    struct stat known {};
    if (stat(file.c_str(), &known) != 0 || (known.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        throw ServerError(file + ": others than its owner can use the file of passwords; mode 0600 "
                                 "was expected");
    }
    for (std::string line; std::getline(in, line);) {
        const std::size_t colon = line.find(':');
        if (!saysSomething(line)) {
            continue;
        }
        const std::string hash = colon != std::string::npos ? line.substr(colon + 1) : "";
        if (colon == 0 || hash.size() < 3 || hash.front() != '$' ||
            hashOf("", hash).size() != hash.size()) {
            throw ServerError(file + ": NAME:HASH was expected, with a hash of crypt(3) as "
                                     "'openssl passwd -6' prints it");
        }
        mHashes[line.substr(0, colon)] = hash;
    }
}

bool UserTable::hasKey(const std::string& user, ssh_key key) const {
    const auto found = mKeys.find(user);
    if (found == mKeys.end()) {
        return false;
    }
    for (const Key& one : found->second) {
        if (ssh_key_cmp(one.get(), key, SSH_KEY_CMP_PUBLIC) == 0) {
            return true;
        }
    }
    return false;
}

bool UserTable::hasPassword(const std::string& user, const std::string& password) const {
    const auto found = mHashes.find(user);
    const bool isKnown = found != mHashes.end();
    if (mHashes.empty()) {
        return false;
    }
    const std::string& hash = isKnown ? found->second : mHashes.begin()->second;
    return isSame(hashOf(password, hash), hash) && isKnown;
}

}
