// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What clients read: filters and XPath.

#include "DispatcherScene.h"

#include <libyang/libyang.h>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class NetconfReadTest : public DispatcherScene {};

TEST_F(NetconfReadTest, GetConfig_WithoutAFilter_HasAllConfigurationAndNoState) {
    const std::string all = ask("<get-config><source><running/></source></get-config>");
    EXPECT_THAT(all, AllOf(HasSubstr("<managedElementId>Harbour</managedElementId>"),
                           HasSubstr("<userLabel>Terminal roof</userLabel>"),
                           HasSubstr("<GNBCUCPFunction xmlns="), Not(HasSubstr("serialNumber")),
                           Not(HasSubstr("yang-library"))));
}

TEST_F(NetconfReadTest, GetConfig_OfADefault_DoesNotShowIt) {
    EXPECT_THAT(getConfig(element("")), Not(HasSubstr("elementType")));
}

TEST_F(NetconfReadTest, WithDefaults_ShowsThoseInUse) {
    const std::string feed = element(
        R"(<Feed xmlns="urn:orv:test:plant"><feedId>1</feedId><fuse><breaker>B</breaker></fuse></Feed>)");
    ASSERT_EQ(edit(feed, "running"), "ok");
    const auto read = [&](const std::string& mode, const std::string& filter) {
        return ask(
            "<get-config><source><running/></source><filter>" + filter + "</filter>" +
            R"(<with-defaults xmlns="urn:ietf:params:xml:ns:yang:ietf-netconf-with-defaults">)" +
            mode + "</with-defaults></get-config>");
    };
    const std::string cabinets = equipment("<Cabinet/>");
    EXPECT_EQ(read("trim", cabinets), getConfig(cabinets));
    EXPECT_THAT(read("report-all", cabinets),
                AllOf(HasSubstr("<climate>INDOOR</climate>"), HasSubstr("<cabinetId>1</cabinetId>"),
                      Not(HasSubstr("RadioUnit")), Not(HasSubstr("elementType"))))
        << "the filter selects among defaults, too";
    EXPECT_THAT(read("report-all-tagged", cabinets),
                AllOf(HasSubstr(R"(:default="true">INDOOR</climate>)"),
                      HasSubstr("urn:ietf:params:xml:ns:netconf:default:1.0")));
    EXPECT_THAT(read("report-all", equipment("<Cabinet><climate>INDOOR</climate></Cabinet>")),
                HasSubstr("<cabinetId>1<"));
    const std::string feeds = element(R"(<Feed xmlns="urn:orv:test:plant"/>)");
    EXPECT_THAT(read("report-all", feeds), Not(HasSubstr("voltage"))) << "no case is taken";
    EXPECT_THAT(read("explicit", feeds), HasSubstr("<error-tag>invalid-value</error-tag>"));
}

TEST_F(NetconfReadTest, WithDefaults_XPath_SelectsThem) {
    EXPECT_THAT(
        ask(R"(<get><filter type="xpath" xmlns:q="urn:orv:example:ran-equipment" select="//q:climate"/>)"
            R"(<with-defaults xmlns="urn:ietf:params:xml:ns:yang:ietf-netconf-with-defaults">)"
            "report-all-tagged</with-defaults></get>"),
        AllOf(HasSubstr(R"(:default="true">INDOOR</climate>)"), Not(HasSubstr("RadioUnit"))));
}

TEST_F(NetconfReadTest, Get_HasStateAndTheListOfModules) {
    const std::string all = ask("<get/>");
    EXPECT_THAT(all, AllOf(HasSubstr("<serialNumber>R70011</serialNumber>"),
                           HasSubstr("<name>ran-equipment</name>")));
}

TEST_F(NetconfReadTest, Get_Filtered_HasEachPartOfTheStateThatIsSelected) {
    const auto hasModules = HasSubstr("<yang-library");
    const auto hasState = HasSubstr("<netconf-state");
    EXPECT_THAT(get(element("<userLabel/>")), AllOf(Not(hasModules), Not(hasState)));
    EXPECT_THAT(get(R"(<yang-library xmlns=""/>)"), AllOf(hasModules, Not(hasState)));
    EXPECT_THAT(get(R"(<netconf-state xmlns=""><datastores/></netconf-state>)"),
                AllOf(Not(hasModules), hasState));
    EXPECT_THAT(get(R"(<yang-library xmlns=""/><netconf-state xmlns=""/>)"),
                AllOf(hasModules, hasState));
    EXPECT_THAT(get(R"(<netconf-state xmlns="urn:other"/>)"), Not(hasState));
    EXPECT_THAT(ask("<get/>"), AllOf(hasModules, hasState));
    EXPECT_THAT(ask("<get><filter/></get>"), AllOf(Not(hasModules), Not(hasState)));
}

TEST_F(NetconfReadTest, Filter_WithKeys_SelectsThatObjectWhole) {
    EXPECT_THAT(
        getConfig(radioUnit("2")),
        AllOf(HasSubstr("<userLabel>Terminal roof</userLabel>"),
              HasSubstr("<sectorRef>ManagedElement=Harbour,Equipment=1,Sector=2</sectorRef>"),
              Not(HasSubstr("Crane mast")), Not(HasSubstr("<Sector>"))));
}

TEST_F(NetconfReadTest, Filter_WithAValue_SelectsTheObjectsThatHaveIt) {
    const std::string filter =
        equipment("<RadioUnit><userLabel>Terminal roof</userLabel><antennaRef/></RadioUnit>");
    EXPECT_EQ(getConfig(filter), equipment("<RadioUnit><radioUnitId>2</radioUnitId>"
                                           "<userLabel>Terminal roof</userLabel>"
                                           "<antennaRef>" +
                                           antenna(1, 2) +
                                           "</antennaRef>"
                                           "<antennaRef>" +
                                           antenna(2, 1) + "</antennaRef></RadioUnit>") +
                                     "\n");
}

// Clients see all objects at the top under the name of the element.
TEST_F(NetconfReadTest, Top_ObjectsThatCannotBeListed_AreReadByTheirKeysOrRefused) {
    const auto depot = [](const std::string& content) {
        return R"(<Depot xmlns="urn:orv:test:plant">)" + content + "</Depot>";
    };
    const std::string all = "<get-config><source><running/></source></get-config>";
    EXPECT_THAT(ask(all), HasSubstr("<managedElementId>")) << "there is none yet";
    EXPECT_THAT(getConfig(depot("")), Not(HasSubstr("Depot")));

    const std::string south = depot("<depotId>south</depotId><place>Kirkenes</place>");
    ASSERT_EQ(edit(south, "running"), "ok");
    const auto isRefused =
        AllOf(HasSubstr("<error-tag>operation-not-supported</error-tag>"),
              HasSubstr("the objects of class Depot at the top level cannot be listed"),
              HasSubstr("in a filter or an edit by its keys"));
    EXPECT_THAT(ask(all), isRefused);
    EXPECT_THAT(ask("<get/>"), isRefused);
    EXPECT_THAT(getConfig(depot("")), isRefused);
    EXPECT_THAT(getConfig(depot("<place>Kirkenes</place>")), isRefused);
    EXPECT_THAT(ask(R"(<get><filter type="xpath" xmlns:e="urn:orv:example:ran-element" )"
                    R"(select="/e:ManagedElement"/></get>)"),
                isRefused);
    EXPECT_THAT(edit(element(""), "running", "<default-operation>replace</default-operation>"),
                isRefused);

    EXPECT_EQ(getConfig(depot("<depotId>south</depotId>")), south + "\n");
    EXPECT_THAT(getConfig(depot("<depotId>north</depotId>")), Not(HasSubstr("Depot")));
    EXPECT_THAT(getConfig(element("")), HasSubstr("<managedElementId>"));
    EXPECT_THAT(get(R"(<yang-library xmlns=""/>)"), HasSubstr("<yang-library"));
    EXPECT_EQ(edit(R"(<Depot xmlns="urn:orv:test:plant" )" + kDelete +
                       "><depotId>south</depotId></Depot>",
                   "running"),
              "ok");
    EXPECT_THAT(ask(all), HasSubstr("<managedElementId>"));
}

TEST_F(NetconfReadTest, Filter_WithTwoElements_GivesBoth) {
    const std::string filter =
        equipment("<RadioUnit><radioUnitId>1</radioUnitId><userLabel/></RadioUnit>"
                  "<Sector><sectorId>2</sectorId><azimuth/></Sector>");
    EXPECT_THAT(getConfig(filter), AllOf(HasSubstr("Crane mast"), HasSubstr("210"),
                                         Not(HasSubstr("sectorRef")), Not(HasSubstr("Quays"))));
}

TEST_F(NetconfReadTest, Filter_OfAMemberOfAStruct_GivesThatMember) {
    EXPECT_EQ(getConfig(element("<location><altitude/></location>")),
              element("<location><altitude>24</altitude></location>") + "\n");
}

TEST_F(NetconfReadTest, Filter_ThatNothingMatches_GivesNoMoreThanTheKeysAboveIt) {
    for (const std::string& filter :
         {std::string(), radioUnit("9"),
          equipment("<RadioUnit><userLabel>x</userLabel></RadioUnit>"),
          std::string(R"(<ManagedElement xmlns="urn:other"/>)"), element("<unknown/>")}) {
        EXPECT_THAT(getConfig(filter),
                    AllOf(Not(HasSubstr("RadioUnit")), Not(HasSubstr("userLabel")),
                          Not(HasSubstr("unknown"))))
            << filter;
    }
    for (const char* filter : {"", R"(<ManagedElement xmlns="urn:other"/>)"}) {
        EXPECT_THAT(getConfig(filter), Not(HasSubstr("ManagedElement"))) << filter;
    }
}

TEST_F(NetconfReadTest, Filter_WithoutANamespace_MeansAny) {
    EXPECT_THAT(
        getConfig(R"(<ManagedElement xmlns=""><networkManagedElementId/></ManagedElement>)"),
        AllOf(HasSubstr("harbour-gnb"), Not(HasSubstr("location"))));
}

TEST_F(NetconfReadTest, Filter_OfTheListOfModules_SelectsInIt) {
    const std::string filter =
        R"(<yang-library xmlns="urn:ietf:params:xml:ns:yang:ietf-yang-library"><module-set>)"
        "<module><name>ran-equipment</name><revision/></module></module-set></yang-library>";
    EXPECT_THAT(get(filter), AllOf(HasSubstr("<name>ran-equipment</name><revision>2024-01-15"),
                                   Not(HasSubstr("<name>ran-element</name>")),
                                   Not(HasSubstr("ManagedElement"))));
}

TEST_F(NetconfReadTest, XPath_SelectsNodesWithTheirKeys) {
    const std::string answer = ask(
        R"(<get-config><source><running/></source><filter type="xpath")"
        R"( xmlns:q="urn:orv:example:ran-equipment" select="//q:RadioUnit[count(q:antennaRef)=2)"
        R"( and q:radioUnitId>1]/q:userLabel"/></get-config>)");
    EXPECT_EQ(answer, equipment("<RadioUnit><radioUnitId>2</radioUnitId>"
                                "<userLabel>Terminal roof</userLabel></RadioUnit>") +
                          "\n");
}

TEST_F(NetconfReadTest, XPath_BeginsAtTheRoot) {
    const auto select = [this](const std::string& path) {
        return ask(R"(<get-config><source><running/></source><filter type="xpath")"
                   R"( xmlns:m="urn:orv:example:ran-element" select=")" +
                   path + R"("/></get-config>)");
    };
    EXPECT_THAT(select("m:ManagedElement/m:userLabel"), HasSubstr("<userLabel>Harbour<"));
    EXPECT_EQ(select("m:ManagedElement"), select("/m:ManagedElement"));
    EXPECT_EQ(select("/"), select("/m:ManagedElement"));
    EXPECT_THAT(select("count(//*)"), HasSubstr("<error-tag>operation-failed<"));
}

TEST_F(NetconfReadTest, Errors_SayNothingOfEarlierRequests) {
    lyd_node* none = nullptr;
    ASSERT_NE(lyd_parse_data_mem(dispatcher.model().context().get(), R"(<foo xmlns="urn:stale"/>)",
                                 LYD_XML, LYD_PARSE_ONLY | LYD_PARSE_STRICT, 0, &none),
              LY_SUCCESS);
    const std::string answer = ask("<get-config><source><running/></source>"
                                   "<filter type=\"xpath\" select=\"count(//*)\"/></get-config>");
    EXPECT_THAT(answer, AllOf(HasSubstr("the expression cannot be evaluated"),
                              Not(HasSubstr("urn:stale"))));
}

TEST_F(NetconfReadTest, XPath_WithoutAnExpression_IsRefused) {
    EXPECT_THAT(ask(R"(<get><filter type="xpath"/></get>)"),
                HasSubstr("<error-tag>missing-attribute</error-tag>"));
}

TEST_F(NetconfReadTest, NetconfState_ShowsSessionsWithTheirCounts) {
    Monitor& monitor = dispatcher.monitor();
    monitor.sessionBegins(alice, Transport::Ssh);
    monitor.sessionBegins(bob, Transport::UnixSocket);
    monitor.count(1, {5, 4, 3, 2});
    const std::string state =
        R"(<netconf-state xmlns="urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring">)";
    EXPECT_THAT(get(state + "<sessions/></netconf-state>"),
                AllOf(HasSubstr(":netconf-ssh</transport><username>alice</username><login-time>20"),
                      HasSubstr(":unix-socket</transport><username>bob</username>"),
                      HasSubstr("<in-rpcs>5</in-rpcs><in-bad-rpcs>4</in-bad-rpcs>"
                                "<out-rpc-errors>3</out-rpc-errors>"
                                "<out-notifications>2</out-notifications>"),
                      Not(HasSubstr("<statistics>")), Not(HasSubstr("<schemas>"))));
    monitor.sessionEnds(2, true);
    monitor.sessionEnds(1, false);
    monitor.badHello();
    EXPECT_THAT(get(state + "<statistics/><sessions/></netconf-state>"),
                AllOf(HasSubstr("<in-bad-hellos>1</in-bad-hellos><in-sessions>3</in-sessions>"
                                "<dropped-sessions>1</dropped-sessions><in-rpcs>5</in-rpcs>"),
                      Not(HasSubstr("username"))))
        << "what sessions did that have ended still counts";
}

TEST_F(NetconfReadTest, SubtreeFilter_TwoElementsForOneContainer_BothCount) {
    const std::string state =
        R"(<netconf-state xmlns="urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring">)";
    const std::string both = get(state + "<statistics><in-sessions/></statistics></netconf-state>" +
                                 state + "<statistics><in-rpcs/></statistics></netconf-state>");
    EXPECT_THAT(both, AllOf(HasSubstr("<in-sessions>"), HasSubstr("<in-rpcs>"),
                            Not(HasSubstr("<in-bad-hellos>"))));
}

TEST_F(NetconfReadTest, SubtreeFilter_MatchesIdentities) {
    Monitor& monitor = dispatcher.monitor();
    monitor.sessionBegins(alice, Transport::Ssh);
    monitor.sessionBegins(bob, Transport::UnixSocket);
    for (const std::string transport :
         {"<transport>netconf-ssh</transport>",
          R"(<transport xmlns:x="urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring">)"
          "x:netconf-ssh</transport>"}) {
        EXPECT_THAT(
            get(R"(<netconf-state xmlns="urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring">)"
                "<sessions><session>" +
                transport + "</session></sessions></netconf-state>"),
            AllOf(HasSubstr("alice"), Not(HasSubstr("bob"))))
            << transport;
    }
}

TEST_F(NetconfReadTest, NetconfState_ShowsLocks) {
    const std::string datastores =
        R"(<netconf-state xmlns="urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring">)"
        "<datastores/></netconf-state>";
    EXPECT_THAT(get(datastores),
                AllOf(HasSubstr("<name>running</name>"), HasSubstr("<name>candidate</name>"),
                      Not(HasSubstr("lock"))));
    ASSERT_EQ(ask(bob, "<lock><target><candidate/></target></lock>"), "ok");
    EXPECT_THAT(get(datastores),
                HasSubstr("<name>candidate</name><locks><global-lock>"
                          "<locked-by-session>2</locked-by-session><locked-time>20"));
}

TEST_F(NetconfReadTest, NetconfState_XPath_SelectsInIt) {
    EXPECT_THAT(
        ask(R"(<get><filter type="xpath" xmlns:m="urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring" )"
            R"(select="/m:netconf-state/m:schemas/m:schema[m:identifier='ran-equipment']/m:namespace"/></get>)"),
        AllOf(HasSubstr("<namespace>urn:orv:example:ran-equipment</namespace>"),
              Not(HasSubstr("<identifier>ran-element<")), Not(HasSubstr("<location>"))));
}

TEST_F(NetconfReadTest, NetconfState_IsNoConfiguration) {
    EXPECT_THAT(ask("<get-config><source><running/></source></get-config>"),
                Not(HasSubstr("netconf-state")));
}

TEST_F(NetconfReadTest, GetSchema_GivesTheModule) {
    const std::string ask1 =
        R"(<get-schema xmlns="urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring"><identifier>)";
    EXPECT_THAT(ask(ask1 + "ran-equipment</identifier><version>2024-01-15</version></get-schema>"),
                AllOf(HasSubstr("module ran-equipment {"), HasSubstr("orv:bidirectional &quot;"),
                      Not(HasSubstr("orv:bidirectional \""))));
    EXPECT_THAT(ask(ask1 + "orv-associations</identifier></get-schema>"),
                HasSubstr("module orv-associations {"));
    EXPECT_THAT(ask(ask1 + "other</identifier></get-schema>"),
                HasSubstr("<error-tag>invalid-value</error-tag>"));
    EXPECT_THAT(ask(ask1 + "ran-equipment</identifier><format>yin</format></get-schema>"),
                HasSubstr("<error-tag>invalid-value</error-tag>"));
}

}
}
