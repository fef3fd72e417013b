// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SYSTEM_NETCONF_DISPATCHERSCENE_H
#define ORV_TESTS_SYSTEM_NETCONF_DISPATCHERSCENE_H

#include "netconf/core/Dispatcher.h"
#include "runtime/Host.h"
#include "yang/schema/YangModelReader.h"

#include <gmock/gmock.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace OrvHost {

/// The example network with the component, known as "Harbour", and a dispatcher in front of it,
/// without a transport.
class DispatcherScene : public testing::Test {
protected:
    DispatcherScene();
    ~DispatcherScene() override;

    /// The answer to an operation, given in XML without its envelope: "ok", the data, or the
    /// errors. All on one line, without blanks between elements.
    std::string ask(NetconfSession& session, const std::string& operation);
    std::string ask(const std::string& operation) { return ask(alice, operation); }

    /// The two steps of it.
    RpcReply replyTo(NetconfSession& session, const std::string& operation);
    static std::string textOf(const RpcReply& reply);

    std::string edit(const std::string& config, const std::string& target = "candidate",
                     const std::string& options = {});
    /// By \p session, at once.
    std::string editRunning(NetconfSession& session, const std::string& config) {
        return ask(session,
                   tagged("edit-config", "<target><running/></target>" + tagged("config", config)));
    }
    std::string getConfig(const std::string& filter, const std::string& store = "running");
    std::string get(const std::string& filter);

    /// \p content inside the equipment of the element.
    static std::string equipment(const std::string& content);
    static std::string element(const std::string& content);
    static std::string tagged(const std::string& tag, const std::string& content) {
        return "<" + tag + ">" + content + "</" + tag + ">";
    }
    static std::string antenna(int unit, int antenna);
    static std::string radioUnit(const std::string& id, const std::string& content = {},
                                 const std::string& attributes = {});

    /// Waits until \p isSo; the time is only a limit.
    template <class IsSo>
    static bool comesTrue(const IsSo& isSo) {
        for (int time = 0; time < 600; ++time) {
            if (isSo()) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return false;
    }

    const std::string kNc = R"(xmlns:nc="urn:ietf:params:xml:ns:netconf:base:1.0" )";
    const std::string kDelete = kNc + R"(nc:operation="delete")";
    const std::string kValidate = "<validate><source><candidate/></source></validate>";

private:
    YangModelReader mReader;
    YangModel mModel;

protected:
    Host host;

private:
    void load();

    WireModel mWire;

protected:
    std::vector<std::string> events; ///< that were sent
    std::uint32_t killed = 0;        ///< the session that was to be ended last
    Dispatcher dispatcher;
    NetconfSession alice;
    NetconfSession bob;
    NetconfSession reader; ///< may only read
};

}

#endif
