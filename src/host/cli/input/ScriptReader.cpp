// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptReader.h"

#include "base/ByteOrderMark.h"

namespace OrvHost {

namespace {

// True if the line ends with a backslash word, which is removed.
bool goesOn(std::string& line) {
    const std::size_t last = line.size() - 1;
    const bool isAlone = !line.empty() && line[last] == '\\' &&
                         (last == 0 || line[last - 1] == ' ' || line[last - 1] == '\t');
    if (isAlone) {
        line.pop_back();
    }
    return isAlone;
}

}

bool ScriptReader::next() {
    if (!takeLine(mLine)) {
        return false;
    }
    mNumber = mLinesTaken;
    std::string more;
    while (goesOn(mLine) && takeLine(more)) {
        mLine += more;
    }
    return true;
}

bool ScriptReader::takeLine(std::string& line) {
    if (!std::getline(mScript, line)) {
        return false;
    }
    if (mLinesTaken == 0) {
        removeByteOrderMark(line);
    }
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    ++mLinesTaken;
    return true;
}

}
