// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_DATAFILE_H
#define ORV_HOST_CLI_COMMANDS_DATAFILE_H

#include "yang/instances/DataObject.h"

#include <memory>
#include <string>
#include <vector>

namespace OrvHost {

class Session;
class YangSchema;

/// The name of the committed state among what can be compared.
constexpr const char* kCommitted = "committed";

/// What a file of instance data, or a directory of them, holds.
struct DataFile {
    /// Each object once; parents before their children in each file. The element at the root has
    /// the name by which clients know it, whatever its name in the file, in references too. DNs
    /// have the form of shortDn.
    std::vector<DataObject> objects;
    std::vector<std::string> notes; ///< what of the file is not read, for people
};

/// Reads a file. Throws InstanceDataError with all problems, and CancelledError.
DataFile readDataFile(Session& session, const std::string& file);

/// Throws AnswerError if there is no model, which says how files hold objects.
std::shared_ptr<const YangSchema> requireSchema(const Session& session);

}

#endif
