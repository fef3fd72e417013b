// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What the component's start and stop say of themselves: the three interfaces, and nobody else.

#include "Host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Scripted;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

/// The lines of three calls of \p function, one after the other, that are answered with OrvOk.
std::vector<std::string> threeTimes(const std::string& function) {
    std::vector<std::string> lines;
    for (int interface = 0; interface < 3; ++interface) {
        lines.push_back("trace 9 " + function + ":  >> ");
        lines.push_back("trace2 ExtCm 14 " + function + ":  >> ");
        lines.push_back("trace 10 " + function + ":  << ret: OrvOk");
        lines.push_back("trace2 ExtCm 14 " + function + ":  << ret: OrvOk");
    }
    return lines;
}

}

class LifeTraces : public testing::Test {
protected:
    void initialise() {
        host.load();
        ASSERT_EQ(host.init(), OrvOk);
        host.logLevel(8).forget();
    }

    Host host;
};

TEST_F(LifeTraces, Start_TheInterfacesOnly) {
    initialise();
    ASSERT_EQ(host.startComponent(), OrvOk);
    EXPECT_THAT(host.logs(), ElementsAreArray(threeTimes("start")));
}

TEST_F(LifeTraces, StartWhileStarted_TheSame) {
    initialise();
    ASSERT_EQ(host.startComponent(), OrvOk);
    host.forget();
    ASSERT_EQ(host.startComponent(), OrvOk);
    EXPECT_THAT(host.logs(), ElementsAreArray(threeTimes("start")));
}

TEST_F(LifeTraces, StartThatFails_TheLogAndThenTheFailure) {
    host.without(Part::Router1);
    initialise();
    ASSERT_EQ(host.startComponent(), OrvFailure);
    EXPECT_THAT(host.logs(), ElementsAre("trace 9 start:  >> ", "trace2 ExtCm 14 start:  >> ",
                                         "log 3 start: Could not lookup cmrouterservice",
                                         "trace2 ExtCm 3 start: Could not lookup cmrouterservice",
                                         "trace 10 start:  << ret: OrvFailure",
                                         "trace2 ExtCm 14 start:  << ret: OrvFailure"));
}

TEST_F(LifeTraces, Stop_TheInterfacesOnly) {
    initialise();
    ASSERT_EQ(host.startComponent(), OrvOk);
    host.forget();
    ASSERT_EQ(host.stopComponent(), OrvOk);
    EXPECT_THAT(host.logs(), ElementsAreArray(threeTimes("stop")));
}

TEST_F(LifeTraces, Initialize_ComesFromTheService) {
    host.load();
    host.logLevel(8);
    ASSERT_EQ(host.init(), OrvOk);
    EXPECT_THAT(host.logs(),
                ElementsAre("trace 9 initialize:  >> ", "trace2 ExtCm 14 initialize:  >> ",
                            "trace 10 initialize:  << ret: OrvOk",
                            "trace2 ExtCm 14 initialize:  << ret: OrvOk"));
    for (const Orv::LogRecord& record : host.logRecords()) {
        EXPECT_EQ(record.file, "src/ext_cm/src/ExtCmRouterService");
    }
}
