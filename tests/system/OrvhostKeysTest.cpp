// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Program.h"
#include "Terminal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// Classes whose keys have names of their own, and classes with several keys, in orvhost.

namespace SystemTest {

namespace {

using testing::HasSubstr;

constexpr const char* kModule = R"(module net {
  yang-version 1.1;
  namespace "urn:net";
  prefix n;
  import orv-associations { prefix orv; }
  list Site {
    key id;
    leaf id { type string; }
    list Mast {
      key id;
      leaf id { type string; }
      leaf-list antennas { type orv:reference; orv:bidirectional "Antenna.mast 0..3"; }
    }
    list Antenna {
      key id;
      leaf id { type string; }
      leaf mast { type orv:reference; orv:bidirectional "Mast.antennas"; }
    }
    list Route {
      key "prefix port";
      leaf prefix { type string; }
      leaf port { type uint16; }
      leaf cost { type uint8; }
      leaf via { type orv:reference; orv:unidirectional "Route"; }
    }
  }
})";

constexpr const char* kData = R"({"net:Site": [{"id": "1",
  "Mast": [{"id": "1", "antennas": ["Site=1,Antenna.id=1"]}],
  "Antenna": [{"id": "1", "mast": "Site.id=1,Mast=1"}],
  "Route": [{"prefix": "10.0.0.0/8", "port": 80, "via": "Site.id=1,Route=a%2Cb|1"},
            {"prefix": "a,b", "port": 1}]}]})";

class OrvhostKeysTest : public testing::Test {
protected:
    ProgramResult run(const std::vector<std::string>& commands) {
        std::vector<std::string> all = {"-m", mDirectory.file("net.yang", kModule), "-d",
                                        mDirectory.file("net.json", kData)};
        for (const std::string& command : commands) {
            all.insert(all.end(), {"-c", command});
        }
        return runOrvhost(all);
    }
    /// What the commands print; they must succeed.
    std::string outputOf(const std::vector<std::string>& commands) {
        const ProgramResult result = run(commands);
        EXPECT_EQ(result.status, 0) << result.err;
        return result.out;
    }

    const TemporaryDirectory mDirectory;
};

TEST_F(OrvhostKeysTest, Creation_WithTheKey_LeavesShortBackPointers) {
    EXPECT_EQ(outputOf({"begin", "create Site=1,Mast.id=5 antennas=Site=1,Antenna.id=9",
                        "create Site.siteId=1,Antenna=9 id=9", "validate",
                        "get Site=1,Antenna.id=9 mast", "get Site=1,Mast=5 antennas"}),
              "transaction t1\ncreated\ncreated\nvalid\nSite=1,Mast=5\nSite=1,Antenna=9\n");
}

TEST_F(OrvhostKeysTest, Deletion_WithTheKey_CleansUp) {
    EXPECT_EQ(outputOf({"delete Site=1,Mast.id=1", "get Site=1,Antenna=1 mast"}),
              "deleted and committed\n-\n");
}

TEST_F(OrvhostKeysTest, Key_IsUnderstoodAndTheShortFormShown) {
    EXPECT_EQ(outputOf({"get Site.id=1 id", "get Site=1 siteId", "exists Site=1,Mast.mastId=1",
                        "ls Site.id=1 Mast", "count Site.id=1 Mast", "get Site=1,Mast.id=1",
                        "expect output containing 1 : get Site.id=1 id"}),
              "1\n1\nyes\nSite=1,Mast=1\n1\nmastId    1\nantennas  Site=1,Antenna=1\n1\n");
    EXPECT_THAT(outputOf({"tree Site.id=1"}), HasSubstr("Site=1\n"));
    EXPECT_THAT(run({"set Site.id=1 id=2"}).err,
                HasSubstr("Site=1: attribute 'siteId' of class 'Site' names the object"));
    EXPECT_THAT(run({"get Site.id=1,Mast.id=7"}).err,
                HasSubstr("there is no object Site=1,Mast=7"));
    EXPECT_THAT(outputOf({"model Site"}), HasSubstr("Site, named by siteId, the key id\n"));
}

TEST_F(OrvhostKeysTest, Tab_AfterADnWithTheKey_CompletesAndOffersTheKey) {
    Terminal terminal({"-m", mDirectory.file("net.yang", kModule), "-d",
                       mDirectory.file("net.json", kData), "--history",
                       (mDirectory.path() / "history").string()});
    ASSERT_TRUE(terminal.waitFor("orvhost> "));
    terminal.type("get Site.id=1,An\t");
    ASSERT_TRUE(terminal.waitFor("tenna=")) << terminal.seen();
    terminal.type("\t");
    ASSERT_TRUE(terminal.waitFor("1")) << terminal.seen();
    terminal.type(" i\t");
    ASSERT_TRUE(terminal.waitFor("d ")) << terminal.seen();
    terminal.type("\r");
    EXPECT_TRUE(terminal.waitFor("\n1\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor("orvhost> "));
    terminal.type("\x04");
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostKeysTest, SeveralKeys_AreReadAndChecked) {
    EXPECT_EQ(outputOf({"ls Site=1 Route", "get Site=1,Route=10.0.0.0/8|80",
                        "get Site=1,Route=a%2Cb|1 prefix", "create Site=1,Route=x|2 port=2",
                        "set Site=1,Route=x|2 via=Site=1,Route=a%2Cb|1 cost=3",
                        "get Site=1,Route=x|2 via", "delete Site=1,Route=a%2Cb|1"}),
              "Site=1,Route=10.0.0.0/8|80\nSite=1,Route=a%2Cb|1\n"
              "routeId  10.0.0.0/8|80\nprefix   10.0.0.0/8\nport     80\ncost     -\n"
              "via      Site=1,Route=a%2Cb|1\n"
              "a,b\ncreated and committed\nset and committed\nSite=1,Route=a%2Cb|1\n"
              "deleted and committed\n");
    EXPECT_THAT(outputOf({"model Route"}), HasSubstr("named by routeId, of the keys prefix, port"));
    EXPECT_THAT(run({"create Site=1,Route=x"}).err,
                HasSubstr("expected the 2 key values prefix|port, got 1"));
    EXPECT_THAT(run({"create Site=1,Route=x|70000"}).err,
                HasSubstr("key \"port\" of prefix|port: "));
    EXPECT_THAT(run({"create Site=1,Route=x%41|7"}).err,
                HasSubstr("these key values are written as \"xA|7\""));
    EXPECT_THAT(run({"set Site=1,Route=a%2Cb|1 prefix=c"}).err,
                HasSubstr("attribute 'prefix' of class 'Route' names the object"));
}

}

}
