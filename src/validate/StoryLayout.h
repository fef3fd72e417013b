// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_VALIDATE_STORYLAYOUT_H
#define ORV_VALIDATE_STORYLAYOUT_H

#include <cstddef>
#include <cstdint>

/// \file
/// The memory in which the process of a case writes down what its host does, so that orv-validate
/// has it however that process ends. orv-validate makes it and hands it on as an open file; the
/// host of the cases maps it.

namespace OrvValidate {

/// The environment variable that says under which number the file is open.
constexpr char kStoryVariable[] = "ORV_CASE_STORY";
constexpr int kStoryDescriptor = 3;

/// The first eight bytes: what else somebody may have open under that number is left alone.
constexpr std::uint64_t kStoryMark = 0x3159'524f'5453'564fULL;

/// One call: of the host into the component, or of the component into the host. The texts end with
/// a null byte and are cut if they are longer.
struct StoryEntry {
    std::uint64_t number; ///< its place among all calls, from 1; 0: nothing, or being written
    std::uint32_t thread; ///< counted from 1
    std::uint32_t depth;  ///< how many calls of its thread it is inside of
    std::uint32_t ended;  ///< 1: it has returned, or thrown
    char outcome[60];     ///< what it returned
    char call[440];       ///< with its arguments
};

/// The last calls of a kind. A call that has not returned keeps its place as long as there is
/// another one to take.
template <std::size_t Size>
struct StoryPart {
    std::uint64_t told; ///< how many there have been
    StoryEntry entries[Size];
};

struct StoryLayout {
    std::uint64_t mark;
    StoryPart<60> steps;  ///< of the host
    StoryPart<120> calls; ///< that the host got
};

}

#endif
