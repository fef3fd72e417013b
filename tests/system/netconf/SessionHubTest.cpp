// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Sessions over a socket: what of the answers only the library's envelopes show.

#include "netconf/server/SessionHub.h"
#include "DispatcherScene.h"

#include <array>
#include <optional>
#include <thread>

#include <sys/socket.h>
#include <unistd.h>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kEnd = "]]>]]>";

class SessionHubTest : public DispatcherScene {
protected:
    SessionHubTest() : mHub(host, dispatcher.model()) {
        std::array<int, 2> ends{};
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
            throw std::runtime_error("there is no pair of sockets");
        }
        mClient = Descriptor(ends[0]);
        mServer = std::thread([this, fd = ends[1]] {
            mHub.serve(Descriptor(fd), {"alice"}, Transport::UnixSocket, "the test");
        });
        send(R"(<hello xmlns="urn:ietf:params:xml:ns:netconf:base:1.0"><capabilities><capability>)"
             "urn:ietf:params:netconf:base:1.0</capability></capabilities></hello>");
        receive();
    }
    ~SessionHubTest() override {
        mHub.endAll();
        mServer.join();
    }

    void send(const std::string& message) {
        const std::string text = message + kEnd;
        ASSERT_EQ(write(mClient.get(), text.data(), text.size()),
                  static_cast<ssize_t>(text.size()));
    }

    std::string receive() {
        std::string message;
        char one = 0;
        while (message.find(kEnd) == std::string::npos && read(mClient.get(), &one, 1) == 1) {
            message += one;
        }
        return message;
    }

    std::string act(const std::string& content) {
        send(R"(<rpc xmlns="urn:ietf:params:xml:ns:netconf:base:1.0" message-id="1">)"
             R"(<action xmlns="urn:ietf:params:xml:ns:yang:1">)" +
             content + "</action></rpc>");
        return receive();
    }
    std::string actOnFeed(const std::string& action) {
        return act(
            element(R"(<Feed xmlns="urn:orv:test:plant"><feedId>1</feedId>)" + action + "</Feed>"));
    }

private:
    SessionHub mHub;
    Descriptor mClient;
    std::thread mServer;
};

TEST_F(SessionHubTest, Action_ItsOutputIsTheContentOfTheReply) {
    ASSERT_EQ(
        edit(element(R"(<Feed xmlns="urn:orv:test:plant"><feedId>1</feedId></Feed>)"), "running"),
        "ok");
    const AttributeValue state{ValueKind::String, {std::string("a < b")}};
    const AttributeValue phases{ValueKind::Uint, {std::uint64_t{1}, std::uint64_t{2}}};
    host.router().setActionHandler([&](const ActionCall& call) -> std::optional<AttributeValue> {
        if (call.action.name == "meter") {
            return AttributeValue{ValueKind::MoRef, {std::string("ManagedElement=1,Meter=7")}};
        }
        return AttributeValue{ValueKind::Struct,
                              {StructValue{{{"state", state}, {"phase", phases}}}}};
    });
    EXPECT_THAT(actOnFeed("<trip><phase>2</phase></trip>"),
                AllOf(HasSubstr(R"(message-id="1"><state xmlns="urn:orv:test:plant">a &lt; b)"),
                      HasSubstr(R"(<phase xmlns="urn:orv:test:plant">2</phase></rpc-reply>)")));
    EXPECT_THAT(actOnFeed("<meter/>"), HasSubstr(">ManagedElement=Harbour,Meter=7</meterRef>"));
}

TEST_F(SessionHubTest, Action_WithoutAResult_IsOk) {
    EXPECT_THAT(act(radioUnit("1", "<blink/>")), HasSubstr("<ok/></rpc-reply>"));
}

TEST_F(SessionHubTest, Action_WhoseResultDoesNotFitTheModule_SaysThatItIsDone) {
    ASSERT_EQ(
        edit(element(R"(<Feed xmlns="urn:orv:test:plant"><feedId>1</feedId></Feed>)"), "running"),
        "ok");
    const AttributeValue phases{ValueKind::Uint, {std::uint64_t{1000}}};
    host.router().setActionHandler([&](const ActionCall&) -> std::optional<AttributeValue> {
        return AttributeValue{ValueKind::Struct, {StructValue{{{"phase", phases}}}}};
    });
    EXPECT_THAT(
        actOnFeed("<trip><phase>2</phase></trip>"),
        AllOf(HasSubstr("operation-failed"), HasSubstr("is done"), Not(HasSubstr("<ok/>"))));
}

}
}
