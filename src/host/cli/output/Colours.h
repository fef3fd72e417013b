// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_OUTPUT_COLOURS_H
#define ORV_HOST_CLI_OUTPUT_COLOURS_H

#include <string>

namespace OrvHost {

/// Marks texts for a terminal by colours. Without them, each text stays as it is.
class Colours {
public:
    explicit Colours(bool areWanted = false) : mAreWanted(areWanted) {}

    /// Whether a stream of this process, given by its descriptor, is a terminal that can show
    /// colours, and the variable NO_COLOR is not set.
    static bool areWantedOn(int descriptor);

    std::string error(const std::string& text) const { return in("31", text); }
    std::string note(const std::string& text) const { return in("33", text); }
    std::string added(const std::string& text) const { return in("32", text); }
    std::string removed(const std::string& text) const { return in("31", text); }
    std::string changed(const std::string& text) const { return in("33", text); }
    /// What is only said beside an answer.
    std::string remark(const std::string& text) const { return in("2", text); }

private:
    std::string in(const char* colour, const std::string& text) const {
        return mAreWanted && !text.empty() ? "\x1b[" + std::string(colour) + "m" + text + "\x1b[0m"
                                           : text;
    }

    bool mAreWanted;
};

}

#endif
