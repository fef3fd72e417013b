// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Story.h"

#include "StoryLayout.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <system_error>

namespace OrvValidate {

namespace {

constexpr std::uint32_t kDeepest = 20; ///< deeper calls are not indented further

/// A call as this process has read it. The component could write into the memory it comes from, so
/// nothing in it is relied on.
struct Told {
    std::uint64_t number;
    std::uint32_t thread;
    std::uint32_t depth;
    bool isStep;
    bool hasEnded;
    std::string outcome;
    std::string call;
};

template <std::size_t Size>
std::string textIn(const char (&field)[Size]) {
    std::string text(field, strnlen(field, Size));
    std::replace(text.begin(), text.end(), '\n', ' '); // one line for each call
    return text;
}

template <std::size_t Size>
void append(const StoryPart<Size>& part, bool isStep, std::vector<Told>& all) {
    for (const StoryEntry& entry : part.entries) {
        if (entry.number != 0) {
            all.push_back({entry.number, entry.thread, entry.depth, isStep, entry.ended != 0,
                           textIn(entry.outcome), textIn(entry.call)});
        }
    }
}

std::unique_ptr<StoryLayout> layoutIn(const MemoryFile& file) {
    const std::string bytes = file.read(sizeof(StoryLayout));
    auto layout = std::make_unique<StoryLayout>();
    std::memcpy(layout.get(), bytes.data(), std::min(bytes.size(), sizeof(StoryLayout)));
    return layout;
}

std::vector<Told> allIn(const StoryLayout& layout) {
    std::vector<Told> all;
    append(layout.steps, true, all);
    append(layout.calls, false, all);
    std::sort(all.begin(), all.end(),
              [](const Told& left, const Told& right) { return left.number < right.number; });
    // Calls of a step that was not kept say nothing.
    all.erase(all.begin(),
              std::find_if(all.begin(), all.end(), [](const Told& each) { return each.isStep; }));
    return all;
}

std::size_t stepsIn(const std::vector<Told>& all) {
    return static_cast<std::size_t>(
        std::count_if(all.begin(), all.end(), [](const Told& each) { return each.isStep; }));
}

std::string counted(std::uint64_t number, const char* what) {
    return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

std::string missing(std::uint64_t told, std::size_t kept, const char* what) {
    return told > kept ? "  (" + counted(told - kept, what) + " not shown)\n" : "";
}

// The mark of a step that has not returned stands at the beginning of its line.
std::string line(const Told& told, bool isOfManyThreads) {
    const bool isOpenStep = told.isStep && !told.hasEnded;
    std::string text = isOpenStep ? "> " : "  ";
    text += isOfManyThreads ? "thread " + std::to_string(told.thread) + ": " : "";
    text += std::string(std::size_t{2} * std::min(told.depth, kDeepest), ' ') + told.call;
    text +=
        told.hasEnded ? (told.outcome.empty() ? "" : " -> " + told.outcome) : " has not returned";
    return text + "\n";
}

std::string linesOf(const std::vector<Told>& all) {
    const bool isOfManyThreads = std::any_of(all.begin(), all.end(), [&](const Told& each) {
        return each.thread != all.front().thread;
    });
    std::string text;
    for (const Told& each : all) {
        text += line(each, isOfManyThreads);
    }
    return text;
}

}

Story::Story() {
    mFile.resize(sizeof(StoryLayout));
    if (!mFile.write(&kStoryMark, sizeof kStoryMark)) {
        throw std::system_error(errno, std::generic_category(), "memory for a story");
    }
}

std::string Story::text() const {
    const std::unique_ptr<StoryLayout> layout = layoutIn(mFile);
    const std::vector<Told> all = allIn(*layout);
    const std::size_t steps = stepsIn(all);
    if (steps == 0) {
        return "";
    }
    return "What the host did, and below each step the calls that it got:\n" +
           missing(layout->steps.told, steps, "earlier step") +
           missing(layout->calls.told, all.size() - steps, "earlier call") + linesOf(all) +
           (underWay().empty() ? "No call of the component was under way.\n" : "");
}

std::string Story::steps() const {
    const std::unique_ptr<StoryLayout> layout = layoutIn(mFile);
    std::vector<Told> all = allIn(*layout);
    all.erase(std::remove_if(all.begin(), all.end(), [](const Told& each) { return !each.isStep; }),
              all.end());
    return all.empty() ? ""
                       : "What the host did:\n" +
                             missing(layout->steps.told, all.size(), "earlier step") + linesOf(all);
}

std::vector<std::string> Story::underWay() const {
    std::vector<std::string> names;
    for (const Told& each : allIn(*layoutIn(mFile))) {
        if (each.isStep && !each.hasEnded) {
            names.push_back(each.call.substr(0, each.call.find('(')));
        }
    }
    return names;
}

}
