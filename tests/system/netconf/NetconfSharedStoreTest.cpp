// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The server with a store that several hosts share.

#include "PostgresqlServer.h"
#include "Program.h"
#include "base/Descriptor.h"
#include "base/UnixAddress.h"

#include <gmock/gmock.h>

#include <array>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>

namespace SystemTest {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const std::string kNamespace = "urn:ietf:params:xml:ns:netconf:base:1.0";
const std::string kEnd = "]]>]]>";
const std::string kRadioUnit = "ManagedElement=Harbour,Equipment=1,RadioUnit=44";

std::vector<std::string> onModel(std::vector<std::string> more) {
    more.insert(more.begin(), {"-I", EXAMPLES_DIR "/models", "-m", "ran-element", "-m",
                               "ran-equipment", "-m", "ran-function", "--me-id", "Harbour"});
    return more;
}

/// `orvhost serve` at a socket in a folder of its own.
class RunningServer {
public:
    RunningServer(const std::string& store, const std::string& note) {
        mProcess = fork();
        if (mProcess == 0) {
            const int out = open(file().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
            dup2(out, STDOUT_FILENO);
            dup2(out, STDERR_FILENO);
            becomeOrvhost(onModel({"--store", store, "serve", "--netconf-unix", socketPath(),
                                   "--unconfirmed-note", note}));
        }
    }
    ~RunningServer() { end(SIGTERM); }
    RunningServer(const RunningServer&) = delete;
    RunningServer& operator=(const RunningServer&) = delete;

    void end(int signal) {
        if (mProcess > 0) {
            kill(mProcess, signal);
            waitpid(mProcess, nullptr, 0);
            mProcess = -1;
        }
    }
    /// Waits for its end by itself. Its status; -1 if a signal has ended it.
    int status() {
        int status = 0;
        waitpid(mProcess, &status, 0);
        mProcess = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    /// Waits until it listens, for some seconds at most.
    bool listens() const {
        for (int round = 0; round < 2000; ++round) {
            if (output().find("NETCONF at the socket") != std::string::npos) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
    std::string output() const { return readFile(file()); }
    pid_t process() const { return mProcess; }
    std::string socketPath() const { return mDirectory.path() / "socket"; }

private:
    std::string file() const { return mDirectory.path() / "out"; }

    const TemporaryDirectory mDirectory;
    pid_t mProcess = -1;
};

/// A client with messages by hand.
class Client {
public:
    explicit Client(const std::string& path) : mSocket(socket(AF_UNIX, SOCK_STREAM, 0)) {
        const OrvHost::UnixAddress address(path);
        const timeval patience{60, 0};
        setsockopt(mSocket.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        const auto* const where = reinterpret_cast<const sockaddr*>(&address.get());
        if (connect(mSocket.get(), where, sizeof address.get()) != 0) {
            throw std::runtime_error("there is no server at " + path);
        }
        say("<hello xmlns=\"" + kNamespace +
            "\"><capabilities><capability>urn:ietf:params:netconf:base:1.0</capability>"
            "</capabilities></hello>");
        receive();
    }

    std::string ask(const std::string& operation) {
        say("<rpc xmlns=\"" + kNamespace + "\" message-id=\"1\">" + operation + "</rpc>");
        return receive();
    }

private:
    void say(const std::string& message) const {
        const std::string text = message + kEnd;
        if (send(mSocket.get(), text.data(), text.size(), MSG_NOSIGNAL) !=
            static_cast<ssize_t>(text.size())) {
            throw std::runtime_error("the server does not take a message");
        }
    }
    std::string receive() {
        for (;;) {
            if (const std::size_t end = mRest.find(kEnd); end != std::string::npos) {
                const std::string message = mRest.substr(0, end);
                mRest.erase(0, end + kEnd.size());
                return message;
            }
            std::array<char, 65536> bytes{};
            const ssize_t size = recv(mSocket.get(), bytes.data(), bytes.size(), 0);
            if (size <= 0) {
                throw std::runtime_error("no answer of the server has come");
            }
            mRest.append(bytes.data(), static_cast<std::size_t>(size));
        }
    }

    const OrvHost::Descriptor mSocket;
    std::string mRest;
};

class NetconfSharedStore : public testing::Test {
protected:
    NetconfSharedStore() {
        if (run({"store", "init", mStore}).status != 0 ||
            run({"-d", EXAMPLES_DIR "/data/harbour.json", "--store", mStore, "count"}).status !=
                0) {
            throw std::runtime_error("the store cannot be made");
        }
    }

    static ProgramResult run(const std::vector<std::string>& more) {
        return runOrvhost(onModel(more));
    }

    /// A confirmed commit that waits.
    static void commitForNow(Client& client) {
        EXPECT_THAT(client.ask("<edit-config><target><candidate/></target><config>"
                               "<ManagedElement xmlns=\"urn:orv:example:ran-element\">"
                               "<managedElementId>Harbour</managedElementId>"
                               "<Equipment xmlns=\"urn:orv:example:ran-equipment\">"
                               "<equipmentId>1</equipmentId>"
                               "<RadioUnit><radioUnitId>44</radioUnitId></RadioUnit></Equipment>"
                               "</ManagedElement></config></edit-config>"),
                    HasSubstr("<ok/>"));
        EXPECT_THAT(client.ask("<commit><confirmed/></commit>"), HasSubstr("<ok/>"));
    }

    OrvHost::PostgresqlServer& mServer = OrvHost::PostgresqlServer::instance();
    const std::string mStore = "postgresql:" + mServer.target(mServer.newSchema());
    const TemporaryDirectory mNotes;
    const std::string mNote = mNotes.path() / "note";
};

TEST_F(NetconfSharedStore, KilledWhileACommitWaits_TheNextStartSaysWhatItHadChanged) {
    {
        RunningServer server(mStore, mNote);
        ASSERT_TRUE(server.listens()) << server.output();
        Client client(server.socketPath());
        commitForNow(client);
        server.end(SIGKILL);
    }
    EXPECT_EQ(run({"--store", mStore, "exists", kRadioUnit}).out, "yes\n") << "it stays";
    EXPECT_EQ(run({"--store", mStore, "delete", kRadioUnit}).status, 0) << "by another host";
    RunningServer next(mStore, mNote);
    ASSERT_TRUE(next.listens()) << next.output();
    EXPECT_THAT(next.output(),
                AllOf(HasSubstr("a confirmed commit of "),
                      HasSubstr("was neither confirmed nor taken back"),
                      HasSubstr("what it had changed is not taken back: 1 object: " + kRadioUnit)));
    EXPECT_FALSE(std::filesystem::exists(mNote));
    EXPECT_EQ(run({"--store", mStore, "exists", kRadioUnit}).out, "no\n");
}

TEST_F(NetconfSharedStore, NoteOfAnotherServerOfTheStore_IsRefused) {
    RunningServer first(mStore, mNote);
    ASSERT_TRUE(first.listens()) << first.output();
    Client client(first.socketPath());
    commitForNow(client);
    {
        RunningServer second(mStore, mNote);
        EXPECT_EQ(second.status(), 3) << second.output();
        EXPECT_THAT(second.output(),
                    AllOf(HasSubstr("--unconfirmed-note: " + mNote + " is in use by process " +
                                    std::to_string(first.process()) + " on "),
                          Not(HasSubstr("was neither confirmed nor taken back"))));
    }
    EXPECT_TRUE(std::filesystem::exists(mNote)) << "what it says is still so";
    RunningServer third(mStore, mNotes.path() / "own");
    EXPECT_TRUE(third.listens()) << third.output();
    EXPECT_THAT(client.ask("<commit/>"), HasSubstr("<ok/>"));
    EXPECT_FALSE(std::filesystem::exists(mNote));
}

}
}
