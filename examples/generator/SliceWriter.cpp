// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SliceWriter.h"

#include <string>
#include <utility>

namespace RanGenerator {

SliceWriter::SliceWriter(std::shared_ptr<const OrvHost::YangSchema> schema,
                         OrvHost::DataFormat format, std::filesystem::path directory,
                         std::size_t objectsPerFile)
    : mWriter(std::move(schema), format),
      mFormat(format),
      mDirectory(std::move(directory)),
      mObjectsPerFile(objectsPerFile) {
    mWriter.indent(false);
}

void SliceWriter::add(const OrvHost::DataObject& object) {
    mWriter.add(object);
    if (mWriter.size() == mObjectsPerFile) {
        finish();
    }
}

void SliceWriter::finish() {
    if (mWriter.size() == 0) {
        return;
    }
    // Files are read in the order of their names, so all numbers have the same length.
    const std::string number = std::to_string(++mFiles);
    const std::string padding(number.size() < 6 ? 6 - number.size() : 0, '0');
    const char* extension = mFormat == OrvHost::DataFormat::Json ? ".json" : ".xml";
    mWriter.writeFile(mDirectory / ("slice-" + padding + number + extension));
    mWriter.clear();
}

}
