// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Monitor.h"

#include "base/UtcTime.h"
#include "netconf/wire/XmlText.h"

namespace OrvHost {

namespace {

/// An element with other elements in it.
std::string parent(const std::string& name, const std::string& content) {
    return "<" + name + ">" + content + "</" + name + ">";
}

std::string number(const std::string& name, std::uint32_t value) {
    return xmlElement(name, std::to_string(value));
}

std::string countsXml(const MessageCounts& counts) {
    return number("in-rpcs", counts.requests) + number("in-bad-rpcs", counts.badRequests) +
           number("out-rpc-errors", counts.errorReplies) +
           number("out-notifications", counts.notifications);
}

/// RFC 6022 has no name for a session at a UNIX socket.
std::string transportXml(Transport transport) {
    return transport == Transport::Ssh
               ? "<transport>netconf-ssh</transport>"
               : R"(<transport xmlns:t="urn:orv:netconf-transports">t:unix-socket</transport>)";
}

}

void MessageCounts::add(const MessageCounts& more) {
    requests += more.requests;
    badRequests += more.badRequests;
    errorReplies += more.errorReplies;
    notifications += more.notifications;
}

Monitor::Monitor(const WireModel& model, const Datastores& stores)
    : mModel(model), mStores(stores), mStart(std::time(nullptr)) {}

void Monitor::setCapabilities(std::vector<std::string> capabilities) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mCapabilities = std::move(capabilities);
}

void Monitor::sessionBegins(const NetconfSession& session, Transport transport) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mSessions.insert_or_assign(session.id(),
                               Session{session.user().name, transport, std::time(nullptr)});
    ++mAllSessions;
}

void Monitor::count(std::uint32_t session, const MessageCounts& more) {
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto found = mSessions.find(session);
    if (found != mSessions.end()) {
        found->second.counts.add(more);
        mTotal.add(more);
    }
}

void Monitor::sessionEnds(std::uint32_t session, bool isDropped) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mSessions.erase(session) != 0 && isDropped) {
        ++mDroppedSessions;
    }
}

void Monitor::badHello() {
    const std::lock_guard<std::mutex> lock(mMutex);
    ++mBadHellos;
    ++mAllSessions; // which began, too, though not well
}

std::string Monitor::toXml() const {
    const std::string datastores = datastoresXml();
    const std::string schemas = schemasXml();
    const std::lock_guard<std::mutex> lock(mMutex);
    std::string capabilities;
    for (const std::string& capability : mCapabilities) {
        capabilities += xmlElement("capability", capability);
    }
    std::string sessions;
    for (const auto& [id, session] : mSessions) {
        sessions += parent("session", number("session-id", id) + transportXml(session.transport) +
                                          xmlElement("username", session.user) +
                                          xmlElement("login-time", utcText(session.begin)) +
                                          countsXml(session.counts));
    }
    const std::string statistics = xmlElement("netconf-start-time", utcText(mStart)) +
                                   number("in-bad-hellos", mBadHellos) +
                                   number("in-sessions", mAllSessions) +
                                   number("dropped-sessions", mDroppedSessions) + countsXml(mTotal);
    return R"(<netconf-state xmlns="urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring">)" +
           parent("capabilities", capabilities) + parent("datastores", datastores) +
           parent("schemas", schemas) + parent("sessions", sessions) +
           parent("statistics", statistics) + "</netconf-state>";
}

std::string Monitor::datastoresXml() const {
    std::string text;
    for (const Datastore store : {Datastore::Running, Datastore::Candidate}) {
        std::string content = xmlElement("name", datastoreName(store));
        if (const auto lock = mStores.lockOf(store)) {
            content += parent("locks", parent("global-lock",
                                              number("locked-by-session", lock->session) +
                                                  xmlElement("locked-time", utcText(lock->since))));
        }
        text += parent("datastore", content);
    }
    return text;
}

std::string Monitor::schemasXml() const {
    std::string text;
    for (const WireModel::Module& module : mModel.modules()) {
        text +=
            parent("schema", xmlElement("identifier", module.name) +
                                 xmlElement("version", module.revision) + "<format>yang</format>" +
                                 xmlElement("namespace", module.nameSpace) +
                                 "<location>NETCONF</location>");
    }
    return text;
}

}
