// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_SUPPORT_CHOSENMODULES_H
#define ORV_FUZZ_SUPPORT_CHOSENMODULES_H

#include "yang/schema/YangModelReader.h"

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace Fuzz {

/// The words of a variable of the environment, which are separated by ":"; none if it is not set.
inline std::vector<std::string> wordsOf(const char* variable) {
    const char* value = std::getenv(variable);
    std::istringstream text(value != nullptr ? value : "");
    std::vector<std::string> words;
    for (std::string word; std::getline(text, word, ':');) {
        words.push_back(word);
    }
    return words;
}

/// A reader that looks for imported modules in the directories of FUZZ_YANG_PATH. Without that
/// variable a module can only import what is built in.
inline OrvHost::YangModelReader chosenModelReader() {
    OrvHost::YangModelReader reader;
    for (const std::string& directory : wordsOf("FUZZ_YANG_PATH")) {
        reader.searchIn(directory);
    }
    return reader;
}

}

#endif
