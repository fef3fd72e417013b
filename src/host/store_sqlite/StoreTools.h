// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_SQLITE_STORETOOLS_H
#define ORV_HOST_STORE_SQLITE_STORETOOLS_H

#include "model/Model.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// What the file of a store says of itself.
struct StoreInfo {
    std::uint64_t objects = 0;
    std::uint64_t position = 0;   ///< number of the last commit; 0: none since it was filled
    std::uint64_t firstEntry = 0; ///< number of the oldest commit whose entry is kept
    std::string lastAuthor;       ///< of the last commit; empty: none
    std::int64_t lastAt = 0;      ///< when it was, in seconds since 1970
    std::string model;            ///< the model's fingerprint
    std::uint64_t bytes = 0;      ///< of the file
};

// For the file of a store that no process uses. All throw LogUnavailable with a text that names the
// file: if a process uses it, that process.

StoreInfo readStoreInfo(const std::filesystem::path& file);
/// What is wrong in the file, one text each: in the engine's pages, in what the rows say together,
/// and in the form of records and entries. Whether each object follows the rules of the model is
/// checked when a host loads it.
std::vector<std::string> checkStore(const std::filesystem::path& file);
/// Gives the space of what was deleted back to the file system. Returns the bytes of the file
/// before and after.
std::pair<std::uint64_t, std::uint64_t> compactStore(const std::filesystem::path& file);

/// Calls \p take with each object, parents first and siblings in order, as the model of its time
/// names things. The file stays as it is.
using StoredObject = std::function<void(const std::string& dn, std::vector<NamedValue> values)>;
void readObjects(const std::filesystem::path& file, const StoredObject& take);
/// The same of a store that must be of \p model; throws LogUnavailable with the first difference.
void readObjects(const std::filesystem::path& file, const Model& model, const StoredObject& take);

}

#endif
