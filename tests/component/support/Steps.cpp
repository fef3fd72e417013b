// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Steps.h"

#include "StoryLayout.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <mutex>

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Scripted {

namespace {

using OrvValidate::StoryEntry;
using OrvValidate::StoryLayout;

bool isStory(int file) {
    struct stat found {};
    std::uint64_t mark = 0;
    return fstat(file, &found) == 0 && S_ISREG(found.st_mode) &&
           found.st_size == static_cast<off_t>(sizeof(StoryLayout)) &&
           pread(file, &mark, sizeof mark, 0) == static_cast<ssize_t>(sizeof mark) &&
           mark == OrvValidate::kStoryMark;
}

StoryLayout* open() {
    const char* const number =
        std::getenv(OrvValidate::kStoryVariable); // NOLINT(concurrency-mt-unsafe): nobody sets it
    const int file =
        number != nullptr ? std::atoi(number) : -1; // NOLINT(cert-err34-c): see isStory
    if (file < 0 || !isStory(file)) {
        return nullptr;
    }
    void* const memory =
        mmap(nullptr, sizeof(StoryLayout), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file); // the component must not find it
    return memory != MAP_FAILED ? static_cast<StoryLayout*>(memory) : nullptr;
}

StoryLayout* story() {
    static StoryLayout* const kept = open();
    return kept;
}

std::mutex mutex; ///< guards the story and what follows
std::uint64_t lastNumber = 0;
std::uint32_t lastThread = 0;

thread_local std::uint32_t thisThread = 0;
thread_local std::uint32_t depth = 0;

// This process may end between any two of these.
void setNumber(StoryEntry& entry, std::uint64_t number) {
    std::atomic_ref<std::uint64_t>(entry.number).store(number, std::memory_order_release);
}

template <std::size_t Size>
void setText(char (&field)[Size], const std::string& text) {
    constexpr char kCut[] = "...";
    const std::size_t length = std::min(text.size(), Size - 1);
    std::memcpy(field, text.data(), length);
    field[length] = '\0';
    if (length < text.size()) {
        std::memcpy(field + length - (sizeof kCut - 1), kCut, sizeof kCut - 1);
    }
}

// The oldest call that has ended makes room, or else the oldest one.
template <class Part>
StoryEntry& takeEntry(Part& part) {
    ++part.told;
    return *std::min_element(std::begin(part.entries), std::end(part.entries),
                             [](const StoryEntry& left, const StoryEntry& right) {
                                 const bool isLeftOpen = left.number != 0 && left.ended == 0;
                                 const bool isRightOpen = right.number != 0 && right.ended == 0;
                                 return isLeftOpen != isRightOpen ? isRightOpen
                                                                  : left.number < right.number;
                             });
}

template <class Part>
StoryEntry* entryOf(Part& part, std::uint64_t number) {
    StoryEntry* const found =
        std::find_if(std::begin(part.entries), std::end(part.entries),
                     [&](const StoryEntry& entry) { return entry.number == number; });
    return found != std::end(part.entries) ? found : nullptr;
}

std::uint64_t write(StoryEntry& entry, const std::string& text) {
    if (thisThread == 0) {
        thisThread = ++lastThread;
    }
    setNumber(entry, 0);
    entry.thread = thisThread;
    entry.depth = depth;
    entry.ended = 0;
    setText(entry.outcome, "");
    setText(entry.call, text);
    setNumber(entry, ++lastNumber);
    return entry.number;
}

}

bool isStoryKept() {
    return story() != nullptr;
}

Step::~Step() {
    end(std::uncaught_exceptions() > mExceptions ? "an exception" : "");
}

OrvReturnT Step::answered(OrvReturnT code, const std::string& more) {
    if (mNumber != 0) {
        const HostCode here;
        end((std::to_string(code) + (more.empty() ? "" : ", " + more)).c_str());
    }
    return code;
}

void Step::begin(Called called, const std::string& text) {
    const std::lock_guard<std::mutex> guard(mutex);
    mCalled = called;
    mExceptions = std::uncaught_exceptions();
    mNumber = called == Called::Component ? write(takeEntry(story()->steps), text)
                                          : write(takeEntry(story()->calls), text);
    ++depth;
}

void Step::end(const char* outcome) {
    if (mNumber == 0) {
        return;
    }
    const HostCode here;
    const std::lock_guard<std::mutex> guard(mutex);
    --depth;
    StoryEntry* const entry = mCalled == Called::Component ? entryOf(story()->steps, mNumber)
                                                           : entryOf(story()->calls, mNumber);
    mNumber = 0;
    if (entry != nullptr) {
        setText(entry->outcome, outcome);
        std::atomic_ref<std::uint32_t>(entry->ended).store(1, std::memory_order_release);
    }
}

}
