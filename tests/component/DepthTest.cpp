// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// DNs, structs and subtrees of a depth that no model has, from a thread with little stack: clients
// choose the depth, and hosts how much stack their threads have.

#include "Network.h"
#include "Records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

using namespace Scripted;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

#ifdef ORV_SANITIZED
constexpr std::size_t kStack = std::size_t{1024} * 1024; // instrumented frames are large
#else
constexpr std::size_t kStack = std::size_t{128} * 1024;
#endif

// With sanitizers a step takes much longer, and the coverage counts lines one by one; fewer are
// enough for both.
#if defined(ORV_COVERAGE) || defined(ORV_SANITIZED)
constexpr std::size_t kManySteps = 100000;
#else
constexpr std::size_t kManySteps = 1000000;
#endif
#ifdef ORV_COVERAGE
constexpr std::size_t kManyStructs = 1000;
#else
constexpr std::size_t kManyStructs = 100000;
#endif
constexpr std::size_t kManyMos = 5000;

void* run(void* work) {
    (*static_cast<const std::function<void()>*>(work))();
    return nullptr;
}

/// Runs \p work on a thread of its own with a small stack, to its end.
void onSmallStack(const std::function<void()>& work) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStack), 0);
    pthread_t thread = {};
    // The thread only calls what it is given.
    auto* const given = const_cast<std::function<void()>*>(&work);
    ASSERT_EQ(pthread_create(&thread, &attributes, &run, given), 0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    EXPECT_EQ(pthread_attr_destroy(&attributes), 0);
}

/// A DN of so many steps below \p root, the last of which is "Unit=7".
std::string deepDn(std::string root, std::size_t steps) {
    const std::string step = ",Part=1";
    root.reserve(root.size() + steps * step.size());
    for (std::size_t i = 2; i < steps; ++i) {
        root += step;
    }
    return root + ",Unit=7";
}

}

class Depth : public Network {
protected:
    Depth() { host.script().keepCalls(false); }
};

// -------------------------------------------------------------------------------------------------
// DNs

class DepthOfADn : public Depth, public testing::WithParamInterface<std::size_t> {
protected:
    DepthOfADn() {
        host.mo(inside)
            .with("label", strings({"x"}))
            .with("site", refs({}))
            .with("cells", refs({}));
    }

    /// A site that is a cell has been reported by both validators. The texts are too long to be
    /// shown.
    void expectReportedFor(const std::string& dn) const {
        const std::string text = "Cell is not a valid type for attribute site in " + dn;
        const bool isReportedTwice = host.messages() == std::vector<std::string>{text + ".", text};
        EXPECT_TRUE(isReportedTwice);
    }

    static void expectOne(const std::vector<std::string>& references, const std::string& dn) {
        const bool isTheOne = references == std::vector<std::string>{dn};
        EXPECT_TRUE(isTheOne);
    }

    const std::string outside = deepDn(kRoot, GetParam());
    const std::string inside = deepDn(kRootInside, GetParam());
};

TEST_P(DepthOfADn, Reads_AreServed) {
    onSmallStack([this] {
        EXPECT_TRUE(client().exists(1, outside).thing);
        EXPECT_EQ(client().count(1, outside, "Part").code, OrvOk);
        EXPECT_EQ(client().get(1, outside, "label").value(), strings({"x"}));
        EXPECT_THAT(client().getMany(1, outside, {"label"}).values(), ElementsAre(strings({"x"})));
        EXPECT_EQ(client().open(1, outside, "Part").code, OrvOk);
        EXPECT_EQ(host.client1().get(1, outside, "label").code, OrvOk);
        EXPECT_EQ(host.client1().open(1, outside, "Part").code, OrvOk);
        EXPECT_EQ(host.resource().finish(1), OrvOk);
    });
}

TEST_P(DepthOfADn, ReferenceToIt_IsTranslatedBothWays) {
    onSmallStack([this] {
        EXPECT_EQ(client().set(1, unit("7"), "label", refs({outside})), OrvOk);
        EXPECT_TRUE(client().get(1, unit("7"), "label").value() == refs({outside}));
        EXPECT_EQ(host.client1().set(1, unit("7"), "label", refs({outside})), OrvOk);
        EXPECT_TRUE(readValue(host.client1().get(1, unit("7"), "label").thing) == refs({outside}));
        EXPECT_EQ(host.resource().finish(1), OrvOk);
    });
    expectOne(host.world().references(unitInside("7"), "label"), inside);
}

TEST_P(DepthOfADn, GoodReferenceOfIt_IsRecordedJudgedAndDropped) {
    onSmallStack([this] {
        EXPECT_EQ(client().set(1, outside, "site", refs({site("1")})), OrvOk);
        EXPECT_TRUE(validate(1));
        EXPECT_EQ(host.resource().finish(1), OrvOk);
    });
    EXPECT_THAT(host.messages(), IsEmpty());
}

TEST_P(DepthOfADn, BadReferenceOfIt_IsReportedWithTheWholeDn) {
    onSmallStack([this] {
        EXPECT_EQ(client().set(1, outside, "site", refs({cell("1")})), OrvOk);
        EXPECT_FALSE(validate(1));
        EXPECT_EQ(host.resource().finish(1), OrvOk);
    });
    expectReportedFor(inside);
}

TEST_P(DepthOfADn, DeletedMo_IsForgotten) {
    onSmallStack([this] {
        EXPECT_EQ(client().set(1, outside, "site", refs({cell("1")})), OrvOk);
        EXPECT_EQ(client().remove(1, outside), OrvOk);
        EXPECT_TRUE(validate(1));
        EXPECT_EQ(host.resource().finish(1), OrvOk);
    });
}

TEST_P(DepthOfADn, DeletedAncestor_TakesItAlong) {
    host.mo(kRootInside + ",Part=1");
    onSmallStack([this] {
        EXPECT_EQ(client().set(1, outside, "site", refs({cell("1")})), OrvOk);
        EXPECT_EQ(client().remove(1, kRoot + ",Part=1"), OrvOk);
        EXPECT_TRUE(validate(1));
        EXPECT_EQ(host.resource().finish(1), OrvOk);
    });
}

TEST_P(DepthOfADn, Stop_DropsWhatIsRecorded) {
    onSmallStack([this] {
        EXPECT_EQ(client().set(1, outside, "site", refs({site("1")})), OrvOk);
        EXPECT_EQ(host.stopComponent(), OrvOk);
    });
}

TEST_P(DepthOfADn, SetMany_FindsTheInterceptorOfTheClassPath) {
    std::string path = "ManagedElement";
    for (std::size_t i = 2; i < GetParam(); ++i) {
        path += ",Part";
    }
    host.interceptor(path + ",Unit");
    bool intercepted = false;
    host.when("Interceptor.setMoAttributes").runs([&] { intercepted = true; });
    onSmallStack([this] {
        EXPECT_EQ(host.client3_1().set(1, outside, {{"site", refs({site("1")})}}), OrvOk);
        EXPECT_TRUE(validate(1));
        EXPECT_EQ(host.resource().finish(1), OrvOk);
    });
    EXPECT_TRUE(intercepted);
}

TEST_P(DepthOfADn, BackPointers_AreKept) {
    onSmallStack([this] {
        EXPECT_EQ(client().set(1, outside, "cells", refs({cell("1")})), OrvOk);
        EXPECT_TRUE(validate(1));
        EXPECT_EQ(host.resource().finish(1), OrvOk);
    });
    expectOne(host.world().references(cellInside("1"), "unit"), inside);
}

TEST_P(DepthOfADn, NewMoBelowIt_IsRecordedAndJudged) {
    onSmallStack([this] {
        EXPECT_EQ(client().create(1, outside, "Unit", "unitId", "9", {{"site", refs({cell("1")})}}),
                  OrvOk);
        EXPECT_FALSE(validate(1));
        EXPECT_EQ(host.resource().finish(1), OrvOk);
    });
    expectReportedFor(inside + ",Unit=9");
}

INSTANTIATE_TEST_SUITE_P(Steps, DepthOfADn, testing::Values(1000, kManySteps / 10, kManySteps),
                         testing::PrintToStringParamName());

// -------------------------------------------------------------------------------------------------
// Structs

namespace {

/// Structs in structs, each with a reference "ref" to \p dn and, up to the last, an "inner" struct.
template <class Version>
class DeepStruct {
public:
    using Container = typename Version::Container;

    explicit DeepStruct(std::string dn) : mDn(std::move(dn)), mLevels(kManyStructs) {
        mReference.moRef = mDn.c_str();
        for (std::size_t i = 0; i < mLevels.size(); ++i) {
            Level& level = mLevels[i];
            const bool last = i + 1 == mLevels.size();
            level.inner = {"inner", last ? nullptr : &mLevels[i + 1].container, nullptr};
            level.ref = {"ref", &mReferences, last ? nullptr : &level.inner};
            level.slot.structValue = &level.ref;
            level.container = {OrvMoAttributeTypeStruct_3, 1, &level.slot};
        }
    }

    Container* container() { return &mLevels.front().container; }

private:
    struct Level {
        Container container;
        typename Version::SlotRecord slot;
        typename Version::MemberRecord ref;
        typename Version::MemberRecord inner;
    };

    std::string mDn;
    typename Version::SlotRecord mReference = {};
    Container mReferences = {OrvMoAttributeTypeMoRef_3, 1, &mReference};
    std::vector<Level> mLevels;
};

/// How many structs lie in each other whose references are to \p dn, from the outermost.
template <class Container>
std::size_t depthOf(const Container* container, const std::string& dn) {
    std::size_t depth = 0;
    while (container != nullptr && container->type == OrvMoAttributeTypeStruct_3) {
        const auto* const ref = container->values[0].structValue;
        if (dn != ref->value->values[0].moRef) {
            return depth;
        }
        ++depth;
        container = ref->next == nullptr ? nullptr : ref->next->value;
    }
    return depth;
}

}

class DepthOfAStruct : public Depth {
protected:
    /// The depth of what the router is given by \p function as argument number \p index.
    template <class Container>
    void measure(const std::string& function, std::size_t index) {
        host.when(function).shows([this, index](const Call& call) {
            seen = depthOf(static_cast<const Container*>(call.arguments.at(index).address),
                           cellInside("1"));
        });
    }

    /// The same of the first of named attributes.
    void measureNamed(const std::string& function, std::size_t index) {
        host.when(function).shows([this, index](const Call& call) {
            const auto* const array =
                static_cast<const OrvMoNamedAttributeValueContainer_3* const*>(
                    call.arguments.at(index).address);
            seen = depthOf(&array[0]->value, cellInside("1"));
        });
    }

    void expectAllSeen() {
        EXPECT_EQ(seen, kManyStructs);
        seen = 0;
    }

    std::size_t seen = 0;
    const char* const dn = "ManagedElement=paris,Unit=7";
    DeepStruct<RecordsOfVersion3> given{cell("1")};
    DeepStruct<RecordsOfVersion1> given1{cell("1")};
    DeepStruct<RecordsOfVersion3> held{cellInside("1")};
    DeepStruct<RecordsOfVersion1> held1{cellInside("1")};
    OrvMoNamedAttributeValueContainer_3 named = {"label", *given.container()};
    OrvMoNamedAttributeValueContainer_3* attributes[2] = {&named, nullptr};
};

TEST_F(DepthOfAStruct, Writes_ConvertAllOfIt) {
    measure<OrvMoAttributeValueContainer_3>("Router3.setMoAttribute", 3);
    measureNamed("Router3.createMo", 5);
    measureNamed("Router3_1.setMoAttributes", 2);
    onSmallStack([this] {
        const OrvOamSpiManagedObject_3& table = *client().table;
        EXPECT_EQ(table.setMoAttribute(1, dn, "label", given.container()), OrvOk);
        expectAllSeen();
        EXPECT_EQ(table.createMo(1, dn, "Part", "partId", "1", attributes), OrvOk);
        expectAllSeen();
        EXPECT_EQ(host.client3_1().table->setMoAttributes(1, dn, attributes), OrvOk);
        expectAllSeen();
    });
}

TEST_F(DepthOfAStruct, Reads_ConvertAllOfItAndReleaseIt) {
    host.when("Router3.getMoAttribute")
        .answers<OrvMoAttributeValueResult_3>([this](OrvMoAttributeValueResult_3& out) {
            out = {nullptr, held.container()};
            return OrvOk;
        });
    OrvMoAttributeValueContainer_3* many[] = {held.container(), held.container(), nullptr};
    host.when("Router3.getMoAttributes")
        .answers<OrvMoAttributeValuesResult_3>([&](OrvMoAttributeValuesResult_3& out) {
            out = {nullptr, many};
            return OrvOk;
        });
    onSmallStack([this] {
        Read read = client().get(1, dn, "label");
        EXPECT_EQ(depthOf(read.record.container, cell("1")), kManyStructs);
        read.release();
        ReadMany readMany = client().getMany(1, dn, {"label", "place"});
        EXPECT_EQ(depthOf(readMany.record.containers[0], cell("1")), kManyStructs);
        EXPECT_EQ(depthOf(readMany.record.containers[1], cell("1")), kManyStructs);
        readMany.release();
    });
}

TEST_F(DepthOfAStruct, Action_ConvertsAllOfItBothWays) {
    host.when("Router3.action")
        .answers<OrvMoAttributeValueResult_3>([this](OrvMoAttributeValueResult_3& out) {
            out = {nullptr, held.container()};
            return OrvOk;
        });
    onSmallStack([this] {
        Read read;
        read.code = client().table->action(1, dn, "go", attributes, &read.record);
        EXPECT_EQ(depthOf(read.record.container, cell("1")), kManyStructs);
        read.release();
    });
    measureNamed("Router3.action", 3);
    onSmallStack([this] {
        Read read;
        EXPECT_EQ(client().table->action(1, dn, "go", attributes, &read.record), OrvOk);
        expectAllSeen();
    });
}

TEST_F(DepthOfAStruct, Version1_ConvertsAllOfItAndDropsItAtTheEnd) {
    measure<OrvMoAttributeValueContainer>("Router1.setMoAttribute", 3);
    for (const std::string function : {"Router1.getMoAttribute", "Router1.action"}) {
        host.when(function).answers<OrvMoAttributeValueContainer*>(
            [this](OrvMoAttributeValueContainer*& out) {
                out = held1.container();
                return OrvOk;
            });
    }
    onSmallStack([this] {
        const OrvOamSpiManagedObject_1& table = *host.client1().table;
        EXPECT_EQ(table.setMoAttribute(1, dn, "label", given1.container()), OrvOk);
        expectAllSeen();
        OrvMoAttributeValueContainer* read = nullptr;
        EXPECT_EQ(table.getMoAttribute(1, dn, "label", &read), OrvOk);
        EXPECT_EQ(depthOf(read, cell("1")), kManyStructs);
        OrvMoAttributeValueContainer* parameters[] = {given1.container(), nullptr};
        EXPECT_EQ(table.action(1, dn, "go", parameters, &read), OrvOk);
        EXPECT_EQ(depthOf(read, cell("1")), kManyStructs);
        EXPECT_EQ(host.resource().finish(1), OrvOk);
    });
}

TEST_F(DepthOfAStruct, LieAtTheBottom_IsFoundInEveryVersion) {
    const auto breakAtTheBottom = [](auto* container) {
        while (container->values[0].structValue->next != nullptr) {
            container = container->values[0].structValue->next->value;
        }
        container->values[0].structValue->name = nullptr;
    };
    breakAtTheBottom(given.container());
    breakAtTheBottom(given1.container());
    onSmallStack([this] {
        EXPECT_EQ(client().table->setMoAttribute(1, dn, "label", given.container()), OrvFailure);
        EXPECT_EQ(host.client3_1().table->setMoAttributes(1, dn, attributes), OrvFailure);
        EXPECT_EQ(host.client1().table->setMoAttribute(1, dn, "label", given1.container()),
                  OrvFailure);
    });
}

// -------------------------------------------------------------------------------------------------
// Subtrees

class DepthOfASubtree : public Depth {
protected:
    DepthOfASubtree() {
        host.model().moc("Unit").contains("Unit");
        bottom = unitInside("7");
        for (std::size_t i = 1; i < kManyMos; ++i) {
            bottom += ",Unit=7";
        }
        host.mo(bottom).with("cells", refs({cellInside("1"), cellInside("2")}));
        for (const std::string each : {"1", "2"}) {
            host.mo(cellInside(each)).with("unit", refs({bottom}));
        }
        haveOneChildEach();
    }

    /// Iterators are opened from the top to the bottom. Each but the last has one child.
    void haveOneChildEach() {
        host.when("VekRouter3.newMoIterator").answers<unsigned long long>([this](auto& iterator) {
            iterator = ++opened;
            isAtEnd = opened == kManyMos;
            return OrvOk;
        });
        host.when("VekRouter3.nextMo").answers<char*>([this](char*& result) {
            result = isAtEnd ? nullptr : &name[0];
            isAtEnd = true;
            return OrvOk;
        });
    }

    std::string bottom;
    std::size_t opened = 0;
    bool isAtEnd = false;
    char name[2] = "7";
};

TEST_F(DepthOfASubtree, DeletedFromItsTop_TheBottomLeavesItsFarSides) {
    onSmallStack([this] {
        EXPECT_EQ(client().remove(1, unit("7")), OrvOk);
        EXPECT_TRUE(validate(1));
        EXPECT_EQ(host.resource().finish(1), OrvOk);
    });
    EXPECT_EQ(opened, kManyMos);
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), IsEmpty());
    EXPECT_THAT(host.world().references(cellInside("2"), "unit"), IsEmpty());
    EXPECT_FALSE(host.world().exists(bottom));
}
