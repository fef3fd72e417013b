// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TextFile.h"

#include "ByteOrderMark.h"
#include "HeldFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <system_error>

#include <unistd.h>

namespace OrvHost {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kFirstPortion = 65536;

}

std::string whyNotReadable(const fs::path& file) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (fs::is_directory(status)) {
        return "cannot be read: it is a directory";
    }
    if (status.type() == fs::file_type::not_found) {
        return "cannot be read: there is no such file";
    }
    if (HeldFile::isHeld(file)) {
        return "cannot be read: it is the file of this host's store";
    }
    if (access(file.c_str(), R_OK) != 0) {
        return "cannot be read: " + std::generic_category().message(errno);
    }
    return {};
}

TextFile readTextFile(const fs::path& file) {
    TextFile result;
    result.problem = whyNotReadable(file);
    if (!result.isRead()) {
        return result;
    }
    std::ifstream input(file, std::ios::binary);
    std::error_code error;
    // One byte more than the size, to find the end at once; a pipe has no size.
    const std::uintmax_t expected = fs::file_size(file, error);
    std::string text(error ? 1 : static_cast<std::size_t>(expected) + 1, '\0');
    std::size_t size = 0;
    while (input.read(text.data() + size, static_cast<std::streamsize>(text.size() - size))) {
        size = text.size();
        text.resize(std::max(kFirstPortion, size * 2));
    }
    text.resize(size + static_cast<std::size_t>(input.gcount()));
    if (!input.is_open() || input.bad()) {
        result.problem = input.is_open() ? "cannot be read to its end" : "cannot be read";
        return result;
    }
    if (hasMarkOfUtf16(text)) {
        result.problem = "cannot be read: it is UTF-16; UTF-8 was expected";
        return result;
    }
    removeByteOrderMark(text);
    result.text = std::move(text);
    return result;
}

}
