// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Values.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace OrvRecord {

namespace {

/// What stands for a pointer.
enum class Presence : std::uint8_t { Null, Present, CutOff };

template <class Item>
Item* make(Arena& arena, std::size_t count = 1) {
    void* const memory =
        arena.allocate(sizeof(Item) * std::max<std::size_t>(count, 1), alignof(Item));
    std::memset(memory, 0, sizeof(Item) * count);
    return static_cast<Item*>(memory);
}

class ValueWriter {
public:
    explicit ValueWriter(ByteWriter& out) : mOut(out) {}

    void container(const OrvMoAttributeValueContainer_3* container) {
        const bool isCut = container != nullptr && (mDepth >= kDeepest || mPieces == 0);
        presence(container != nullptr, isCut);
        if (container == nullptr || isCut) {
            return;
        }
        inlined(*container);
    }

    void inlined(const OrvMoAttributeValueContainer_3& container) {
        mOut.number(static_cast<std::uint32_t>(container.type));
        mOut.number(container.count);
        if (container.count == 0) {
            return;
        }
        const bool isCut = container.count > mPieces;
        presence(container.values != nullptr, isCut && container.values != nullptr);
        if (container.values == nullptr || isCut) {
            return;
        }
        mPieces -= container.count;
        for (std::uint32_t at = 0; at < container.count; ++at) {
            slot(container.type, container.values[at]);
        }
    }

private:
    void presence(bool isPresent, bool isCut) {
        mOut.byte(static_cast<std::uint8_t>(!isPresent ? Presence::Null
                                            : isCut    ? Presence::CutOff
                                                       : Presence::Present));
    }

    void slot(std::int32_t type, const OrvMoAttributeValue_3& value) {
        switch (type) {
        case OrvMoAttributeTypeBool_3: {
            std::uint8_t flag = 0; // one byte of the slot is written, and any but 0 and 1 can be
            std::memcpy(&flag, &value, 1);
            mOut.byte(flag);
            return;
        }
        case OrvMoAttributeTypeEnumeration_3:
        case OrvMoAttributeTypeString_3:
        case OrvMoAttributeTypeMoRef_3:
            mOut.text(value.string);
            return;
        case OrvMoAttributeTypeStruct_3:
            members(value.structValue);
            return;
        default:
            mOut.raw(&value, sizeof value);
        }
    }

    void members(const OrvMoStructMember_3* member) {
        ++mDepth;
        for (; member != nullptr && mPieces > 0; member = member->next, --mPieces) {
            presence(true, false);
            mOut.text(member->name);
            container(member->value);
        }
        presence(member != nullptr, true);
        --mDepth;
    }

    ByteWriter& mOut;
    std::size_t mPieces = kMostPieces;
    int mDepth = 0;
};

class ValueReader {
public:
    ValueReader(ByteReader& in, Arena& arena) : mIn(in), mArena(arena) {}

    OrvMoAttributeValueContainer_3* container() {
        if (!isPresent()) {
            return nullptr;
        }
        auto* const read = make<OrvMoAttributeValueContainer_3>(mArena);
        inlined(*read);
        return read;
    }

    void inlined(OrvMoAttributeValueContainer_3& container) {
        container.type = static_cast<std::int32_t>(mIn.number());
        container.count = static_cast<std::uint32_t>(mIn.number());
        if (container.count == 0 || !isPresent()) {
            return;
        }
        if (container.count > mIn.left()) { // each is a byte at least
            throw DamagedBytes("a container with more values than its record has");
        }
        container.values = make<OrvMoAttributeValue_3>(mArena, container.count);
        for (std::uint32_t at = 0; at < container.count; ++at) {
            slot(container.type, container.values[at]);
        }
    }

    bool isPresent() {
        switch (static_cast<Presence>(mIn.byte())) {
        case Presence::Null:
            return false;
        case Presence::Present:
            return true;
        case Presence::CutOff:
            throw DamagedBytes("a value that was too long or nested too deep to be recorded");
        }
        throw DamagedBytes("a byte that says neither null nor present");
    }

    const char* text() {
        std::string_view text;
        return mIn.text(text) ? copyText(text, mArena) : nullptr;
    }

private:
    void slot(std::int32_t type, OrvMoAttributeValue_3& value) {
        switch (type) {
        case OrvMoAttributeTypeBool_3: {
            const std::uint8_t flag = mIn.byte();
            std::memcpy(&value, &flag, 1);
            return;
        }
        case OrvMoAttributeTypeEnumeration_3:
        case OrvMoAttributeTypeString_3:
        case OrvMoAttributeTypeMoRef_3:
            value.string = text();
            return;
        case OrvMoAttributeTypeStruct_3:
            value.structValue = members();
            return;
        default:
            std::memcpy(&value, mIn.raw(sizeof value).data(), sizeof value);
        }
    }

    OrvMoStructMember_3* members() {
        if (++mDepth > kDeepest) {
            throw DamagedBytes("structs nested deeper than are written");
        }
        OrvMoStructMember_3* first = nullptr;
        for (OrvMoStructMember_3** next = &first; isPresent(); next = &(*next)->next) {
            *next = make<OrvMoStructMember_3>(mArena);
            (*next)->name = text();
            (*next)->value = container();
        }
        --mDepth;
        return first;
    }

    ByteReader& mIn;
    Arena& mArena;
    int mDepth = 0;
};

// A list ended by a null pointer: null, or 1 and then the entries, each after a 1, and a 0.
template <class Entry, class Write>
void writeList(ByteWriter& out, Entry* const* list, const Write& write) {
    out.byte(list != nullptr ? 1 : 0);
    for (std::size_t at = 0; list != nullptr && at < kMostPieces; ++at) {
        out.byte(list[at] != nullptr ? 1 : 0);
        if (list[at] == nullptr) {
            return;
        }
        write(list[at]);
    }
    if (list != nullptr) {
        out.byte(static_cast<std::uint8_t>(Presence::CutOff));
    }
}

template <class Entry, class Read>
Entry** readList(ValueReader& in, Arena& arena, const Read& read) {
    if (!in.isPresent()) {
        return nullptr;
    }
    std::vector<Entry*> entries;
    while (in.isPresent()) {
        entries.push_back(read());
    }
    auto** const list = make<Entry*>(arena, entries.size() + 1);
    std::copy(entries.begin(), entries.end(), list);
    return list;
}

}

char* copyText(std::string_view text, Arena& arena) {
    char* const copy = make<char>(arena, text.size() + 1);
    std::copy(text.begin(), text.end(), copy);
    return copy;
}

void writeContainer(ByteWriter& out, const OrvMoAttributeValueContainer_3* container) {
    ValueWriter(out).container(container);
}

OrvMoAttributeValueContainer_3* readContainer(ByteReader& in, Arena& arena) {
    return ValueReader(in, arena).container();
}

void writeContainers(ByteWriter& out, const OrvMoAttributeValueContainer_3* const* list) {
    writeList(out, list, [&](const auto* entry) { ValueWriter(out).inlined(*entry); });
}

OrvMoAttributeValueContainer_3** readContainers(ByteReader& in, Arena& arena) {
    ValueReader reader(in, arena);
    return readList<OrvMoAttributeValueContainer_3>(reader, arena, [&] {
        auto* const read = make<OrvMoAttributeValueContainer_3>(arena);
        reader.inlined(*read);
        return read;
    });
}

void writeNamed(ByteWriter& out, const OrvMoNamedAttributeValueContainer_3* const* list) {
    writeList(out, list, [&](const auto* entry) {
        out.text(entry->name);
        ValueWriter(out).inlined(entry->value);
    });
}

OrvMoNamedAttributeValueContainer_3** readNamed(ByteReader& in, Arena& arena) {
    ValueReader reader(in, arena);
    return readList<OrvMoNamedAttributeValueContainer_3>(reader, arena, [&] {
        auto* const read = make<OrvMoNamedAttributeValueContainer_3>(arena);
        read->name = reader.text();
        reader.inlined(read->value);
        return read;
    });
}

void writeTexts(ByteWriter& out, const char* const* list) {
    writeList(out, list, [&](const char* entry) { out.text(entry); });
}

const char** readTexts(ByteReader& in, Arena& arena) {
    ValueReader reader(in, arena);
    return readList<const char>(reader, arena, [&] { return reader.text(); });
}

}
