// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StoreLogScene.h"

namespace OrvHost {

StoreLogScene::StoreLogScene() {
    store.attach(log, "a");
    other.attach(log, "b");
}

void StoreLogScene::expectEqualStores() {
    store.catchUp();
    other.catchUp();
    EXPECT_EQ(contentOf(store), contentOf(other));
    MoStore fresh(model);
    fresh.attach(log);
    EXPECT_EQ(contentOf(fresh), contentOf(store));
}

}
