// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_INPUT_SCRIPTREADER_H
#define ORV_HOST_CLI_INPUT_SCRIPTREADER_H

#include <istream>
#include <string>

namespace OrvHost {

/// Reads a script line by line. A line whose last word is a single backslash continues in the next
/// one.
class ScriptReader {
public:
    /// \p script must outlive this object.
    explicit ScriptReader(std::istream& script) : mScript(script) {}

    /// Goes to the next line; false at the end.
    bool next();

    const std::string& line() const { return mLine; }
    /// The number of the line, counted from 1; of a continued line, that of its first one.
    int number() const { return mNumber; }

private:
    bool takeLine(std::string& line);

    std::istream& mScript;
    std::string mLine;
    int mNumber = 0;
    int mLinesTaken = 0;
};

}

#endif
