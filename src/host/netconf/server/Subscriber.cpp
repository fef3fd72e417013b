// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Subscriber.h"

#include "netconf/core/ServerLog.h"

#include <libyang/libyang.h>
#include <nc_server.h>

#include <cstring>
#include <utility>

namespace OrvHost {

namespace {

/// Events that wait for a client that does not read.
constexpr std::size_t kMostWaiting = 1000;

OwnedTree parsed(const WireModel& model, const std::string& xml) {
    ly_in* in = nullptr;
    if (ly_in_new_memory(xml.c_str(), &in) != LY_SUCCESS) {
        return nullptr;
    }
    lyd_node* tree = nullptr;
    lyd_parse_op(model.context().get(), nullptr, in, LYD_XML, LYD_TYPE_NOTIF_YANG, &tree, nullptr);
    ly_in_free(in, 0);
    for (const YangMessage& message : model.context().takeMessages()) {
        logServer(3, "an event cannot be sent: " + message.text);
    }
    return OwnedTree(tree);
}

}

Subscriber::Subscriber(nc_session* session, const WireModel& model, Filter filter,
                       std::function<void()> lose)
    : mSession(session), mModel(model), mFilter(std::move(filter)), mLose(std::move(lose)) {
    nc_session_inc_notif_status(session);
}

Subscriber::~Subscriber() {
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mIsEnding = true;
        mChanged.notify_one();
    }
    if (mThread.joinable()) {
        mThread.join();
    }
    nc_session_dec_notif_status(mSession);
}

void Subscriber::push(const std::shared_ptr<const Event>& event) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mWaiting.size() >= kMostWaiting) {
        mIsEnding = true;
        mLose();
    } else if (!mIsEnding) {
        mWaiting.push_back(event);
    }
    mChanged.notify_one();
}

void Subscriber::start() {
    if (!mThread.joinable()) {
        mThread = std::thread([this] { run(); });
    }
}

void Subscriber::run() {
    std::unique_lock<std::mutex> lock(mMutex);
    while (!mIsEnding) {
        if (mWaiting.empty()) {
            mChanged.wait(lock);
            continue;
        }
        const std::shared_ptr<const Event> event = mWaiting.front();
        mWaiting.pop_front();
        lock.unlock();
        send(*event);
        lock.lock();
    }
    lock.unlock();
    nc_thread_destroy();
}

void Subscriber::send(const Event& event) {
    OwnedTree tree = parsed(mModel, event.xml);
    if (mFilter && tree != nullptr) {
        tree = filtered(std::move(tree), *mFilter);
    }
    if (tree == nullptr) {
        return;
    }
    nc_server_notif* notification =
        nc_server_notif_new(tree.release(), strdup(event.time.c_str()), NC_PARAMTYPE_FREE);
    // The session may be busy with a reply.
    while (nc_server_notif_send(mSession, notification, 200) == NC_MSG_WOULDBLOCK) {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (mIsEnding) {
            break;
        }
    }
    nc_server_notif_free(notification);
}

}
