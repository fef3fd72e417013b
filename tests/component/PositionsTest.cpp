// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The model repository by the numbers of its words, as a host has it that was built from a header
// of its own: the component must find each function at its place and look at no other place.

#include "Network.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

using namespace Scripted;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

using Words = std::vector<const void*>;

template <class Function>
const void* word(Function* function) {
    return reinterpret_cast<const void*>(function);
}

OrvReturnT notInUse() {
    ADD_FAILURE() << "an entry was called that is not in use";
    return OrvFailure;
}

/// A table that ends with the last of \p entries; a call of any other fails the test.
Words subTable(const std::map<std::size_t, const void*>& entries) {
    Words words(entries.rbegin()->first + 1, word(&notInUse));
    for (const auto& [number, function] : entries) {
        words[number] = function;
    }
    return words;
}

/// The scripted host's repository, laid out by hand.
class NumberedRepository {
public:
    NumberedRepository() {
        const VekOamSpiModelRepository_4& own = *modelRepositoryTable();
        enter(0, {{2, word(own.dnLookup->getMocFromDn)}});
        enter(1, {{0, word(own.generalProperties->getGeneralStringProperty)}});
        enter(3, {{0, word(own.mocQueries->getMocGeneralProperties)},
                  {5, word(own.mocQueries->getFirstAttribute)},
                  {7, word(own.mocQueries->getFirstContainment)},
                  {9, word(own.mocQueries->getFirstBiDirAssociation)},
                  {10, word(own.mocQueries->getFirstUniDirAssociation)}});
        enter(4, {{2, word(own.containment->getContainedMoc)},
                  {5, word(own.containment->getNextContainment)}});
        enter(5, {{0, word(own.associationEnd->getEndMoc)},
                  {1, word(own.associationEnd->getEndAttribute)},
                  {2, word(own.associationEnd->getEndGeneralProperties)},
                  {3, word(own.associationEnd->getEndStringProperty)},
                  {4, word(own.associationEnd->getEndBoolProperty)},
                  {5, word(own.associationEnd->getEndIntProperty)}});
        enter(6, {{2, word(own.biDirAssociation->getFirstEnd)},
                  {3, word(own.biDirAssociation->getSecondEnd)},
                  {4, word(own.biDirAssociation->getNextBiDirAssociation)}});
        enter(7, {{2, word(own.uniDirAssociation->getUniDirEnd)},
                  {3, word(own.uniDirAssociation->getNextUniDirAssociation)}});
        enter(8, {{1, word(own.attributeType->getTypeCode)},
                  {5, word(own.attributeType->getTypeIntProperty)}});
        enter(11, {{0, word(own.attribute->getAttributeGeneralProperties)},
                   {1, word(own.attribute->getAttributeMoc)},
                   {2, word(own.attribute->getAttributeType)},
                   {3, word(own.attribute->getNextAttribute)}});
        enter(13, {{0, word(own.referenceType->getReferencedMoc)}});
    }

    void* record() { return mWords.data(); }

private:
    void enter(std::size_t number, const std::map<std::size_t, const void*>& entries) {
        constexpr std::size_t identityWords = 3;
        mSubTables[number] = subTable(entries);
        mWords.at(identityWords + number) = mSubTables[number].data();
    }

    std::map<std::size_t, Words> mSubTables;
    std::array<const void*, 3 + 14> mWords = {"VekOamSpiModelRepositoryService",
                                              "VekOamSpiModelRepository", "4"};
};

/// The network with the repository laid out by hand.
class Positions : public testing::Test {
protected:
    Positions() {
        describeNetwork(host);
        host.mo(siteInside("2"));
        host.when("OrvPortal.lookup")
            .on("'VekOamSpiModelRepository'")
            .answers<void*>([this](void*& found) {
                found = repository.record();
                return OrvOk;
            });
        host.start();
    }

    bool validate(unsigned long txHandle) const {
        bool result = false;
        EXPECT_EQ(host.resource().validate(txHandle, &result), OrvOk);
        return result;
    }

    NumberedRepository repository;
    Host host;
};

}

TEST_F(Positions, WritesAndVerdicts_GoByTheModel) {
    const Client3 client = host.client();
    EXPECT_EQ(client.set(1, unit("7"), "cells", refs({cell("1")})), OrvOk);
    EXPECT_EQ(client.set(1, unit("7"), "site", refs({site("1")})), OrvOk);
    EXPECT_EQ(host.world().references(cellInside("1"), "unit"),
              std::vector<std::string>{unitInside("7")});
    EXPECT_TRUE(validate(1));
    EXPECT_EQ(client.set(1, unit("7"), "site", refs({site("1"), site("2")})), OrvOk);
    EXPECT_FALSE(validate(1));
    EXPECT_THAT(host.messages(),
                ElementsAre("Attribute site in ManagedElement=1,Unit=7 contains 2 Site which is "
                            "not within cardinality range (0..1)."));
}

TEST_F(Positions, EachEntryInUse_IsReached) {
    const Client3 client = host.client();
    EXPECT_EQ(client.set(1, unit("7"), "cells", refs({cell("1"), cell("2"), cell("3")})), OrvOk);
    EXPECT_EQ(client.set(1, unit("7"), "site", refs({site("1")})), OrvOk);
    EXPECT_FALSE(validate(1));
    EXPECT_EQ(client.remove(1, kRoot), OrvOk);
    for (const char* const function : {"getMocFromDn",
                                       "getGeneralStringProperty",
                                       "getMocGeneralProperties",
                                       "getFirstAttribute",
                                       "getFirstContainment",
                                       "getFirstBiDirAssociation",
                                       "getFirstUniDirAssociation",
                                       "getContainedMoc",
                                       "getNextContainment",
                                       "getEndMoc",
                                       "getEndAttribute",
                                       "getEndGeneralProperties",
                                       "getEndStringProperty",
                                       "getEndBoolProperty",
                                       "getEndIntProperty",
                                       "getFirstEnd",
                                       "getSecondEnd",
                                       "getNextBiDirAssociation",
                                       "getUniDirEnd",
                                       "getNextUniDirAssociation",
                                       "getTypeCode",
                                       "getTypeIntProperty",
                                       "getAttributeGeneralProperties",
                                       "getAttributeMoc",
                                       "getAttributeType",
                                       "getNextAttribute",
                                       "getReferencedMoc"}) {
        EXPECT_THAT(host.calls(std::string("Model.") + function), Not(IsEmpty())) << function;
    }
}
