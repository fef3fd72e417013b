// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_INPUT_WORDS_H
#define ORV_HOST_CLI_INPUT_WORDS_H

#include "model/Model.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// The words of one command, taken one after the other. Options may be anywhere and are taken out
/// first.
class Words {
public:
    /// \p here is the object at which the session stands: see fromTop. The last \p values words are
    /// no options.
    explicit Words(std::vector<std::string> words, std::string here = {}, std::size_t values = 0)
        : mWords(std::move(words)), mHere(std::move(here)), mValues(values) {}

    /// True, the first time, if the option \p name is given.
    bool takeFlag(const std::string& name);

    /// The number after the option \p name, if the option is given. Throws UsageError if no number
    /// from 0 follows.
    std::optional<std::uint64_t> takeNumber(const std::string& name);

    /// The text after the option \p name, if the option is given. Throws UsageError if none
    /// follows.
    std::optional<std::string> takeText(const std::string& name);

    /// The next word; throws UsageError naming \p what if there is none.
    std::string take(const std::string& what);
    /// The next word, if there is one.
    std::optional<std::string> takeOptional();
    /// The next word without taking it; empty if there is none.
    std::string peek() const { return mWords.empty() ? std::string() : mWords.front(); }
    /// The next word as a DN from the top level, in the form that all commands show (see fromTop);
    /// throws UsageError if there is none.
    std::string takeDn(const Model& model);
    /// The same; "/", an empty word and no word at all mean the top level.
    std::string takeDnOrTop(const Model& model);
    /// The same, but no word at all means the object at which the session stands.
    std::string takeDnOrHere(const Model& model);
    std::vector<std::string> takeRest();

    /// Throws UsageError if words are left, or if an option was not taken.
    void end() const;

private:
    std::vector<std::string>::iterator optionsEnd();
    std::optional<std::string> takeAfter(const std::string& name, const std::string& what);

    std::vector<std::string> mWords;
    std::string mHere;
    std::size_t mValues;
};

/// \p text as a number; throws UsageError with \p what if it is not a number, or negative.
std::uint64_t parseNumber(const std::string& text, const std::string& what);

}

#endif
