// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Connections.h"

#include "ServerError.h"

#include <exception>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/socket.h>

namespace OrvHost {

Connections::~Connections() {
    endAll(Deadline::max());
}

bool Connections::start(Descriptor socket, std::function<void(Descriptor socket)> serve) {
    const int known = fcntl(socket.get(), F_DUPFD_CLOEXEC, 0);
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (known < 0 || mIsEnding || mSockets.size() >= mLimit) {
            if (known >= 0) {
                close(known);
            }
            return false;
        }
        mSockets.insert(known);
    }
    const auto forget = [this](int one) {
        const std::lock_guard<std::mutex> lock(mMutex);
        close(one);
        mSockets.erase(mSockets.find(one));
        mChanged.notify_all();
    };
    try {
        std::thread([forget, known, serve = std::move(serve), own = std::move(socket)]() mutable {
            try {
                serve(std::move(own));
            } catch (const std::exception& failure) {
                logServer(3, std::string("a connection ends: ") + failure.what());
            }
            forget(known);
        }).detach();
    } catch (const std::system_error&) {
        forget(known);
        return false;
    }
    return true;
}

bool Connections::endAll(Deadline deadline) {
    std::unique_lock<std::mutex> lock(mMutex);
    mIsEnding = true;
    for (const int socket : mSockets) {
        shutdown(socket, SHUT_RDWR);
    }
    const auto isDone = [this] { return mSockets.empty(); };
    if (deadline == Deadline::max()) {
        mChanged.wait(lock, isDone); // wait_until would add to the end of time
        return true;
    }
    return mChanged.wait_until(lock, deadline, isDone);
}

}
