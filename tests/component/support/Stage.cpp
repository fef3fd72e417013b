// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Stage.h"

#include <ostream>
#include <stdexcept>

namespace Scripted {

void PrintTo(Part part, std::ostream* out) {
    switch (part) {
    case Part::Portal1:
        *out << "Portal1";
        return;
    case Part::Portal3:
        *out << "Portal3";
        return;
    case Part::Router1:
        *out << "Router1";
        return;
    case Part::Router3:
        *out << "Router3";
        return;
    case Part::Router3_1:
        *out << "Router3_1";
        return;
    case Part::VekRouter3:
        *out << "VekRouter3";
        return;
    case Part::ModelRepository:
        *out << "ModelRepository";
        return;
    case Part::ThreadContext:
        *out << "ThreadContext";
        return;
    case Part::TransactionTable:
        *out << "TransactionTable";
        return;
    }
}

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
