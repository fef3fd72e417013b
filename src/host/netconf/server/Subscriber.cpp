// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Subscriber.h"

#include "netconf/core/ServerLog.h"

#include <libyang/libyang.h>
#include <nc_server.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include <sys/eventfd.h>

namespace OrvHost {

namespace {

/// Events that wait for a client that does not read.
constexpr std::size_t kMostWaiting = 1000;
constexpr std::size_t kMostBytes = std::size_t{64} << 20U;

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
    : mSession(session),
      mModel(model),
      mFilter(std::move(filter)),
      mLose(std::move(lose)),
      mSignal(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (mSignal.get() < 0) {
        throw std::system_error(errno, std::generic_category(), "no descriptor for events");
    }
    nc_session_inc_notif_status(session);
}

Subscriber::~Subscriber() {
    nc_session_dec_notif_status(mSession);
}

void Subscriber::push(const std::shared_ptr<const Event>& event) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mIsLost) {
        return;
    }
    mWaitingBytes += event->xml.size();
    if (mWaiting.size() >= kMostWaiting || (mWaitingBytes > kMostBytes && !mWaiting.empty())) {
        mIsLost = true;
        mWaiting.clear();
        mLose();
        return;
    }
    mWaiting.push_back(event);
    eventfd_write(mSignal.get(), 1);
}

std::uint32_t Subscriber::sendWaiting() {
    std::deque<std::shared_ptr<const Event>> events;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        eventfd_t count = 0;
        eventfd_read(mSignal.get(), &count);
        events.swap(mWaiting);
        mWaitingBytes = 0;
    }
    std::uint32_t sent = 0;
    for (const auto& event : events) {
        const std::optional<bool> isSent = send(*event);
        if (isSent && !*isSent) {
            break;
        }
        sent += isSent ? 1U : 0U;
    }
    return sent;
}

std::optional<bool> Subscriber::send(const Event& event) {
    OwnedTree tree = parsed(mModel, event.xml);
    if (mFilter && tree != nullptr) {
        tree = filtered(std::move(tree), *mFilter);
    }
    if (tree == nullptr) {
        return std::nullopt;
    }
    nc_server_notif* notification =
        nc_server_notif_new(tree.release(), strdup(event.time.c_str()), NC_PARAMTYPE_FREE);
    constexpr int kNoLimit = -1;
    const bool isSent = nc_server_notif_send(mSession, notification, kNoLimit) == NC_MSG_NOTIF;
    nc_server_notif_free(notification);
    return isSent;
}

}
