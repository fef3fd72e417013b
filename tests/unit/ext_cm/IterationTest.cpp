// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// IterImpl over both tables that it serves.

#include "MoImpl.h"

#include "LogCapture.h"
#include "OrvOamSpiManagedObject_3.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

using OrvExtCmRouterService::IdMappings;
using OrvExtCmRouterService::IterImpl;
using Scripted::LogCapture;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

constexpr unsigned long kTx = 5;

template <class Handle>
Handle routerHandleOf(unsigned long long word) {
    return std::bit_cast<Handle>(word);
}

// The router's side: what it was asked, and what it answers.
template <class Handle>
struct Router {
    static inline std::vector<std::string> calls;
    static inline OrvReturnT code = OrvOk;
    static inline std::string name = "child";
    static inline bool atEnd = false;
    static inline Handle handle{};
    static inline std::vector<Handle> asked;

    static void reset() {
        calls.clear();
        asked.clear();
        code = OrvOk;
        atEnd = false;
        handle = routerHandleOf<Handle>(0xffffffff80000001ULL);
    }

    static OrvReturnT newMoIterator(unsigned long txHandle, const char* dn, const char* className,
                                    Handle* iterator) {
        calls.push_back("new " + std::to_string(txHandle) + " '" + dn + "' " + className);
        if (code == OrvOk) {
            *iterator = handle;
        }
        return code;
    }

    static OrvReturnT nextMo(Handle iterator, char** result) {
        asked.push_back(iterator);
        *result = atEnd ? nullptr : name.data();
        return code;
    }
};

template <class Table, class Handle>
class Service : public IterImpl<Table, Handle> {
public:
    explicit Service(IdMappings& ids) : IterImpl<Table, Handle>(ids) {
        table.newMoIterator = &Router<Handle>::newMoIterator;
        table.nextMo = &Router<Handle>::nextMo;
    }

    Orv::AutoMemory* getTxData(unsigned long) override {
        ++touches;
        return memory.get();
    }
    Table* getCmRouter() override { return &table; }

    void endTransaction() { memory.reset(); }

    Table table{};
    int touches = 0;
    std::unique_ptr<Orv::AutoMemory> memory = std::make_unique<Orv::AutoMemory>();
};

template <class Kind>
class Iteration : public testing::Test {
protected:
    using Handle = typename Kind::Handle;
    using Served = Service<typename Kind::Table, Handle>;
    using HostRouter = Router<Handle>;
    using MoIterator = typename Served::MoIterator;

    Iteration() {
        HostRouter::reset();
        Orv::MeIdTranslator::instance()->configure("paris", "");
    }
    ~Iteration() override { Orv::MeIdTranslator::instance()->configure("", ""); }

    Handle open(const char* dn) {
        Handle handle{};
        EXPECT_EQ(service.newMoIterator(kTx, dn, "Unit", &handle), OrvOk);
        return handle;
    }

    IdMappings mappings{Orv::MeIdTranslator::instance()};
    Served service{mappings};
    char* text = nullptr;
};

struct Version1 {
    using Table = OrvOamSpiManagedObject_1;
    using Handle = void*;
};
struct Version3 {
    using Table = OrvOamSpiManagedObject_3;
    using Handle = unsigned long long;
};
using Kinds = testing::Types<Version1, Version3>;

}

TYPED_TEST_SUITE(Iteration, Kinds);

TYPED_TEST(Iteration, NewMoIterator_GivesAHandleOfItsOwnAndTouchesTheTransaction) {
    const auto handle = this->open("ManagedElement=paris");
    EXPECT_NE(handle, TestFixture::HostRouter::handle);
    EXPECT_EQ(this->service.touches, 1);
    EXPECT_THAT(TestFixture::HostRouter::calls, ElementsAre("new 5 'ManagedElement=1' Unit"));
    ASSERT_NE(TestFixture::MoIterator::find(handle), nullptr);
    EXPECT_EQ(static_cast<void*>(TestFixture::MoIterator::find(handle)),
              std::bit_cast<void*>(handle));
}

TYPED_TEST(Iteration, NewMoIterator_UntranslatableDn_AsksNobody) {
    auto handle = routerHandleOf<typename TestFixture::Handle>(77);
    EXPECT_EQ(this->service.newMoIterator(kTx, "ManagedElement=london", "Unit", &handle),
              OrvNotExist);
    EXPECT_EQ(handle, routerHandleOf<typename TestFixture::Handle>(77));
    EXPECT_THAT(TestFixture::HostRouter::calls, IsEmpty());
    EXPECT_EQ(this->service.touches, 0);
}

TYPED_TEST(Iteration, NewMoIterator_RouterRefuses_LeavesNothingBehind) {
    TestFixture::HostRouter::code = -4711;
    auto handle = routerHandleOf<typename TestFixture::Handle>(77);
    EXPECT_EQ(this->service.newMoIterator(kTx, "A=1", "Unit", &handle), -4711);
    EXPECT_EQ(this->service.touches, 0);
    EXPECT_EQ(TestFixture::MoIterator::find(handle), nullptr);
}

TYPED_TEST(Iteration, NextMo_AsksTheRouterWithItsOwnHandleWhole) {
    const auto handle = this->open("A=1");
    EXPECT_EQ(this->service.nextMo(handle, &this->text), OrvOk);
    EXPECT_THAT(TestFixture::HostRouter::asked, ElementsAre(TestFixture::HostRouter::handle));
    EXPECT_EQ(this->text, TestFixture::HostRouter::name.data());
}

TYPED_TEST(Iteration, NextMo_BelowAnMo_NamesComeBackUntouched) {
    const auto handle = this->open("ManagedElement=paris");
    this->service.nextMo(handle, &this->text);
    EXPECT_EQ(this->text, TestFixture::HostRouter::name.data());
}

TYPED_TEST(Iteration, NextMo_AtTheTopLevel_EveryNameIsTheIdentity) {
    const auto handle = this->open("");
    EXPECT_THAT(TestFixture::HostRouter::calls, ElementsAre("new 5 '' Unit"));
    this->service.nextMo(handle, &this->text);
    EXPECT_STREQ(this->text, "paris");
    EXPECT_EQ(this->text, this->mappings.rootIdentity()) << "not the translator's own text";
    Orv::MeIdTranslator::instance()->configure("", "fallback");
    this->service.nextMo(handle, &this->text);
    EXPECT_STREQ(this->text, "fallback");
}

TYPED_TEST(Iteration, NextMo_EndAtTheTopLevel_StaysNull) {
    const auto handle = this->open("");
    TestFixture::HostRouter::atEnd = true;
    this->text = TestFixture::HostRouter::name.data();
    EXPECT_EQ(this->service.nextMo(handle, &this->text), OrvOk);
    EXPECT_EQ(this->text, nullptr);
}

TYPED_TEST(Iteration, NextMo_RouterFailsAtTheTopLevel_GivesItsCodeAndNoIdentity) {
    const auto handle = this->open("");
    TestFixture::HostRouter::code = -4711;
    EXPECT_EQ(this->service.nextMo(handle, &this->text), -4711);
    EXPECT_EQ(this->text, TestFixture::HostRouter::name.data());
}

TYPED_TEST(Iteration, NextMo_MadeUpOrNullHandle_AnswersNotActiveAndTouchesNothing) {
    this->open("A=1");
    char untouched[] = "untouched";
    this->text = untouched;
    for (const unsigned long long word : {0ULL, 1ULL, 0xdeadbeefULL, ~0ULL}) {
        const auto handle = routerHandleOf<typename TestFixture::Handle>(word);
        EXPECT_EQ(this->service.nextMo(handle, &this->text), OrvNotActive);
    }
    EXPECT_EQ(this->text, untouched);
    EXPECT_THAT(TestFixture::HostRouter::asked, IsEmpty());
}

TYPED_TEST(Iteration, NextMo_AfterTheTransaction_AnswersNotActive) {
    const auto first = this->open("A=1");
    const auto second = this->open("");
    this->service.endTransaction();
    EXPECT_EQ(this->service.nextMo(first, &this->text), OrvNotActive);
    EXPECT_EQ(this->service.nextMo(second, &this->text), OrvNotActive);
}

TYPED_TEST(Iteration, EndOfTransaction_TakesOnlyItsOwnIterators) {
    typename TestFixture::Served other(this->mappings);
    auto kept = routerHandleOf<typename TestFixture::Handle>(0);
    EXPECT_EQ(other.newMoIterator(kTx + 1, "A=1", "Unit", &kept), OrvOk);
    this->open("A=1");
    this->service.endTransaction();
    EXPECT_EQ(other.nextMo(kept, &this->text), OrvOk);
}

TYPED_TEST(Iteration, Traces_ShowArgumentsAndTheNameOfTheCode) {
    LogCapture log;
    Orv::LoggingWrapper::instance()->setLevel(8);
    auto handle = routerHandleOf<typename TestFixture::Handle>(0);
    this->service.newMoIterator(kTx, "ManagedElement=london", "Unit", &handle);
    EXPECT_THAT(log.lines(),
                ElementsAre("trace 9 newMoIterator:  >> newMoIterator  dn: ManagedElement=london, "
                            "class: Unit",
                            StartsWith("trace2 ExtCm 14 "),
                            "trace 10 newMoIterator:  << Error: OrvNotExist",
                            StartsWith("trace2 ExtCm 14 ")));
    EXPECT_EQ(log.records().front().file, "src/ext_cm/src/MoImpl");
}

TYPED_TEST(Iteration, NextMo_UnknownHandle_WritesNoExitTrace) {
    LogCapture log;
    Orv::LoggingWrapper::instance()->setLevel(8);
    this->service.nextMo(routerHandleOf<typename TestFixture::Handle>(1), &this->text);
    EXPECT_THAT(log.lines(), ElementsAre("trace 9 nextMo:  >> ", "trace2 ExtCm 14 nextMo:  >> "));
}

// One instantiation's handle is nothing to the other.
TEST(IterationKinds, HandleOfOneVersion_IsUnknownToTheOther) {
    IdMappings mappings(Orv::MeIdTranslator::instance());
    Router<void*>::reset();
    Service<OrvOamSpiManagedObject_1, void*> one(mappings);
    Service<OrvOamSpiManagedObject_3, unsigned long long> three(mappings);
    void* handle = nullptr;
    ASSERT_EQ(one.newMoIterator(kTx, "A=1", "Unit", &handle), OrvOk);
    char* text = nullptr;
    EXPECT_EQ(three.nextMo(std::bit_cast<unsigned long long>(handle), &text), OrvNotActive);
}
