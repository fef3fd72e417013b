// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_RECORDING_H
#define ORV_RECORD_RECORDING_H

#include "Bytes.h"
#include "Slots.h"

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// The file of a recording: the line kHeadLine, then blocks. A block holds one call from outside
/// into the component, with all that was called from inside it, on one thread:
///
///     'B', size of the body (4 bytes, little-endian), checksum of the body (likewise), body
///
/// The body: the numbers of its begin and its end in the order of all begins and ends, the number
/// of the thread, and events. Events begin with a byte of EventKind.
///
/// A long call has several blocks, with the same begin and thread: kGoesOn is the end of each but
/// the last.

namespace OrvRecord {

constexpr std::string_view kHeadLine = "orv-record 1\n";
constexpr std::size_t kBlockHeadSize = 9;
constexpr std::uint64_t kGoesOn = 0;

enum class EventKind : std::uint8_t {
    Begin = 1,    ///< side, shape, slot, instance, number of the call, what goes in
    End = 2,      ///< code, what came out: values, handles
    Thrown = 3,   ///< text of a std::exception, or null for anything else
    Identity = 4, ///< the root's identity from now on
    Entered = 5,  ///< number of the interceptor, MOC path
    Removed = 6,  ///< MOC path
    Attached = 8, ///< the helper library has forgotten the tables that it had found
    Origin = 7    ///< path of the component that was recorded
};

// Slots of the shapes that have no list.
enum class LifeSlot : std::uint8_t { Init, Start, Stop, Terminate };
enum class PortalSlot : std::uint8_t {
    GetPortal,
    GetInterface, ///< at the portal
    Register,
    Unregister,
    Lookup ///< through the helper library
};
enum class TransactionSlot : std::uint8_t { Join };
enum class ReleaseSlot : std::uint8_t { One, Many };

/// Which slot of which table is called.
struct CallName {
    Side side = Side::Component;
    Shape shape = Shape::Other;
    std::uint8_t slot = 0;
    std::uint32_t instance = 0; ///< tables of the same shape are numbered, and interceptors

    bool operator==(const CallName&) const = default;
};

/// One event as it was read. The views last as long as the recording.
struct Event {
    EventKind kind = EventKind::Begin;
    CallName name;
    std::uint64_t call = 0;        ///< of Begin
    std::uint32_t code = 0;        ///< of End
    bool isStdException = false;   ///< of Thrown
    std::uint32_t interceptor = 0; ///< of Entered
    std::string_view values;       ///< what goes in or comes out; or the text
    std::string_view handles;      ///< of End
};

/// Writes events into a buffer.
class EventWriter {
public:
    explicit EventWriter(std::string& out) : mBytes(out) {}

    void begin(const CallName& name, std::uint64_t call, std::string_view values);
    void end(std::uint32_t code, std::string_view values, std::string_view handles);
    /// \p what: null if it is no std::exception.
    void thrown(const char* what);
    void text(EventKind kind, std::string_view text);
    void entered(std::uint32_t interceptor, std::string_view path);

private:
    ByteWriter mBytes;
};

/// The head of a block with this body.
std::string blockHead(std::string_view body);

/// One call from outside, of one block or several.
struct Block {
    std::uint64_t begin = 0; ///< in the order of all begins and ends
    std::uint64_t end = 0;
    std::uint64_t thread = 0;
    std::size_t position = 0; ///< of the first block in the file
    std::string_view events;
};

/// A recording that was read. Bytes that are no recording end it: what comes before them counts. So
/// does a call whose last block is missing: nobody knows what it did to those that followed.
class Recording {
public:
    /// Throws std::runtime_error if the file cannot be read or does not begin with kHeadLine.
    explicit Recording(const std::string& path);
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    /// In the order of their begins.
    const std::vector<Block>& blocks() const { return mBlocks; }
    /// What is wrong behind the last block, with its place in the file; empty if nothing is.
    const std::string& damage() const { return mDamage; }

    /// Throws DamagedBytes.
    static std::vector<Event> events(const Block& block);

private:
    /// The call of blocks whose last one has not been read.
    struct Unfinished {
        std::size_t position = 0; ///< of the first block
        std::string events;
    };

    void readBlocks();
    void add(Block block);
    void endBeforeUnfinished();

    std::string mBytes;
    std::deque<std::string> mJoined;                 ///< the events of calls of several blocks
    std::map<std::uint64_t, Unfinished> mUnfinished; ///< by begin
    std::vector<Block> mBlocks;
    std::string mDamage;
};

/// "router OrvOamSpiManagedObject 3: getMoAttribute".
std::string toText(const CallName& name);

}

#endif
