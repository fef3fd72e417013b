// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ThreadContext.h"

#include "OrvInterfaceBinders.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <new>
#include <utility>

namespace OrvHost {

namespace {

ThreadContext* theContext = nullptr;
std::atomic<unsigned long> theGeneration{0};

/// The messages of one thread, and the number of the context that they belong to.
struct ThreadMessages {
    unsigned long generation = 0;
    std::vector<ThreadContext::Message> list;
};

// A thread can outlive a context; messages left from an earlier context must not appear in the next
// one.
std::vector<ThreadContext::Message>& messages() {
    thread_local ThreadMessages own;
    const unsigned long current = theGeneration.load();
    if (own.generation != current) {
        own.list.clear();
        own.generation = current;
    }
    return own.list;
}

OrvReturnT addMessageFn(int kind, const char* text) {
    return Orv::shielded([&]() -> OrvReturnT {
        if (text == nullptr) {
            return OrvInvalidArgument;
        }
        messages().push_back({kind, text});
        return OrvOk;
    });
}

}

ThreadContext::ThreadContext() : mInterface{VekMgmtSpiThreadContext_2_Id, &addMessageFn} {
    theContext = this;
    ++theGeneration;
}

ThreadContext::~ThreadContext() {
    theContext = nullptr;
}

void ThreadContext::addMessage(int kind, std::string text) {
    messages().push_back({kind, std::move(text)});
}

std::size_t ThreadContext::size() const {
    return messages().size();
}

std::vector<ThreadContext::Message> ThreadContext::take(std::size_t mark) {
    std::vector<Message>& all = messages();
    const auto first = all.begin() + static_cast<std::ptrdiff_t>(std::min(mark, all.size()));
    std::vector<Message> taken;
    try {
        taken.assign(std::make_move_iterator(first), std::make_move_iterator(all.end()));
    } catch (const std::bad_alloc&) {
        all.erase(first, all.end()); // they are not those of the thread's next request
        throw;
    }
    all.erase(first, all.end());
    return taken;
}

void ThreadContext::clear() {
    messages().clear();
}

}
