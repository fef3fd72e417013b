// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_RECORDER_SETTINGS_H
#define ORV_RECORD_RECORDER_SETTINGS_H

#include <cstdint>
#include <string>

namespace OrvRecord {

/// What the environment says to the recorder.
struct Settings {
    std::string component;       ///< ORV_RECORD_COMPONENT, or libext_cm.so beside the recorder
    std::string file;            ///< ORV_RECORD_FILE, or orv-record-PID.orvrec
    std::uint64_t mostBytes = 0; ///< ORV_RECORD_LIMIT, in megabytes; 1000 without it
};

/// \p inRecorder: any address in the recorder's code. Throws std::runtime_error for a limit that is
/// no number from 1 to 1000000.
Settings readSettings(const void* inRecorder);

}

#endif
