// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "JsonText.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace OrvHost {

std::string jsonText(const std::string& text) {
    const bool isPlain = std::all_of(text.begin(), text.end(), [](char letter) {
        return letter >= ' ' && letter <= '~' && letter != '"' && letter != '\\';
    });
    return isPlain ? '"' + text + '"'
                   : nlohmann::json(text).dump(-1, ' ', false,
                                               nlohmann::json::error_handler_t::replace);
}

}
