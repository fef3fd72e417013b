// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_INSTANCEDATAREADER_H
#define ORV_HOST_YANG_INSTANCES_INSTANCEDATAREADER_H

#include "yang/instances/DataObject.h"
#include "yang/instances/InstanceDataError.h"
#include "yang/schema/YangSchema.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

class PlainJsonReader;

/// How far reading has come.
struct DataProgress {
    std::size_t filesDone = 0;
    std::size_t filesInAll = 0;
    std::size_t objects = 0;     ///< delivered so far
    std::uint64_t bytesDone = 0; ///< of the files that are done
    std::uint64_t bytesInAll = 0;
};

/// Reads instance data, one file at a time, into a flat sequence of objects: parents before their
/// children, objects of one class under one parent in the order of the text.
///
/// The reader enforces the modules' types, and that every node is part of the model. It does not
/// check how objects fit together: multiplicities, associations, repeated objects (see
/// InstanceChecker).
///
/// Memory is that of the largest file: of its objects if it is plain JSON (see PlainJsonReader), or
/// else of the YANG library's tree (1.7 kB for an object of nine values). It is freed before the
/// next file is read. Several readers may share a schema and run at the same time.
class InstanceDataReader {
public:
    /// Receives the object. `file` is the file it was read from, valid during the call. An
    /// exception from it ends the reading and reaches the caller.
    using Sink = std::function<void(DataObject&& object, const std::string& file)>;
    using Progress = std::function<void(const DataProgress& progress)>;

    explicit InstanceDataReader(std::shared_ptr<const YangSchema> schema);
    ~InstanceDataReader();
    InstanceDataReader(const InstanceDataReader&) = delete;
    InstanceDataReader& operator=(const InstanceDataReader&) = delete;

    /// Called after each file, and after every 4096 objects.
    InstanceDataReader& onProgress(Progress progress);

    /// Data that no loaded module knows is skipped with a note. Without this call it is an error.
    InstanceDataReader& skipUnknown();

    /// The element at the root (see base/RootObject.h) is delivered under that name, and so is
    /// every DN in references that begins with its name in the file: a host knows it by another
    /// name inside, and other hosts give it other names. One name is expected in all files of a
    /// read(), kRootName excepted. Without this call DNs are delivered as the files have them.
    InstanceDataReader& nameRoot(std::string name);

    /// What the latest read() or readText() has skipped, for people: data that the modules know but
    /// that has no place in the model, and unknown data.
    const std::vector<Problem>& notes() const { return mNotes; }

    /// Reads files, and all `.json` and `.xml` files of directories in the order of their names.
    /// The file's first character decides the format. Returns the number of objects.
    /// \throws InstanceDataError if a file is named twice, else with the first error of each file;
    /// the YANG library reports no others. The objects of the files before the first faulty one
    /// have been delivered.
    std::size_t read(const std::vector<std::filesystem::path>& paths, const Sink& sink);

    /// Reads a text. `label` is used as the file name in messages.
    /// \throws InstanceDataError
    std::size_t readText(const std::string& text, const std::string& label, const Sink& sink);

private:
    void readFile(const std::filesystem::path& file, const Sink* sink);
    void parseAndDeliver(const std::string& text, const std::string& label, const Sink* sink);
    void noteRoot(const std::string& name, const std::string& label);
    void report(bool always);

    std::shared_ptr<const YangSchema> mSchema;
    std::unique_ptr<PlainJsonReader> mPlainReader;
    bool mSkipsUnknown = false;
    std::optional<std::string> mRootName;
    std::string mRootInFiles; ///< its name in the files so far, if it is not kRootName
    std::string mRootFile;    ///< the first file that has it
    std::vector<Problem> mNotes;
    Progress mProgress;
    DataProgress mState;
};

}

#endif
