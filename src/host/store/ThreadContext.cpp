// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ThreadContext.h"

#include "OrvInterfaceBinders.h"

#include <algorithm>
#include <cassert>
#include <iterator>
#include <utility>

namespace OrvHost {

namespace {

thread_local std::vector<ThreadContext::Message> theMessages;
ThreadContext* theContext = nullptr;

OrvReturnT addMessageFn(int kind, const char* text) {
    return Orv::shielded([&]() -> OrvReturnT {
        if (text == nullptr) {
            return OrvInvalidArgument;
        }
        theMessages.push_back({kind, text});
        return OrvOk;
    });
}

}

ThreadContext::ThreadContext()
    : mInterface{{"VekMgmtSpiThreadContextService", "VekMgmtSpiThreadContext", "2"},
                 &addMessageFn} {
    assert(!theContext);
    theContext = this;
}

ThreadContext::~ThreadContext() {
    theContext = nullptr;
}

void ThreadContext::addMessage(int kind, std::string text) {
    theMessages.push_back({kind, std::move(text)});
}

std::size_t ThreadContext::size() const {
    return theMessages.size();
}

std::vector<ThreadContext::Message> ThreadContext::take(std::size_t mark) {
    const auto first =
        theMessages.begin() + static_cast<std::ptrdiff_t>(std::min(mark, theMessages.size()));
    std::vector<Message> taken(std::make_move_iterator(first),
                               std::make_move_iterator(theMessages.end()));
    theMessages.erase(first, theMessages.end());
    return taken;
}

void ThreadContext::clear() {
    theMessages.clear();
}

}
