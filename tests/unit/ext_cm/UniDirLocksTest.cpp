// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The lock of the record of unidirectional references: held over the whole of a validation, and
// free after an exception that is not of this subsystem.

#include "Portal.h"
#include "Records.h"
#include "Stage.h"
#include "UniDirValidator.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <stdexcept>
#include <string>

namespace {

using OrvExtCmRouterService::UniDirValidator;
using Scripted::refs;

constexpr unsigned long tx = 7;

/// Foo=1 has been written in transaction 7 and holds fewer Bar than it needs.
class UniDirLocks : public testing::Test {
protected:
    UniDirLocks() {
        stage.model.uniDir("Foo", "peer", "Bar", 1, 2);
        Orv::Portal::instance()->attach(&Scripted::orvPortalLookup);
        validator.start();
        set(tx);
    }
    ~UniDirLocks() override { Orv::Portal::instance()->detach(); }

    void set(unsigned long txHandle) {
        Scripted::Records records;
        validator.setMoRef(txHandle, "Foo=1", "peer", records.container(refs({})));
    }

    OrvReturnT validate(unsigned long txHandle) {
        bool result = true;
        const OrvReturnT code = validator.validate(txHandle, &result);
        EXPECT_EQ(result, code == OrvOk);
        return code;
    }

    /// True if \p other is done on another thread while a validation calls the thread context.
    template <class Other>
    bool isDoneDuringAValidation(Other other) {
        std::future<void> running;
        bool done = false;
        stage.script.when("ThreadContext.addMessage").once().runs([&] {
            running = std::async(std::launch::async, other);
            done = running.wait_for(std::chrono::milliseconds(100)) == std::future_status::ready;
        });
        EXPECT_EQ(validate(tx), OrvValidationFailed);
        running.get();
        return done;
    }

    Scripted::Stage stage;
    UniDirValidator validator;
};

TEST_F(UniDirLocks, Validate_HoldsTheLockThatEachOtherOperationNeeds) {
    EXPECT_FALSE(isDoneDuringAValidation([&] { set(8); }));
    EXPECT_FALSE(isDoneDuringAValidation([&] { validator.deleteMo(9, "Foo=1"); }));
    EXPECT_FALSE(isDoneDuringAValidation([&] { validator.finish(9); }));
    EXPECT_EQ(validate(8), OrvValidationFailed) << "recorded in the end";
}

TEST_F(UniDirLocks, OtherExceptions_PassAndLeaveTheLockFree) {
    stage.script.when("Model.getUniDirEnd").throws(std::runtime_error("no"));
    EXPECT_THROW(set(tx), std::runtime_error);
    EXPECT_THROW(validate(tx), std::runtime_error);
    const auto other = std::async(std::launch::async, [&] { validator.finish(tx); });
    EXPECT_EQ(std::future_status::ready, other.wait_for(std::chrono::seconds(20)));
}

}
