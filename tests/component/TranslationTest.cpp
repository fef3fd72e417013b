// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// When the translator of DNs is called, and how its answers are used. The two operations below
// take the place of the helper library's own for every shared object in the process, so these tests
// have a program of their own.

#include "MeIdTranslator.h"
#include "Network.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Translate = std::function<std::string(const std::string& dn)>;

// Without one, a DN is the same in both forms.
Translate internalForm;
Translate externalForm;

std::string asked(const char* call, const std::string& dn, const Translate& translate) {
    Stage::current().script.record(Call{call, {arg(dn.c_str())}, nullptr});
    return translate ? translate(dn) : dn;
}

}

std::string Orv::MeIdTranslator::toInternalDn(const std::string& dn) {
    return asked("Translator.toInternalDn", dn, internalForm);
}

std::string Orv::MeIdTranslator::toExternalDn(const std::string& dn) {
    return asked("Translator.toExternalDn", dn, externalForm);
}

namespace {

/// An operation of a client on an MO or, if it creates or counts, on the children of one.
struct Asking {
    std::string name;
    std::function<OrvReturnT(const Host&, const std::string& dn)> run;
};

void PrintTo(const Asking& asking, std::ostream* out) {
    *out << asking.name;
}

std::vector<Asking> onAnMo() {
    return {
        {"Exists",
         [](const Host& host, const std::string& dn) { return host.client().exists(1, dn).code; }},
        {"Get", [](const Host& host,
                   const std::string& dn) { return host.client().get(1, dn, "label").code; }},
        {"GetMany",
         [](const Host& host, const std::string& dn) {
             return host.client().getMany(1, dn, {"label"}).code;
         }},
        {"Set",
         [](const Host& host, const std::string& dn) {
             return host.client().set(1, dn, "label", strings({"y"}));
         }},
        {"Delete",
         [](const Host& host, const std::string& dn) { return host.client().remove(1, dn); }},
        {"Action", [](const Host& host,
                      const std::string& dn) { return host.client().action(1, dn, "go").code; }},
        {"SetMany",
         [](const Host& host, const std::string& dn) {
             return host.client3_1().set(1, dn, {{"label", strings({"y"})}});
         }},
        {"Version1Get",
         [](const Host& host, const std::string& dn) {
             return host.client1().get(1, dn, "label").code;
         }},
        {"Version1Set",
         [](const Host& host, const std::string& dn) {
             return host.client1().set(1, dn, "label", strings({"y"}));
         }},
        {"Version1Delete",
         [](const Host& host, const std::string& dn) { return host.client1().remove(1, dn); }},
        {"Version1Action", [](const Host& host, const std::string& dn) {
             return host.client1().action(1, dn, "go").code;
         }}};
}

std::vector<Asking> creations() {
    return {{"Create",
             [](const Host& host, const std::string& dn) {
                 return host.client().create(1, dn, "Hall", "hallId", "3");
             }},
            {"Version1Create", [](const Host& host, const std::string& dn) {
                 return host.client1().create(1, dn, "Hall", "hallId", "3");
             }}};
}

std::vector<Asking> walks() {
    return {
        {"Count", [](const Host& host,
                     const std::string& dn) { return host.client().count(1, dn, "Hall").code; }},
        {"Open", [](const Host& host,
                    const std::string& dn) { return host.client().open(1, dn, "Hall").code; }},
        {"Version1Open", [](const Host& host, const std::string& dn) {
             return host.client1().open(1, dn, "Hall").code;
         }}};
}

}

class Translation : public Network {
protected:
    Translation() { host.mo("Plant=1").with("label", strings({"x"})); }

    ~Translation() override {
        internalForm = nullptr;
        externalForm = nullptr;
    }

    /// The calls of the routers that clients are served from.
    std::vector<std::string> served() const { return host.calls("Router"); }
};

class EmptyDn : public Translation, public testing::WithParamInterface<Asking> {
protected:
    OrvReturnT run() { return GetParam().run(host, ""); }

    void expectAskedOnceAndFirst() const {
        EXPECT_THAT(host.calls("Translator.toInternalDn"),
                    ElementsAre("Translator.toInternalDn('')"));
        ASSERT_FALSE(host.calls().empty());
        EXPECT_EQ(host.calls().front(), "Translator.toInternalDn('')");
    }

    void expectServedInside(const std::string& dn) const {
        EXPECT_THAT(served(), ElementsAre(HasSubstr("'" + dn + "'")));
    }
};

class EmptyDnOfAnMo : public EmptyDn {};

TEST_P(EmptyDnOfAnMo, WithoutInternalForm_TheTranslatorSaysSo) {
    EXPECT_EQ(run(), OrvNotExist);
    expectAskedOnceAndFirst();
    EXPECT_THAT(served(), IsEmpty());
}

TEST_P(EmptyDnOfAnMo, WithAnInternalForm_IsServed) {
    internalForm = [](const std::string&) { return "Plant=1"; };
    EXPECT_EQ(run(), OrvOk);
    expectAskedOnceAndFirst();
    expectServedInside("Plant=1");
}

INSTANTIATE_TEST_SUITE_P(Operations, EmptyDnOfAnMo, testing::ValuesIn(onAnMo()),
                         [](const auto& tested) { return tested.param.name; });

class EmptyDnOfAParent : public EmptyDn {};

TEST_P(EmptyDnOfAParent, WithoutInternalForm_IsServedAsTheTopLevel) {
    EXPECT_EQ(run(), OrvOk);
    expectAskedOnceAndFirst();
    expectServedInside("");
}

TEST_P(EmptyDnOfAParent, WithAnInternalForm_IsServedThere) {
    internalForm = [](const std::string&) { return "Plant=1"; };
    EXPECT_EQ(run(), OrvOk);
    expectAskedOnceAndFirst();
    expectServedInside("Plant=1");
}

INSTANTIATE_TEST_SUITE_P(Operations, EmptyDnOfAParent, testing::ValuesIn(creations()),
                         [](const auto& tested) { return tested.param.name; });

class EmptyDnOfAWalk : public EmptyDn {};

TEST_P(EmptyDnOfAWalk, IsTheTopLevelWhateverTheTranslatorWouldSay) {
    internalForm = [](const std::string&) { return "Plant=1"; };
    EXPECT_EQ(run(), OrvOk);
    EXPECT_THAT(host.calls("Translator."), IsEmpty());
    expectServedInside("");
}

INSTANTIATE_TEST_SUITE_P(Operations, EmptyDnOfAWalk, testing::ValuesIn(walks()),
                         [](const auto& tested) { return tested.param.name; });

// The id of the root is the text after the "=" in its translated DN.

class TranslatedRootId : public Translation {
protected:
    /// The id that clients of all versions read, while the root's external form is \p text.
    void expectId(const std::string& text, const std::string& id) {
        externalForm = [text](const std::string&) { return text; };
        EXPECT_EQ(client().get(1, kRootInside, "managedElementId").value(), strings({id}));
        EXPECT_THAT(client().getMany(1, kRootInside, {"managedElementId"}).values(),
                    ElementsAre(strings({id})));
        EXPECT_EQ(readValue(host.client1().get(1, kRootInside, "managedElementId").thing),
                  strings({id}));
        const std::string question = "Translator.toExternalDn('" + kRootInside + "')";
        EXPECT_THAT(host.calls("Translator.toExternalDn"),
                    ElementsAre(question, question, question));
    }
};

TEST_F(TranslatedRootId, TextWithoutEqualsSign_IsTheId) {
    expectId("paris", "paris");
}

TEST_F(TranslatedRootId, TextWithTwo_TheIdIsAllAfterTheFirst) {
    expectId("Root=paris=1", "paris=1");
}

TEST_F(TranslatedRootId, TextThatEndsWithIt_TheIdIsEmpty) {
    expectId("Root=", "");
}

// One attribute is done with before the next is looked at.
TEST_F(Translation, SetMany_AnAttributeIsConvertedWhenTheOneBeforeItIsRecorded) {
    EXPECT_EQ(host.client3_1().set(
                  1, unitInside("7"),
                  {{"cells", refs({cellInside("1")})}, {"site", refs({siteInside("1")})}}),
              OrvOk);
    EXPECT_THAT(milestones(),
                ElementsAre("Translator.toInternalDn('ManagedElement=1,Unit=7')",
                            "Transaction.join(1, OrvOamSpiTransactionalResource)",
                            "Translator.toInternalDn('ManagedElement=1,Cell=1')",
                            "Model.getFirstBiDirAssociation('Unit')",
                            "VekRouter3.getMoAttribute(1, 'ManagedElement=1,Unit=7', 'cells')",
                            "VekRouter3.existsMo(1, 'ManagedElement=1,Cell=1')",
                            "VekRouter3.getMoAttribute(1, 'ManagedElement=1,Cell=1', 'unit')",
                            "VekRouter3.setMoAttribute(1, 'ManagedElement=1,Cell=1', 'unit', "
                            "MoRef['ManagedElement=1,Unit=7'])",
                            "Producer.release('ManagedElement=1,Cell=1.unit')",
                            "Producer.release('ManagedElement=1,Unit=7.cells')",
                            "Model.getFirstUniDirAssociation('Unit')",
                            "Translator.toInternalDn('ManagedElement=1,Site=1')",
                            "Model.getFirstBiDirAssociation('Unit')",
                            "VekRouter3.getMoAttribute(1, 'ManagedElement=1,Unit=7', 'site')",
                            "Producer.release('ManagedElement=1,Unit=7.site')",
                            "Model.getFirstUniDirAssociation('Unit')",
                            "Router3_1.setMoAttributes(1, 'ManagedElement=1,Unit=7', "
                            "{cells: MoRef['ManagedElement=1,Cell=1'], "
                            "site: MoRef['ManagedElement=1,Site=1']})"));
}
