// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Recording.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <system_error>

namespace OrvRecord {

namespace {

// FNV-1a: it is to notice damage, not intent.
std::uint32_t checksumOf(std::string_view bytes) {
    std::uint32_t sum = 2166136261U;
    for (const char one : bytes) {
        sum = (sum ^ static_cast<unsigned char>(one)) * 16777619U;
    }
    return sum;
}

void appendFixed(std::string& out, std::uint32_t value) {
    for (unsigned int shift = 0; shift < 32; shift += 8) {
        out.push_back(static_cast<char>(value >> shift & 0xFFU));
    }
}

std::uint32_t fixedAt(std::string_view bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (unsigned int index = 0; index < 4; ++index) {
        value |= std::uint32_t{static_cast<unsigned char>(bytes[at + index])} << (8 * index);
    }
    return value;
}

Event readEvent(ByteReader& in) {
    Event event;
    event.kind = static_cast<EventKind>(in.byte());
    switch (event.kind) {
    case EventKind::Begin:
        event.name.side = static_cast<Side>(in.byte());
        event.name.shape = static_cast<Shape>(in.byte());
        event.name.slot = in.byte();
        event.name.instance = static_cast<std::uint32_t>(in.number());
        event.call = in.number();
        event.values = in.bytes();
        return event;
    case EventKind::End:
        event.code = static_cast<std::uint32_t>(in.number());
        event.values = in.bytes();
        event.handles = in.bytes();
        return event;
    case EventKind::Thrown:
        event.isStdException = in.text(event.values);
        return event;
    case EventKind::Entered:
        event.interceptor = static_cast<std::uint32_t>(in.number());
        event.values = in.bytes();
        return event;
    case EventKind::Identity:
    case EventKind::Removed:
    case EventKind::Attached:
    case EventKind::Origin:
        event.values = in.bytes();
        return event;
    }
    throw DamagedBytes("an event of an unknown kind");
}

// The names of the slots that have no list.
const char* fixedName(Shape shape, std::uint8_t slot) {
    static constexpr const char* life[] = {"orvLCMinit", "start", "stop", "orvLCMterminate"};
    static constexpr const char* portal[] = {"getPortal", "getInterface", "registerComponent",
                                             "unregisterComponent", "getInterface"};
    static constexpr const char* release[] = {"release of one value", "release of many values"};
    switch (shape) {
    case Shape::Life:
        return slot < std::size(life) ? life[slot] : nullptr;
    case Shape::Portal:
        return slot < std::size(portal) ? portal[slot] : nullptr;
    case Shape::Release:
        return slot < std::size(release) ? release[slot] : nullptr;
    case Shape::Transaction:
        return slot == 0 ? "join" : nullptr;
    default:
        return nullptr;
    }
}

const char* fixedTable(const CallName& name) {
    switch (name.shape) {
    case Shape::Portal:
        return name.slot == static_cast<std::uint8_t>(PortalSlot::Lookup) ? "Orv::Portal"
                                                                          : "portal";
    case Shape::Transaction:
        return "OrvOamSpiTransaction 1";
    case Shape::Release:
        return name.side == Side::Host ? "host" : "component";
    default:
        return "component";
    }
}

}

void EventWriter::begin(const CallName& name, std::uint64_t call, std::string_view values) {
    mBytes.byte(static_cast<std::uint8_t>(EventKind::Begin));
    mBytes.byte(static_cast<std::uint8_t>(name.side));
    mBytes.byte(static_cast<std::uint8_t>(name.shape));
    mBytes.byte(name.slot);
    mBytes.number(name.instance);
    mBytes.number(call);
    mBytes.bytes(values);
}

void EventWriter::end(std::uint32_t code, std::string_view values, std::string_view handles) {
    mBytes.byte(static_cast<std::uint8_t>(EventKind::End));
    mBytes.number(code);
    mBytes.bytes(values);
    mBytes.bytes(handles);
}

void EventWriter::thrown(const char* what) {
    mBytes.byte(static_cast<std::uint8_t>(EventKind::Thrown));
    mBytes.text(what);
}

void EventWriter::text(EventKind kind, std::string_view text) {
    mBytes.byte(static_cast<std::uint8_t>(kind));
    mBytes.bytes(text);
}

void EventWriter::entered(std::uint32_t interceptor, std::string_view path) {
    mBytes.byte(static_cast<std::uint8_t>(EventKind::Entered));
    mBytes.number(interceptor);
    mBytes.bytes(path);
}

std::string blockHead(std::string_view body) {
    std::string head = "B";
    appendFixed(head, static_cast<std::uint32_t>(body.size()));
    appendFixed(head, checksumOf(body));
    return head;
}

Recording::Recording(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    // Reading the first byte tells what cannot be read from what is empty.
    const bool isEmpty = file && file.peek() == std::ifstream::traits_type::eof() && !file.bad();
    if (file && !isEmpty) {
        bytes << file.rdbuf();
    }
    if ((!file && !isEmpty) || !bytes) {
        throw std::runtime_error(path +
                                 ": cannot be read: " + std::generic_category().message(errno));
    }
    mBytes = std::move(bytes).str();
    if (!std::string_view(mBytes).starts_with(kHeadLine)) {
        throw std::runtime_error(path + ": is no recording of orv-record, version 1: it does not "
                                        "begin with the line \"orv-record 1\"");
    }
    readBlocks();
    endBeforeUnfinished();
    std::stable_sort(mBlocks.begin(), mBlocks.end(),
                     [](const Block& one, const Block& other) { return one.begin < other.begin; });
}

void Recording::readBlocks() {
    const std::string_view bytes = mBytes;
    for (std::size_t at = kHeadLine.size(); at < bytes.size();) {
        const std::string place = "byte " + std::to_string(at) + ": ";
        if (bytes[at] != 'B') {
            mDamage = place + "no record begins here";
            return;
        }
        if (bytes.size() - at < kBlockHeadSize ||
            bytes.size() - at - kBlockHeadSize < fixedAt(bytes, at + 1)) {
            mDamage = place + "the file ends in the middle of the record that begins here";
            return;
        }
        const std::string_view body = bytes.substr(at + kBlockHeadSize, fixedAt(bytes, at + 1));
        if (checksumOf(body) != fixedAt(bytes, at + 5)) {
            mDamage = place + "the record that begins here is damaged: its checksum differs";
            return;
        }
        ByteReader reader(body);
        Block block;
        try {
            block.begin = reader.number();
            block.end = reader.number();
            block.thread = reader.number();
        } catch (const DamagedBytes& damage) {
            mDamage = place + damage.what();
            return;
        }
        block.position = at;
        block.events = body.substr(reader.position());
        add(block);
        at += kBlockHeadSize + body.size();
    }
}

void Recording::add(Block block) {
    const auto begun = mUnfinished.find(block.begin);
    if (block.end == kGoesOn) {
        Unfinished& call =
            begun != mUnfinished.end()
                ? begun->second
                : mUnfinished.emplace(block.begin, Unfinished{block.position, ""}).first->second;
        call.events += block.events;
        return;
    }
    if (begun != mUnfinished.end()) {
        block.position = begun->second.position;
        mJoined.push_back(std::move(begun->second.events));
        mJoined.back() += block.events;
        block.events = mJoined.back();
        mUnfinished.erase(begun);
    }
    mBlocks.push_back(block);
}

void Recording::endBeforeUnfinished() {
    if (mUnfinished.empty()) {
        return;
    }
    const std::uint64_t begin = mUnfinished.begin()->first;
    std::erase_if(mBlocks, [begin](const Block& block) { return block.end > begin; });
    const std::string reason = "byte " + std::to_string(mUnfinished.begin()->second.position) +
                               ": the call that begins here has no end in the file: the "
                               "recording or the process ended during it";
    mDamage = mDamage.empty() ? reason : reason + "; " + mDamage;
}

std::vector<Event> Recording::events(const Block& block) {
    std::vector<Event> events;
    for (ByteReader reader(block.events); !reader.atEnd();) {
        events.push_back(readEvent(reader));
    }
    return events;
}

std::string toText(const CallName& name) {
    std::string text;
    withSlots(name.shape, [&]<class Table>(Table*) {
        if (name.slot < std::size(SlotsOf<Table>::names)) {
            text = std::string(SlotsOf<Table>::name) + ": " + SlotsOf<Table>::names[name.slot];
        }
    });
    if (!text.empty()) {
        return (name.side == Side::Component ? "component's " : "host's ") + text;
    }
    const char* const slot = fixedName(name.shape, name.slot);
    return std::string(fixedTable(name)) + ": " + (slot != nullptr ? slot : "an unknown slot");
}

}
