// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TextFile.h"

#include "ByteOrderMark.h"

#include <algorithm>
#include <cstdint>
#include <fstream>

namespace OrvHost {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kFirstPortion = 65536;

}

TextFile readTextFile(const fs::path& file) {
    TextFile result;
    std::ifstream input(file, std::ios::binary);
    std::error_code error;
    if (!input || fs::is_directory(file, error)) {
        return result;
    }
    // One byte more than the size, to find the end at once; a pipe has no size.
    const std::uintmax_t expected = fs::file_size(file, error);
    std::string text(error ? 1 : static_cast<std::size_t>(expected) + 1, '\0');
    std::size_t size = 0;
    while (input.read(text.data() + size, static_cast<std::streamsize>(text.size() - size))) {
        size = text.size();
        text.resize(std::max(kFirstPortion, size * 2));
    }
    text.resize(size + static_cast<std::size_t>(input.gcount()));
    if (input.bad()) {
        result.state = TextFile::State::CutOff;
        return result;
    }
    removeByteOrderMark(text);
    result.state = TextFile::State::Read;
    result.text = std::move(text);
    return result;
}

}
