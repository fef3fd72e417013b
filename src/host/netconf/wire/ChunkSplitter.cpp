// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ChunkSplitter.h"

#include <algorithm>
#include <cstdlib>

namespace OrvHost {

namespace {

constexpr std::string_view kMark = "]]>]]>";
constexpr std::string_view kEnd = "\n##\n";

/// Long enough for any length that a chunk may have.
constexpr std::size_t kLongestHeader = 16;

}

void ChunkSplitter::pass(std::string_view in, std::string& out) {
    while (!in.empty()) {
        if (mState == State::Chunk) {
            in = passChunk(in, out);
            continue;
        }
        const char next = in.front();
        in.remove_prefix(1);
        if (mState == State::Marked) {
            passMarked(next, out);
        } else if (mState == State::Between) {
            passBetween(next, out);
        } else {
            passHeader(next, out);
        }
    }
}

void ChunkSplitter::passMarked(char next, std::string& out) {
    out += next;
    mSeen += next;
    // The mark begins anew where its begin repeats.
    while (!mSeen.empty() && kMark.substr(0, mSeen.size()) != mSeen) {
        mSeen.erase(0, 1);
    }
    if (mSeen == kMark) {
        mSeen.clear();
        mState = State::Between;
    }
}

void ChunkSplitter::passBetween(char next, std::string& out) {
    mSeen += next;
    if (mSeen == "\n") {
        return;
    }
    if (mSeen == "\n#") {
        mState = State::Header;
        return;
    }
    std::string other;
    other.swap(mSeen);
    mState = State::Marked;
    for (const char one : other) {
        passMarked(one, out);
    }
}

void ChunkSplitter::passHeader(char next, std::string& out) {
    mSeen += next;
    if (mSeen.size() > kLongestHeader) { // no header: nothing to be split
        out += mSeen;
        mSeen.clear();
        mState = State::Marked;
        return;
    }
    if (next != '\n') {
        return;
    }
    mLeft = mSeen == kEnd ? 0 : std::strtoul(mSeen.c_str() + 2, nullptr, 10);
    mIsSplit = mLeft > mLimit;
    if (!mIsSplit) {
        out += mSeen;
    }
    mSeen.clear();
    mState = mLeft > 0 ? State::Chunk : State::Between;
}

/// Returns what is not of the chunk any more.
std::string_view ChunkSplitter::passChunk(std::string_view in, std::string& out) {
    const std::string_view part = in.substr(0, mIsSplit ? std::min(mLeft, mLimit) : mLeft);
    if (mIsSplit) {
        out += "\n#" + std::to_string(part.size()) + "\n";
    }
    out += part;
    mLeft -= part.size();
    if (mLeft == 0) {
        mState = State::Between;
    }
    return in.substr(part.size());
}

}
