// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SoakOptions.h"

#include <charconv>
#include <stdexcept>
#include <string>

namespace Soak {

namespace {

std::uint64_t numberIn(const std::string& text) {
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number);
    if (parsed.ec != std::errc() || parsed.ptr != end || number == 0) {
        throw std::invalid_argument("'" + text + "' is no number from 1");
    }
    return number;
}

}

SoakOptions readOptions(int count, const char* const* arguments) {
    SoakOptions options;
    for (int at = 1; at < count; at += 2) {
        const std::string name = arguments[at];
        const std::uint64_t number = numberIn(at + 1 < count ? arguments[at + 1] : "");
        if (name == "--operations") {
            options.operations = number;
        } else if (name == "--transactions") {
            options.transactions = number;
        } else if (name == "--threads") {
            options.threads = static_cast<unsigned>(number);
        } else if (name == "--seed") {
            options.seed = number;
        } else {
            throw std::invalid_argument("there is no option '" + name + "'");
        }
    }
    return options;
}

}
