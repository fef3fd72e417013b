// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_HOST_STORE_STORELOGSCENE_H
#define ORV_TESTS_HOST_STORE_STORELOGSCENE_H

#include "MemoryLog.h"
#include "Mixture.h"
#include "SampleStore.h"

#include <gtest/gtest.h>

namespace OrvHost {

/// Two stores on one log, the hosts a and b; the first has filled it.
class StoreLogScene : public testing::Test, protected SampleStore {
protected:
    StoreLogScene();

    /// Both stores hold the same, and so does a third that loads the objects of the log.
    void expectEqualStores();

    MemoryLog log;
    MoStore other{model};
};

}

#endif
