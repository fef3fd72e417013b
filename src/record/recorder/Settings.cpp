// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Settings.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include <dlfcn.h>
#include <unistd.h>

namespace OrvRecord {

namespace {

constexpr std::uint64_t kMegabyte = 1'000'000;
constexpr std::uint64_t kUsualLimit = 1000;
constexpr std::uint64_t kHighestLimit = 1'000'000;

std::string variable(const char* name) {
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): as a host loads
    return value != nullptr ? value : "";
}

std::string directoryOf(const void* code) {
    Dl_info info{};
    if (dladdr(code, &info) == 0 || info.dli_fname == nullptr) {
        return "";
    }
    const std::string path = info.dli_fname;
    return path.substr(0, path.rfind('/') + 1);
}

std::uint64_t limit() {
    const std::string text = variable("ORV_RECORD_LIMIT");
    if (text.empty()) {
        return kUsualLimit;
    }
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number == 0 ||
        number > kHighestLimit) {
        throw std::runtime_error("ORV_RECORD_LIMIT is '" + text +
                                 "', and no number of megabytes from 1 to 1000000");
    }
    return number;
}

}

Settings readSettings(const void* inRecorder) {
    Settings settings;
    settings.component = variable("ORV_RECORD_COMPONENT");
    if (settings.component.empty()) {
        settings.component = directoryOf(inRecorder) + "libext_cm.so";
    }
    settings.file = variable("ORV_RECORD_FILE");
    if (settings.file.empty()) {
        settings.file = "orv-record-" + std::to_string(getpid()) + ".orvrec";
    }
    settings.mostBytes = limit() * kMegabyte;
    return settings;
}

}
