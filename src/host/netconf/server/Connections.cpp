// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Connections.h"

#include "netconf/core/ServerLog.h"

#include <algorithm>
#include <exception>
#include <iterator>

#include <fcntl.h>
#include <sys/socket.h>

namespace OrvHost {

Connections::~Connections() {
    endAll(Deadline::max());
}

std::size_t Connections::countOf(State state) const {
    return static_cast<std::size_t>(
        std::count_if(mConnections.begin(), mConnections.end(),
                      [state](const Connection& one) { return one.state == state; }));
}

/// Clients that do not log in must not keep out those who do.
void Connections::makeRoom() {
    if (countOf(State::Waiting) < mLimits.waiting) {
        return;
    }
    const auto oldest =
        std::find_if(mConnections.begin(), mConnections.end(),
                     [](const Connection& one) { return one.state == State::Waiting; });
    shutdown(oldest->socket.get(), SHUT_RDWR);
    oldest->state = State::ShutDown;
}

bool Connections::enter(Connection& connection) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mIsEnding || connection.state == State::ShutDown ||
        countOf(State::Entered) >= mLimits.entered) {
        return false;
    }
    connection.state = State::Entered;
    return true;
}

void Connections::forget(std::list<Connection>::iterator connection) {
    const std::lock_guard<std::mutex> lock(mMutex);
    connection->socket = Descriptor();
    mEnded.splice(mEnded.end(), mConnections, connection);
    mChanged.notify_all();
}

void Connections::joinEnded() {
    std::list<Connection> ended;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        ended.swap(mEnded);
    }
    for (Connection& one : ended) {
        one.thread.join();
    }
}

bool Connections::start(Descriptor socket, Serve serve) {
    joinEnded();
    Descriptor known(fcntl(socket.get(), F_DUPFD_CLOEXEC, 0));
    const std::lock_guard<std::mutex> lock(mMutex);
    // Those that were shut down end soon, but not at once.
    const std::size_t threads = mLimits.entered + 2 * mLimits.waiting;
    if (known.get() < 0 || mIsEnding || mConnections.size() >= threads) {
        return false;
    }
    makeRoom();
    mConnections.push_back({std::move(known), State::Waiting, {}});
    const auto place = std::prev(mConnections.end());
    try {
        place->thread =
            std::thread([this, place, serve = std::move(serve), own = std::move(socket)]() mutable {
                contain("a connection ends",
                        [&] { serve(std::move(own), [this, place] { return enter(*place); }); });
                forget(place);
            });
    } catch (const std::exception&) { // no thread, or no memory
        mConnections.erase(place);
        return false;
    }
    return true;
}

bool Connections::endAll(Deadline deadline) {
    {
        std::unique_lock<std::mutex> lock(mMutex);
        mIsEnding = true;
        for (const Connection& one : mConnections) {
            shutdown(one.socket.get(), SHUT_RDWR);
        }
        const auto isDone = [this] { return mConnections.empty(); };
        if (deadline == Deadline::max()) {
            mChanged.wait(lock, isDone); // wait_until would add to the end of time
        } else if (!mChanged.wait_until(lock, deadline, isDone)) {
            return false;
        }
    }
    joinEnded();
    return true;
}

}
