// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "PostgresqlServer.h"

#include "store_postgresql/PostgresqlConnection.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvHost {

namespace {

namespace fs = std::filesystem;

// The whole text of a statement, with the bytes that end it and the one before it.
const std::string kCommit("\0COMMIT\0", 8);
constexpr const char* kSocketName = ".s.PGSQL.5432";

const std::string kDirectory = "orv_pg_";

// What tests have left that were ended by a signal.
void removeOldDirectories() {
    std::error_code error;
    for (const fs::directory_entry& entry :
         fs::directory_iterator(fs::temp_directory_path(), error)) {
        const std::string name = entry.path().filename();
        const bool isOne = name.rfind(kDirectory, 0) == 0 &&
                           name.find('_', kDirectory.size()) != std::string::npos;
        const int process = isOne ? std::atoi(name.c_str() + kDirectory.size()) : 0;
        if (process > 0 && kill(process, 0) != 0 && errno == ESRCH) {
            fs::remove_all(entry.path(), error);
        }
    }
}

fs::path temporaryDirectory() {
    std::string name =
        fs::temp_directory_path() / (kDirectory + std::to_string(getpid()) + "_XXXXXX");
    return mkdtemp(name.data());
}

/// The server refuses to run as root.
const passwd* otherUser() {
    if (getuid() != 0) {
        return nullptr;
    }
    const passwd* const user = getpwnam("postgres");
    return user != nullptr ? user : getpwnam("nobody");
}

// For the child process after fork.
[[noreturn]] void become(const std::vector<std::string>& command, const std::string& log) {
    const int file = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
    dup2(file, STDOUT_FILENO);
    dup2(file, STDERR_FILENO);
    if (const passwd* const user = otherUser()) {
        if (setgroups(0, nullptr) != 0 || setgid(user->pw_gid) != 0 || setuid(user->pw_uid) != 0) {
            _exit(126);
        }
    }
    prctl(PR_SET_PDEATHSIG, SIGQUIT);
    std::vector<char*> arguments;
    for (const std::string& word : command) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    std::array<char*, 2> environment{const_cast<char*>("LC_ALL=C"), nullptr};
    execve(arguments[0], arguments.data(), environment.data());
    _exit(127);
}

sockaddr_un addressOf(const fs::path& directory) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = directory / kSocketName;
    std::copy(path.begin(), path.end(), address.sun_path);
    return address;
}

/// A descriptor that is closed at the end.
class Socket {
public:
    explicit Socket(int descriptor) : mDescriptor(descriptor) {}
    ~Socket() { close(mDescriptor); }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    int get() const { return mDescriptor; }

private:
    int mDescriptor;
};

// False if the other side has ended.
bool receive(int from, std::string& bytes) {
    std::array<char, 65536> buffer{};
    const ssize_t size = recv(from, buffer.data(), buffer.size(), 0);
    bytes.assign(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    return size > 0;
}

void sendAll(int to, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t size = send(to, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (size <= 0) {
            return;
        }
        bytes.remove_prefix(static_cast<std::size_t>(size));
    }
}

}

PostgresqlServer& PostgresqlServer::instance() {
    static PostgresqlServer server;
    return server;
}

PostgresqlServer::PostgresqlServer() : mDirectory(temporaryDirectory()) {
    makeDirectory();
    const std::string data = mDirectory / "data";
    runAsUser({POSTGRESQL_BINARIES "/initdb", "-D", data, "-U", "postgres", "-A", "trust",
               "--no-sync", "-E", "UTF8", "--locale=C"},
              mDirectory / "initdb.log");
    start();
}

PostgresqlServer::PostgresqlServer(CopyOf other) : mDirectory(temporaryDirectory()) {
    makeDirectory();
    runAsUser({POSTGRESQL_BINARIES "/pg_basebackup", "-D", mDirectory / "data", "--no-sync", "-R",
               "-c", "fast", "-d",
               "host=" + other.server.mDirectory.string() + " user=postgres application_name=copy"},
              mDirectory / "copy.log");
    startCopy();
}

void PostgresqlServer::makeDirectory() const {
    removeOldDirectories();
    fs::permissions(mDirectory, fs::perms(0711));
    if (const passwd* const user = otherUser()) {
        if (chown(mDirectory.c_str(), user->pw_uid, user->pw_gid) != 0) {
            throw std::runtime_error("the directory cannot be given to another user");
        }
    }
}

PostgresqlServer::~PostgresqlServer() {
    stop();
    std::error_code error;
    fs::remove_all(mDirectory, error);
}

pid_t PostgresqlServer::startAsUser(const std::vector<std::string>& command,
                                    const std::string& log) const {
    const pid_t process = fork();
    if (process == 0) {
        become(command, log);
    }
    return process;
}

void PostgresqlServer::runAsUser(const std::vector<std::string>& command, const std::string& log) {
    int status = 0;
    waitpid(startAsUser(command, log), &status, 0);
    if (status != 0) {
        std::ifstream file(log);
        throw std::runtime_error(
            command[0] + " failed: " + std::string(std::istreambuf_iterator<char>(file), {}));
    }
}

void PostgresqlServer::start() {
    startProcess();
    awaitWritable();
}

void PostgresqlServer::startCopy() {
    startProcess();
    for (int round = 0; round < 2000; ++round) {
        std::ifstream file(mDirectory / "data" / "postmaster.pid");
        const std::string state(std::istreambuf_iterator<char>(file), {});
        if (state.find("standby") != std::string::npos ||
            state.find("ready") != std::string::npos) {
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    throw std::runtime_error("the copy does not start");
}

void PostgresqlServer::promote() {
    runAsUser({POSTGRESQL_BINARIES "/pg_ctl", "-D", mDirectory / "data", "-w", "promote"},
              mDirectory / "promote.log");
    awaitWritable();
}

void PostgresqlServer::startProcess() {
    mProcess =
        startAsUser({POSTGRESQL_BINARIES "/postgres", "-D", mDirectory / "data", "-c",
                     "listen_addresses=", "-c", "unix_socket_directories=" + mDirectory.string(),
                     "-c", "max_connections=40", "-c", "shared_buffers=32MB", "-c",
                     "wal_retrieve_retry_interval=200ms"},
                    mDirectory / "log");
}

void PostgresqlServer::awaitWritable() const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    for (;;) {
        try {
            PostgresqlConnection(target("public"), {});
            return;
        } catch (const PostgresqlError&) {
            if (std::chrono::steady_clock::now() > end ||
                waitpid(mProcess, nullptr, WNOHANG) != 0) {
                throw;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }
}

void PostgresqlServer::stop() {
    if (mProcess > 0) {
        kill(mProcess, SIGQUIT);
        waitpid(mProcess, nullptr, 0);
        mProcess = -1;
    }
}

void PostgresqlServer::set(const std::string& setting) {
    PostgresqlConnection connection(target("public"), {});
    connection.run(("ALTER SYSTEM SET " + setting).c_str());
    connection.run("SELECT pg_reload_conf()");
    // The processes of the server take it a little later.
    const std::string name = setting.substr(0, setting.find(' '));
    const std::string value =
        setting.substr(setting.find('\'') + 1, setting.rfind('\'') - setting.find('\'') - 1);
    for (int round = 0; round < 500; ++round) {
        const PostgresqlRows now =
            PostgresqlConnection(target("public"), {})
                .run("SELECT current_setting($1)", PostgresqlParameters().text(name));
        if (now.text(0, 0) == value) {
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    throw std::runtime_error("the server does not take " + setting);
}

std::string PostgresqlServer::newSchema() {
    const std::string name = "test" + std::to_string(++mSchemas);
    PostgresqlConnection(target("public"), {}).runAll("CREATE SCHEMA " + name);
    return name;
}

std::string PostgresqlServer::target(const std::string& schema, const std::string& user,
                                     const std::string& directory) const {
    return "host=" + (directory.empty() ? mDirectory.string() : directory) + " user=" + user +
           " dbname=postgres options='-c search_path=" + schema + "'";
}

PostgresqlRelay::PostgresqlRelay(const PostgresqlServer& server)
    : mServer(server.directory()), mDirectory(temporaryDirectory()) {
    mListener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = addressOf(mDirectory);
    if (bind(mListener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(mListener, 10) != 0) {
        throw std::runtime_error("the socket of the relay cannot be made");
    }
    mServing = std::thread([this] { serve(); });
}

PostgresqlRelay::~PostgresqlRelay() {
    mIsOver = true;
    mServing.join();
    for (std::thread& thread : mPassing) {
        thread.join();
    }
    close(mListener);
    std::error_code error;
    fs::remove_all(mDirectory, error);
}

void PostgresqlRelay::serve() {
    while (!mIsOver) {
        pollfd waiting{mListener, POLLIN, 0};
        if (poll(&waiting, 1, 20) > 0) {
            const int client = accept4(mListener, nullptr, nullptr, SOCK_CLOEXEC);
            mPassing.emplace_back([this, client] { pass(client); });
        }
    }
}

bool PostgresqlRelay::isToStop(std::size_t bytes) {
    if (mBytesLeft == SIZE_MAX) {
        return false;
    }
    if (bytes < mBytesLeft) {
        mBytesLeft -= bytes;
        return false;
    }
    mBytesLeft = SIZE_MAX;
    mHasStopped = true;
    return true;
}

void PostgresqlRelay::sendSlowly(int to, std::string_view bytes) const {
    while (!bytes.empty()) {
        const std::size_t rate = mBytesEachMillisecond;
        const std::string_view part = bytes.substr(0, rate == 0 ? bytes.size() : rate);
        sendAll(to, part);
        bytes.remove_prefix(part.size());
        std::this_thread::sleep_for(std::chrono::milliseconds(rate == 0 ? 0 : 1));
    }
}

void PostgresqlRelay::pass(int descriptor) {
    const Socket client(descriptor);
    if (mIsRefusing) {
        return;
    }
    const Socket server(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const sockaddr_un address = addressOf(mServer);
    if (connect(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return;
    }
    bool keepsAnswers = false;
    bool keepsRequests = false;
    while (!mIsOver) {
        std::array<pollfd, 2> ends{pollfd{client.get(), POLLIN, 0}, {server.get(), POLLIN, 0}};
        if (poll(ends.data(), ends.size(), 20) <= 0) {
            continue;
        }
        std::string bytes;
        if (ends[0].revents != 0) {
            if (!receive(client.get(), bytes)) {
                return;
            }
            if (bytes.find(kCommit) != std::string::npos) {
                const AtCommit what = mAtCommit.exchange(AtCommit::Pass);
                if (what == AtCommit::CutBefore) {
                    return;
                }
                keepsRequests = keepsRequests || what == AtCommit::KeepRequest;
                keepsAnswers = keepsAnswers || what == AtCommit::KeepAnswer;
                if (what == AtCommit::CutAfter) {
                    sendAll(server.get(), bytes);
                    receive(server.get(), bytes);
                    return;
                }
            }
            if (!keepsRequests) {
                sendSlowly(server.get(), bytes);
            }
        }
        if (ends[1].revents != 0) {
            if (!receive(server.get(), bytes)) {
                return;
            }
            if (isToStop(bytes.size())) {
                while (!mIsOver) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(20));
                }
                return;
            }
            if (!keepsAnswers) {
                sendAll(client.get(), bytes);
            }
        }
    }
}

}
