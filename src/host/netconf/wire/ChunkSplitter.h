// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_WIRE_CHUNKSPLITTER_H
#define ORV_HOST_NETCONF_WIRE_CHUNKSPLITTER_H

#include <cstddef>
#include <string>
#include <string_view>

namespace OrvHost {

/// Splits large chunks of RFC 6242, as a session sends them, into small ones. Some clients become
/// slow with the square of a chunk's length. What is framed by end-of-message marks, as the hello
/// is, passes unchanged. The input comes in pieces of any length and is not kept. One thread.
class ChunkSplitter {
public:
    /// Chunks of more than \p limit bytes are split.
    explicit ChunkSplitter(std::size_t limit) : mLimit(limit) {}

    /// Appends to \p out what is to be sent for \p in.
    void pass(std::string_view in, std::string& out);

private:
    enum class State {
        Marked,  ///< in a message that a mark ends
        Between, ///< after a message or a chunk
        Header,  ///< after the begin of a chunk's header
        Chunk    ///< in a chunk
    };

    void passMarked(char next, std::string& out);
    void passBetween(char next, std::string& out);
    void passHeader(char next, std::string& out);
    std::string_view passChunk(std::string_view in, std::string& out);

    std::size_t mLimit;
    State mState = State::Marked;
    std::string mSeen;     ///< of a mark or a header
    std::size_t mLeft = 0; ///< of a chunk
    bool mIsSplit = false;
};

}

#endif
