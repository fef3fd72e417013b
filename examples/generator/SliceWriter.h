// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXAMPLES_GENERATOR_SLICEWRITER_H
#define ORV_EXAMPLES_GENERATOR_SLICEWRITER_H

#include "yang/instances/InstanceDataWriter.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>

namespace RanGenerator {

/// Writes objects into numbered files of a directory, the same number of objects into each.
class SliceWriter {
public:
    /// `objectsPerFile` is at least 1; `directory` must exist.
    SliceWriter(std::shared_ptr<const OrvHost::YangSchema> schema, OrvHost::DataFormat format,
                std::filesystem::path directory, std::size_t objectsPerFile);

    /// \throws OrvHost::InstanceDataError if a file cannot be written
    void add(const OrvHost::DataObject& object);

    /// Writes the objects that are not in a file yet, if there are any.
    void finish();

    std::size_t files() const { return mFiles; }

private:
    OrvHost::InstanceDataWriter mWriter;
    OrvHost::DataFormat mFormat;
    std::filesystem::path mDirectory;
    std::size_t mObjectsPerFile;
    std::size_t mFiles = 0;
};

}

#endif
