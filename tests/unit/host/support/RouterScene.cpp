// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RouterScene.h"

namespace OrvHost {

RouterScene::RouterScene() {
    service.enrolInEach(router.getResource());
    tx = service.begin();
}

TransactionOutcome RouterScene::commit() {
    TransactionOutcome outcome = service.commit(tx);
    tx = service.begin();
    return outcome;
}

std::string RouterScene::lastMessage() {
    const auto messages = context.take();
    return messages.empty() ? std::string() : messages.back().text;
}

}
