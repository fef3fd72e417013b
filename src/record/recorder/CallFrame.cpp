// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CallFrame.h"

#include "Lasting.h"
#include "MeIdTranslator.h"

#include <atomic>
#include <cassert>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

// The checker for lost memory that comes with AddressSanitizer guesses where the thread locals of a
// loaded object lie, and crashed in one of some hundred processes; it does not have to guess where
// static ones lie. Without it, the small room for static ones is left to others.
#if defined(__SANITIZE_ADDRESS__)
#define ORV_STATIC_TLS __attribute__((tls_model("initial-exec")))
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORV_STATIC_TLS __attribute__((tls_model("initial-exec")))
#endif
#endif
#ifndef ORV_STATIC_TLS
#define ORV_STATIC_TLS
#endif

namespace OrvRecord {

namespace {

std::atomic<std::uint64_t> lastOrder{0};
std::atomic<std::uint64_t> lastCall{0};
std::atomic<std::uint64_t> lastThread{0};
// The translator keeps every text that it ever had, so a text is known by its address.
std::atomic<const char*> lastIdentity{nullptr};

std::atomic<bool> hasNotes{false};
struct Notes {
    std::mutex mutex; ///< guards text
    std::string text;
};

}

/// What is written of one call from outside.
struct CallFrame::Buffers {
    std::string events;
    std::string body;
};

namespace {

constexpr std::size_t kMostKept = 65536;
/// A call that has more events than that is written in parts: an interceptor may call back without
/// end, and what is held is the host's memory.
constexpr std::size_t kMostHeld = 1'000'000;

}

/// The buffers that no thread uses.
class CallFrame::BufferPool {
public:
    BufferPool() = default;
    BufferPool(const BufferPool&) = delete;
    BufferPool& operator=(const BufferPool&) = delete;

    std::unique_ptr<Buffers> take() {
        const std::lock_guard lock(mMutex);
        if (mFree.empty()) {
            return std::make_unique<Buffers>();
        }
        std::unique_ptr<Buffers> taken = std::move(mFree.back());
        mFree.pop_back();
        return taken;
    }

    void giveBack(std::unique_ptr<Buffers> buffers) {
        if (buffers->events.capacity() + buffers->body.capacity() > kMostKept) {
            return;
        }
        buffers->events.clear();
        const std::lock_guard lock(mMutex);
        mFree.push_back(std::move(buffers));
    }

private:
    std::mutex mMutex; ///< guards mFree
    std::vector<std::unique_ptr<Buffers>> mFree;
};

/// What a thread is doing. Nothing here has a destructor: it would keep the shared object loaded
/// until the thread has ended.
struct CallFrame::Thread {
    bool isInside;        ///< the innermost call that is recorded is one of the component
    std::uint64_t number; ///< 0: it has none yet
    std::uint64_t begin;  ///< of the outermost call
    Buffers* buffers;     ///< of the outermost call; null: there is none
};

CallFrame::Thread& CallFrame::thread() {
    ORV_STATIC_TLS thread_local Thread theThread{};
    return theThread;
}

CallFrame::Buffers& CallFrame::buffers() {
    Buffers* const used = thread().buffers;
    assert(used != nullptr); // while a call is recorded
    return *used;
}

RecordFile& recordFile() {
    return lasting<RecordFile>();
}

void noteBeforeNextCall(const std::string& events) {
    if (!recordFile().isOn()) {
        return; // nobody would take them
    }
    Notes& notes = lasting<Notes>();
    const std::lock_guard lock(notes.mutex);
    notes.text += events;
    hasNotes = true;
}

CallFrame::CallFrame(const CallName& name) noexcept : mName(name) {
    guarded([&] {
        Thread& here = thread();
        const bool entersComponent = name.side == Side::Component;
        if (!recordFile().isOn() || entersComponent == here.isInside) {
            return;
        }
        mIsOutermost = here.buffers == nullptr;
        if (mIsOutermost) {
            here.buffers = lasting<BufferPool>().take().release();
            here.number = here.number != 0 ? here.number : ++lastThread;
            here.begin = ++lastOrder;
        }
        here.isInside = entersComponent;
        mCall = ++lastCall;
        mIsRecorded = true;
    });
}

CallFrame::~CallFrame() {
    if (!mIsRecorded) {
        return;
    }
    Thread& here = thread();
    here.isInside = mName.side == Side::Host;
    if (mIsOutermost) {
        here.isInside = false;
        guarded([] { writeBlock(++lastOrder); });
        std::unique_ptr<Buffers> buffers(std::exchange(here.buffers, nullptr));
        guarded([&] { lasting<BufferPool>().giveBack(std::move(buffers)); });
    }
}

void CallFrame::writeBegin(std::string_view values) {
    EventWriter events(buffers().events);
    if (mName.side == Side::Component) {
        const char* const identity = Orv::MeIdTranslator::instance()->identity();
        if (lastIdentity.exchange(identity) != identity) {
            events.text(EventKind::Identity, identity);
        }
        if (hasNotes) {
            Notes& notes = lasting<Notes>();
            const std::lock_guard lock(notes.mutex);
            buffers().events += notes.text;
            notes.text.clear();
            hasNotes = false;
        }
    }
    events.begin(mName, mCall, values);
    holdLittle();
}

void CallFrame::writeEnd(std::uint32_t code, std::string_view values, std::string_view handles) {
    EventWriter(buffers().events).end(code, values, handles);
    holdLittle();
}

void CallFrame::thrown(const char* what) noexcept {
    if (mIsRecorded) {
        guarded([&] {
            EventWriter(buffers().events).thrown(what);
            holdLittle();
        });
    }
}

void CallFrame::holdLittle() {
    std::string& events = buffers().events;
    if (events.size() > kMostHeld) {
        writeBlock(kGoesOn);
        events.clear();
    }
}

void CallFrame::writeBlock(std::uint64_t end) {
    const Thread& here = thread();
    std::string& text = buffers().body;
    text.clear();
    ByteWriter body(text);
    body.number(here.begin);
    body.number(end);
    body.number(here.number);
    body.raw(buffers().events.data(), buffers().events.size());
    recordFile().write(text);
}

}
