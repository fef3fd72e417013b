// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_REPLAY_REPLAY_H
#define ORV_RECORD_REPLAY_REPLAY_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace OrvRecord {

/// The first place where a component did something else than was recorded. Texts for people.
struct Difference {
    std::size_t position = 0; ///< of the record in the file
    std::uint64_t thread = 0;
    std::string before;   ///< the call that ended before, with its answer; may be empty
    std::string inside;   ///< the call from outside during which it happened
    std::string recorded; ///< what the component did when it was recorded
    std::string came;     ///< what it did now
};

/// How far a recording was played.
struct PlayReport {
    std::uint64_t calls = 0;        ///< of the component, from outside
    std::uint64_t hostCalls = 0;    ///< that the component made
    std::uint64_t transactions = 0; ///< that were finished
    std::optional<Difference> difference;
    std::string problem; ///< why playing ended early without a difference; empty if it did not
};

/// A transaction's handle, and how many calls it had.
using TransactionWatch = std::function<void(std::uint64_t handle, std::uint64_t calls)>;

/// Plays the recording \p file against \p component, as Player does. A damaged file is played up to
/// the damage, which is then the problem. Throws std::runtime_error if the file is no recording or
/// the component cannot be loaded.
PlayReport playRecording(const std::string& file, const std::string& component,
                         const TransactionWatch& watch);

}

#endif
