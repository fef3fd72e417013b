// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Committer.h"

#include "NetconfSession.h"

#include <utility>

namespace OrvHost {

namespace {

thread_local const Committer* theCommitter = nullptr;

}

Committer::Committer(const NetconfSession& session)
    : mUser(session.user().name), mSessionId(session.id()) {
    theCommitter = this;
}

Committer::Committer(std::string user) : mUser(std::move(user)) {
    theCommitter = this;
}

Committer::~Committer() {
    theCommitter = nullptr;
}

const Committer* Committer::current() {
    return theCommitter;
}

}
