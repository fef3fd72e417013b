// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "FailingNew.h"

#include "HostCode.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

thread_local bool watching = false;
thread_local std::size_t seenSoFar = 0;
thread_local std::size_t failingOne = 0;

std::atomic<std::size_t> blocks{0};

// In front of each block: whether it was allocated under a watch.
struct alignas(std::max_align_t) Header {
    bool watched;
};

bool refused(bool watched) {
    return watched && ++seenSoFar == failingOne;
}

void* allocate(std::size_t size) noexcept {
    const bool watched = watching && !Scripted::HostCode::runs();
    if (refused(watched)) {
        return nullptr;
    }
    void* const raw = std::malloc(sizeof(Header) + size);
    if (raw == nullptr) {
        return nullptr;
    }
    auto* const header = new (raw) Header{watched};
    blocks += watched ? 1 : 0;
    return header + 1;
}

void* allocateOrThrow(std::size_t size) {
    void* const block = allocate(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void deallocate(void* block) noexcept {
    if (block == nullptr) {
        return;
    }
    Header* const header = static_cast<Header*>(block) - 1;
    blocks -= header->watched ? 1 : 0;
    std::free(header);
}

}

namespace Scripted {

NewWatch::NewWatch(std::size_t failing) {
    seenSoFar = 0;
    failingOne = failing;
    watching = true;
}

NewWatch::~NewWatch() {
    watching = false;
}

std::size_t NewWatch::seen() const {
    return seenSoFar;
}

bool NewWatch::sprung() const {
    return failingOne != 0 && seenSoFar >= failingOne;
}

std::size_t watchedBlocks() {
    return blocks;
}

}

void* operator new(std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return allocate(size);
}
void operator delete(void* block) noexcept {
    deallocate(block);
}
void operator delete[](void* block) noexcept {
    deallocate(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    deallocate(block);
}
void operator delete[](void* block, std::size_t /*size*/) noexcept {
    deallocate(block);
}
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept {
    deallocate(block);
}
void operator delete[](void* block, const std::nothrow_t& /*tag*/) noexcept {
    deallocate(block);
}
