// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Committer.h"

namespace OrvHost {

namespace {

thread_local const NetconfSession* theCommitter = nullptr;

}

Committer::Committer(const NetconfSession& session) {
    theCommitter = &session;
}

Committer::~Committer() {
    theCommitter = nullptr;
}

const NetconfSession* Committer::current() {
    return theCommitter;
}

}
