// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Stage.h"

#include <stdexcept>

namespace Scripted {

Stage* Stage::sCurrent = nullptr;

Stage::Stage() {
    if (sCurrent != nullptr) {
        throw std::logic_error("there is a scripted host already");
    }
    sCurrent = this;
}

Stage::~Stage() {
    sCurrent = nullptr;
}

Stage& Stage::current() {
    if (sCurrent == nullptr) {
        throw std::logic_error("a table of the host is called after the host is gone");
    }
    return *sCurrent;
}

void Stage::addMessage(const std::string& text) {
    const std::lock_guard<std::mutex> guard(mMutex);
    mMessages.push_back(text);
}

std::vector<std::string> Stage::messages() const {
    const std::lock_guard<std::mutex> guard(mMutex);
    return mMessages;
}

}
