// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The prompt, as a user at a terminal sees it.

#include "Program.h"
#include "Terminal.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace SystemTest {
namespace {

using testing::HasSubstr;

constexpr const char* kUp = "\x1b[A";

class OrvhostPromptTest : public testing::Test {
protected:
    std::vector<std::string> arguments() const {
        return withSite({"--history", (mDirectory.path() / "history").string()});
    }

    TemporaryDirectory mDirectory;
};

TEST_F(OrvhostPromptTest, Line_Entered_IsAnsweredAndThePromptComesBack) {
    Terminal terminal(arguments());
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type("count ManagedElement=east Mast\r");
    EXPECT_TRUE(terminal.waitFor("\n2\r\n")) << terminal.seen();
    EXPECT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("quit\r");
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostPromptTest, Error_AtThePrompt_DoesNotEndTheSession) {
    Terminal terminal(arguments());
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("gte x\r");
    EXPECT_TRUE(terminal.waitFor("Did you mean get?")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("exists ManagedElement=east\r");
    EXPECT_TRUE(terminal.waitFor("\nyes\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type(kControlD);
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostPromptTest, Tab_OneCandidate_CompletesTheWord) {
    Terminal terminal(arguments());
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("exi\t");
    ASSERT_TRUE(terminal.waitFor("sts ")) << terminal.seen();
    terminal.type("Man\t");
    ASSERT_TRUE(terminal.waitFor("agedElement=")) << terminal.seen();
    terminal.type("\t");
    ASSERT_TRUE(terminal.waitFor("east")) << terminal.seen();
    terminal.type("\r");
    EXPECT_TRUE(terminal.waitFor("\nyes\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type(kControlD);
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostPromptTest, Transaction_Open_ShowsInThePrompt) {
    Terminal terminal(arguments());
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("begin move\r");
    ASSERT_TRUE(terminal.waitFor("orvhost[move]> ")) << terminal.seen();
    terminal.type("commit m\t");
    ASSERT_TRUE(terminal.waitFor("ove ")) << terminal.seen();
    terminal.type("\r");
    EXPECT_TRUE(terminal.waitFor("\ncommitted\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type(kControlD);
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostPromptTest, Tab_InAnAssignment_CompletesNameThenValue) {
    Terminal terminal(arguments());
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("expect : set ManagedElement=east,Mast=a kin\t");
    ASSERT_TRUE(terminal.waitFor("d=")) << terminal.seen();
    terminal.type("PO\t");
    ASSERT_TRUE(terminal.waitFor("LE ")) << terminal.seen();
    terminal.type("\r");
    EXPECT_TRUE(terminal.waitFor("\nset and committed\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type(kControlD);
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostPromptTest, Tab_SeveralCandidates_ShowsThem) {
    Terminal terminal(arguments());
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("get ManagedElement=east,\t");
    ASSERT_TRUE(terminal.waitFor("Mast=")) << terminal.seen();
    EXPECT_TRUE(terminal.waitFor("Antenna=")) << terminal.seen();
    EXPECT_TRUE(terminal.waitFor("Battery=")) << terminal.seen();
    terminal.type("Mast=a hei\t\r");
    EXPECT_TRUE(terminal.waitFor("\n30\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type(kControlD);
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostPromptTest, Tab_OfAValue_ShowsValuesWithoutTheName) {
    Terminal terminal(arguments());
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("set ManagedElement=east,Mast=a kind=\t");
    EXPECT_TRUE(terminal.waitFor("\nLATTICE  POLE\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type(kControlC);
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type(kControlD);
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostPromptTest, Tab_OfAReference_BeginsAtTheTopLevel) {
    Terminal terminal(arguments());
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("cd ManagedElement=east\r");
    ASSERT_TRUE(terminal.waitFor("east> ")) << terminal.seen();
    terminal.type("set Antenna=1 seen=\t");
    EXPECT_TRUE(terminal.waitFor("ManagedElement=")) << terminal.seen();
    terminal.type(kControlC);
    ASSERT_TRUE(terminal.waitFor("east> ")) << terminal.seen();
    terminal.type(kControlD);
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostPromptTest, Tab_AfterASlash_BeginsAtTheTopLevel) {
    Terminal terminal(arguments());
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("cd ManagedElement=east\r");
    ASSERT_TRUE(terminal.waitFor("east> ")) << terminal.seen();
    terminal.type("get /Man\t");
    ASSERT_TRUE(terminal.waitFor("agedElement=")) << terminal.seen();
    terminal.type("\t");
    ASSERT_TRUE(terminal.waitFor("east")) << terminal.seen();
    terminal.type(",Mast=a hei\t\r");
    EXPECT_TRUE(terminal.waitFor("\n30\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor("east> "));
    terminal.type(kControlD);
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostPromptTest, Tab_OfWhatIsBelowThePlace_KnowsThePlace) {
    Terminal terminal(arguments());
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("cd ManagedElement=east,Mast=a\r");
    ASSERT_TRUE(terminal.waitFor("Mast=a> ")) << terminal.seen();
    terminal.type("get . hei\t\r");
    EXPECT_TRUE(terminal.waitFor("\n30\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor("Mast=a> "));
    terminal.type("expect output yes : exists La\t");
    EXPECT_TRUE(terminal.waitFor("mp=")) << terminal.seen();
    terminal.type("top\r");
    ASSERT_TRUE(terminal.waitFor("Mast=a> ")) << terminal.seen();
    terminal.type(kControlD);
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostPromptTest, Tab_OfAConditionOrALevel_CompletesIt) {
    Terminal terminal(arguments());
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("find Mast.hei\t");
    ASSERT_TRUE(terminal.waitFor("ght")) << terminal.seen();
    terminal.type(" = 30\r");
    EXPECT_TRUE(terminal.waitFor("\nManagedElement=east,Mast=a\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("log le\t");
    ASSERT_TRUE(terminal.waitFor("vel ")) << terminal.seen();
    terminal.type("er\t");
    ASSERT_TRUE(terminal.waitFor("ror ")) << terminal.seen();
    terminal.type("\r");
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type(kControlD);
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostPromptTest, History_OfAnEarlierSession_ComesWithTheUpKey) {
    {
        Terminal first(arguments());
        ASSERT_TRUE(first.waitFor(kPrompt));
        first.type("count / ManagedElement\r");
        ASSERT_TRUE(first.waitFor("\n1\r\n")) << first.seen();
        ASSERT_TRUE(first.waitFor(kPrompt));
        first.type(kControlD);
        EXPECT_EQ(first.finish(), 0);
    }
    Terminal second(arguments());
    ASSERT_TRUE(second.waitFor(kPrompt));
    second.type(kUp);
    ASSERT_TRUE(second.waitFor("count / ManagedElement")) << second.seen();
    second.type("\r");
    EXPECT_TRUE(second.waitFor("\n1\r\n")) << second.seen();
    ASSERT_TRUE(second.waitFor(kPrompt));
    second.type(kControlD);
    EXPECT_EQ(second.finish(), 0);
}

TEST_F(OrvhostPromptTest, ControlC_OnALine_GivesItUpAndGoesOn) {
    Terminal terminal(arguments());
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("get nonsense");
    ASSERT_TRUE(terminal.waitFor("nonsense"));
    terminal.type(kControlC);
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type("exists ManagedElement=east\r");
    EXPECT_TRUE(terminal.waitFor("\nyes\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type(kControlD);
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostPromptTest, Greeting_AtTheStart_TellsWhatIsLoaded) {
    Terminal terminal(arguments());
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    EXPECT_THAT(terminal.seen(), HasSubstr(" classes of site, power; "));
    EXPECT_THAT(terminal.seen(), HasSubstr("components: OrvOamSpiExtCmRouterService; 'help'"));
    terminal.type(kControlD);
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostPromptTest, Paste_WithTabs_CompletesNothing) {
    Terminal terminal(arguments());
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("\x1b[200~count\tManagedElement=east\tMast\x1b[201~");
    ASSERT_TRUE(terminal.waitFor("Mast")) << terminal.seen();
    terminal.type("\r");
    EXPECT_TRUE(terminal.waitFor("\n2\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("exi\t"); // completion is back
    ASSERT_TRUE(terminal.waitFor("sts ")) << terminal.seen();
    terminal.type("/\r");
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type(kControlD);
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostPromptTest, Tab_MoreNamesThanFit_TellsHowMany) {
    std::string data = R"({"site:ManagedElement": [{"managedElementId": "1", "Mast": [)";
    for (int mast = 0; mast < 300; ++mast) {
        data +=
            (mast == 0 ? "" : ",") + std::string(R"({"mastId": "m)") + std::to_string(mast) + "\"}";
    }
    Terminal terminal({"-I", "models", "-m", "site", "-d",
                       mDirectory.file("many.json", data + "]}]}"), "--history", ""});
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("exists ManagedElement=1,Mast=m\t");
    ASSERT_TRUE(terminal.waitFor("and 100 more")) << terminal.seen();
    terminal.type("299\t\r"); // one of those that are not shown
    EXPECT_TRUE(terminal.waitFor("\nyes\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt)); // before it, Ctrl-D would get lost
    terminal.type(kControlD);
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostPromptTest, Pager_OutputLongerThanTheScreen_GetsIt) {
    Terminal terminal(arguments(), "sed 's/^/paged: /'");
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("help\r");
    ASSERT_TRUE(terminal.waitFor("paged: tree ")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type("exists ManagedElement=east\r");
    EXPECT_TRUE(terminal.waitFor("\nyes\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("nonsense\r");
    EXPECT_TRUE(terminal.waitFor("nonsense: there is no command")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("quit\r");
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostPromptTest, Pager_LeftAtOnce_KeepsTheSession) {
    Terminal terminal(arguments(), "true");
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("help\r");
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type("exists ManagedElement=east\r");
    EXPECT_TRUE(terminal.waitFor("\nyes\r\n")) << terminal.seen();
}

TEST_F(OrvhostPromptTest, Delete_OfManyAtOnce_Asks) {
    Terminal terminal(arguments());
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    for (int mast = 10; mast < 20; ++mast) {
        terminal.type("create ManagedElement=east,Mast=" + std::to_string(mast) + "\r");
        ASSERT_TRUE(terminal.waitFor("created and committed")) << terminal.seen();
        ASSERT_TRUE(terminal.waitFor(kPrompt));
    }
    terminal.type("delete ManagedElement=east\r");
    ASSERT_TRUE(terminal.waitFor("objects below it, at once? [y/N] ")) << terminal.seen();
    terminal.type("\r");
    EXPECT_TRUE(terminal.waitFor("delete: nothing is deleted")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("delete ManagedElement=east,Mast=10\r");
    ASSERT_TRUE(terminal.waitFor("deleted and committed")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("delete ManagedElement=east\r");
    ASSERT_TRUE(terminal.waitFor("[y/N] ")) << terminal.seen();
    terminal.type("y\r");
    EXPECT_TRUE(terminal.waitFor("deleted and committed")) << terminal.seen();
}

TEST_F(OrvhostPromptTest, Error_OnATerminal_IsRedUnlessNoColourIsWanted) {
    {
        Terminal terminal(arguments());
        ASSERT_TRUE(terminal.waitFor(kPrompt));
        terminal.type("nonsense\r");
        EXPECT_TRUE(terminal.waitFor("\x1b[31mnonsense: ")) << terminal.seen();
    }
    {
        Terminal terminal(arguments());
        ASSERT_TRUE(terminal.waitFor(kPrompt));
        terminal.type("begin t\r");
        ASSERT_TRUE(terminal.waitFor("[t]> "));
        terminal.type("create ManagedElement=east,Mast=77\r");
        ASSERT_TRUE(terminal.waitFor("[t]> "));
        terminal.type("diff committed t\r");
        EXPECT_TRUE(terminal.waitFor("\x1b[32m+ ManagedElement=east,Mast=77\x1b[0m"))
            << terminal.seen();
    }
    setenv("NO_COLOR", "1", 1);
    Terminal terminal(arguments());
    unsetenv("NO_COLOR");
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("nonsense\r");
    EXPECT_TRUE(terminal.waitFor("\nnonsense: ")) << terminal.seen();
}

}
}
