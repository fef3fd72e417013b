// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_WORDS_H
#define ORV_HOST_CLI_WORDS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

/// The words of one command, taken one after the other. Options may stand anywhere and are taken
/// out first.
class Words {
public:
    explicit Words(std::vector<std::string> words) : mWords(std::move(words)) {}

    /// True, once, if the option \p name is there.
    bool takeFlag(const std::string& name);

    /// The number behind the option \p name, if that is there. Throws UsageError if no number from
    /// 0 follows.
    std::optional<std::uint64_t> takeNumber(const std::string& name);

    /// The text behind the option \p name, if that is there. Throws UsageError if none follows.
    std::optional<std::string> takeText(const std::string& name);

    /// The next word; throws UsageError naming \p what if there is none.
    std::string take(const std::string& what);
    /// The next word, if there is one.
    std::optional<std::string> takeOptional();
    /// A DN, where "/" and an empty word stand for the top level, and so does none at all.
    std::string takeDnOrTop();
    std::vector<std::string> takeRest();

    /// Throws UsageError if anything is left, or an option was not taken.
    void end() const;

private:
    std::optional<std::string> takeBehind(const std::string& name, const std::string& what);

    std::vector<std::string> mWords;
};

/// The number that \p text is; throws UsageError with \p what if it is none, or negative.
std::uint64_t parseNumber(const std::string& text, const std::string& what);

}

#endif
