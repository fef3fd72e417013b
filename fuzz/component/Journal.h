// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_COMPONENT_JOURNAL_H
#define ORV_FUZZ_COMPONENT_JOURNAL_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <string_view>

namespace Fuzz {

/// What happened in one run, in words that are the same for equal runs: no addresses, and
/// transactions by their number in the run. Long texts are cut, with a number made of the whole.
class Journal {
public:
    /// Begins a call that the host has got.
    Journal& call(const char* name) {
        ++mCalls;
        return word(name);
    }
    Journal& word(std::string_view word) {
        if (mText.size() < kMost) {
            mText.append(word).append(" ");
        }
        return *this;
    }
    Journal& number(long long number) { return word(std::to_string(number)); }
    Journal& text(const char* text);
    template <class Container>
    Journal& value(const Container* value) {
        return valueAt(value, 0);
    }
    void end() {
        if (mText.size() < kMost) {
            mText += '\n';
        }
        if (shows()) {
            std::fputs(mText.c_str() + mShown, stderr);
            mShown = mText.size();
        }
    }

    /// The calls that the host has got so far.
    std::size_t calls() const { return mCalls; }
    const std::string& events() const { return mText; }

private:
    /// True if somebody wants to look on.
    static bool shows() {
        static const bool theyDo = std::getenv("FUZZ_COMPONENT_SHOW") != nullptr;
        return theyDo;
    }

    static constexpr std::size_t kMost = 1U << 20U;
    static constexpr std::uint32_t kMostValues = 8;
    static constexpr int kMostDepth = 3;

    template <class Container>
    Journal& valueAt(const Container* value, int depth);

    std::string mText;
    std::size_t mCalls = 0;
    std::size_t mShown = 0;
};

inline Journal& Journal::text(const char* text) {
    constexpr std::size_t kLongest = 60;
    if (text == nullptr) {
        return word("(null)");
    }
    const std::string_view whole(text);
    if (whole.size() <= kLongest) {
        return word("'").word(whole);
    }
    return word("'")
        .word(whole.substr(0, kLongest))
        .word(std::to_string(std::hash<std::string_view>()(whole)));
}

template <class Container>
Journal& Journal::valueAt(const Container* value, int depth) {
    if (value == nullptr) {
        return word("(no value)");
    }
    number(value->type).number(value->count);
    if (value->values == nullptr) {
        return word("(no slots)");
    }
    for (std::uint32_t at = 0; at < value->count && at < kMostValues; ++at) {
        if (value->type == 11 || value->type == 9) {
            text(value->values[at].string);
        } else if (value->type == 14 && depth < kMostDepth) {
            std::uint32_t members = 0;
            for (const auto* member = value->values[at].structValue;
                 member != nullptr && members < kMostValues; member = member->next, ++members) {
                text(member->name).valueAt(member->value, depth + 1);
            }
        }
    }
    return *this;
}

}

#endif
