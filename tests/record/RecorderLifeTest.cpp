// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// A host that keeps what the component gave over its lives, and that ends in several ways. All of
// it is legal with the component alone, and is to be so with the recorder in front of it. Each case
// runs in a process of its own, and so has a recording of its own: see check_record.py.

#include "FailingNew.h"
#include "Host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

using namespace Scripted;
using testing::Contains;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

const std::string kUnit = "ManagedElement=paris,Unit=7";
const std::string kPath = "ManagedElement,Unit";

/// What ends with the process: made before the component is opened, so destroyed after everything
/// that was made by it.
struct Kept {
    std::unique_ptr<Host> host;
    std::unique_ptr<SharedObject> opened;
    std::optional<Read> one;
    std::optional<ReadMany> many;
};
Kept kept;

}

class RecorderLife : public testing::Test {
protected:
    RecorderLife() {
        kept.host = std::make_unique<Host>();
        host().mo("ManagedElement=1").with("label", strings({"root"}));
        host().mo("ManagedElement=1,Unit=7").with("label", strings({"x"}));
        host().start();
    }
    ~RecorderLife() override {
        kept.one.reset();
        kept.many.reset();
        kept.host.reset();
    }

    static Host& host() { return *kept.host; }

    static void readAndKeep() {
        kept.one.emplace(host().client().get(1, kUnit, "label"));
        kept.many.emplace(host().client().getMany(1, kUnit, {"label"}));
        ASSERT_EQ(kept.one->code, OrvOk);
        ASSERT_EQ(kept.many->code, OrvOk);
    }

    static void expectKept() {
        EXPECT_EQ(kept.one->value(), strings({"x"}));
        ASSERT_EQ(kept.many->values().size(), 1U);
        EXPECT_EQ(kept.many->values().front(), strings({"x"}));
    }

    // One call with many inside: an interceptor calls back. How large the file is before that,
    // before the call ends, and afterwards.
    static std::vector<std::uintmax_t> readWithManyInside() {
        const char* const file = std::getenv("ORV_RECORD_FILE"); // NOLINT(concurrency-mt-unsafe)
        const Client3 client = host().client();
        std::vector<std::uintmax_t> sizes;
        host().interceptor(kPath);
        host().when("Interceptor.getMoAttribute").once().runs([&] {
            sizes.push_back(std::filesystem::file_size(file));
            for (int times = 0; times < 50000; ++times) {
                EXPECT_TRUE(client.exists(1, kUnit).thing);
                host().forget();
            }
            sizes.push_back(std::filesystem::file_size(file));
        });
        EXPECT_EQ(client.get(1, kUnit, "label").code, OrvOk);
        sizes.push_back(std::filesystem::file_size(file));
        return sizes;
    }

    static void end() {
        EXPECT_EQ(host().stopComponent(), OrvOk);
        host().terminate();
    }

    static void beginAgain() {
        ASSERT_EQ(host().init(), OrvOk);
        ASSERT_EQ(host().startComponent(), OrvOk);
    }

    // It is not ended, and closes nothing. The pointer is for those who look for lost memory.
    static void leaveHost() {
        static const Host* left = nullptr;
        left = kept.host.release();
        ASSERT_NE(left, nullptr);
    }

    [[noreturn]] static void exitAsItIs() {
        std::exit(testing::Test::HasFailure() ? 1 : 0); // NOLINT(concurrency-mt-unsafe)
    }
};

TEST_F(RecorderLife, TerminatedTwice_ValuesAreReleasedAfterTheEnd) {
    readAndKeep();
    end();
    expectKept();
    kept.one.reset();
    beginAgain();
    readAndKeep();
    end();
    expectKept();
    kept.many.reset();
    beginAgain();
    EXPECT_EQ(host().client().get(2, kUnit, "label").value(), strings({"x"}));
    end();
    kept.one.reset();
}

TEST_F(RecorderLife, BegunAgain_AnInterceptorIsStillThere) {
    host().interceptor(kPath);
    end();
    beginAgain();
    host().forget();
    EXPECT_EQ(host().client().get(1, kUnit, "label").code, OrvOk);
    EXPECT_THAT(host().calls(), Contains(StartsWith("Interceptor.getMoAttribute('" + kPath)));
}

TEST_F(RecorderLife, ClosedAndOpened_IsAFreshComponent) {
    host().interceptor(kPath);
    host().unload();
    host().start();
    EXPECT_EQ(host().client().get(1, kUnit, "label").code, OrvOk);
    EXPECT_THAT(host().calls("Interceptor."), IsEmpty());
}

// The host's destructor complains of values that it gave and that nobody has released.
TEST_F(RecorderLife, ClosedAsItIs_ValuesOfTheHostAreReleased) {
    ASSERT_EQ(host().client1().get(1, kUnit, "label").code, OrvOk);
    host().closeAsItIs();
}

TEST_F(RecorderLife, Forked_TheChildIsServedAndNotRecorded) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        _exit(host().client().get(1, kUnit, "label").code == OrvOk ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(host().client().get(1, kUnit, "label").value(), strings({"x"}));
}

// Each allocation of an operation fails in turn, the recorder's as well, always with an interceptor
// that the recorder does not know yet.
TEST_F(RecorderLife, NoMemory_TheInterceptorIsAskedByTheNextOperation) {
    const Client3 client = host().client();
    bool isSprung = true;
    for (std::size_t failing = 1; isSprung; ++failing) {
        ASSERT_LT(failing, 1000U);
        const std::string name = "Unit" + std::to_string(failing);
        const std::string path = "ManagedElement," + name;
        const std::string dn = "ManagedElement=paris," + name + "=1";
        host().interceptor(path);
        {
            const NewWatch watch(failing);
            client.get(1, dn, "label");
            isSprung = watch.sprung();
        }
        host().forget();
        client.get(1, dn, "label");
        EXPECT_THAT(host().calls(), Contains(StartsWith("Interceptor.getMoAttribute('" + path)));
    }
}

// As above. An interceptor that refuses is asked, or the operation fails; and nobody asks one that
// has been taken out.
TEST_F(RecorderLife, NoMemory_NoInterceptorIsPassedOverOrAskedTooLong) {
    const Client3 client = host().client();
    bool isSprung = true;
    for (std::size_t failing = 1; isSprung; ++failing) {
        ASSERT_LT(failing, 1000U);
        const std::string name = "Unit" + std::to_string(failing);
        const std::string path = "ManagedElement," + name;
        const std::string dn = "ManagedElement=paris," + name + "=1";
        host().mo("ManagedElement=1," + name + "=1").with("label", strings({"x"}));
        Interceptor& refusing = host().interceptor(path);
        host().when("Interceptor.getMoAttribute").once().fails(-5);
        {
            const NewWatch watch(failing);
            EXPECT_NE(client.get(1, dn, "label").code, OrvOk) << "allocation " << failing;
            isSprung = watch.sprung();
        }
        refusing.deregisterClass(path);
        host().forget();
        EXPECT_EQ(client.get(1, dn, "label").code, OrvOk) << "allocation " << failing;
        EXPECT_THAT(host().calls("Interceptor."), IsEmpty()) << "allocation " << failing;
    }
}

// Without the recorder an int crosses the component's functions, too. Afterwards all is as before.
TEST_F(RecorderLife, LogSinkThrowsAnInt_ItReachesTheHost) {
    host().logLevel(8);
    host().interceptor(kPath);
    Orv::LoggingWrapper::instance()->setSink([](const Orv::LogRecord&) { throw 5; });
    EXPECT_THROW(host().client().get(1, kUnit, "label"), int);
    Orv::LoggingWrapper::instance()->setSink(nullptr);
    EXPECT_EQ(host().client().get(1, kUnit, "label").code, OrvOk);
    EXPECT_THAT(host().calls(), Contains(StartsWith("Interceptor.getMoAttribute('" + kPath)));
}

// Run with a limit that is reached. The recorder's own lines are the first that the host gets.
TEST_F(RecorderLife, LogSinkThrowsAnIntForTheEnd_TheHostIsServed) {
    const Value large = strings({std::string(20000, 'x')});
    int lines = 0;
    Orv::LoggingWrapper::instance()->setSink([&](const Orv::LogRecord& record) {
        EXPECT_THAT(record.text, testing::HasSubstr("the recording ends here"));
        ++lines;
        throw 5;
    });
    for (int times = 0; times < 100; ++times) {
        EXPECT_EQ(host().client().set(1, kUnit, "label", large), OrvOk);
    }
    Orv::LoggingWrapper::instance()->setSink(nullptr);
    EXPECT_EQ(lines, 2);
}

// What is recorded of one call is not kept until it ends.
TEST_F(RecorderLife, CallWithManyInside_IsWrittenAsItRuns) {
    const std::vector<std::uintmax_t> sizes = readWithManyInside();
    ASSERT_EQ(sizes.size(), 3U);
    EXPECT_GT(sizes[1] - sizes[0], 3'000'000U);
    EXPECT_LT(sizes[2] - sizes[1], 1'500'000U);
    EXPECT_EQ(host().client().get(1, kUnit, "label").code, OrvOk);
}

// Run with a limit that is reached inside of the call.
TEST_F(RecorderLife, CallWithManyInside_EndsTheRecording) {
    EXPECT_EQ(readWithManyInside().size(), 3U);
    EXPECT_EQ(host().client().get(1, kUnit, "label").code, OrvOk);
}

// Run with a limit of file sizes that is reached; the file is looked at afterwards.
TEST_F(RecorderLife, NoSpace_AllThreadsAreServed) {
    const Value large = strings({std::string(20000, 'x')});
    std::vector<std::thread> threads;
    for (unsigned long tx = 1; tx <= 4; ++tx) {
        threads.emplace_back([&large, tx] {
            for (int times = 0; times < 20; ++times) {
                EXPECT_EQ(host().client().set(tx, kUnit, "label", large), OrvOk);
                EXPECT_EQ(host().client().exists(tx, kUnit).code, OrvOk);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

// The following end the process, and objects of the host that end with it release what they have.

TEST_F(RecorderLife, EndOfProcess_Started) {
    readAndKeep();
    leaveHost();
    exitAsItIs();
}

TEST_F(RecorderLife, EndOfProcess_Terminated) {
    readAndKeep();
    end();
    leaveHost();
    exitAsItIs();
}

TEST_F(RecorderLife, EndOfProcess_ClosedByAStaticObject) {
    kept.opened = std::make_unique<SharedObject>("ORV_COMPONENT_LIBRARY", "");
    readAndKeep();
    end();
    kept.one.reset();
    kept.many.reset();
    kept.host.reset();
    exitAsItIs();
}
