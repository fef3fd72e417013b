// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_HOST_STORE_POSTGRESQL_POSTGRESQLSERVER_H
#define ORV_TESTS_HOST_STORE_POSTGRESQL_POSTGRESQLSERVER_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <sys/types.h>

namespace OrvHost {

/// A PostgreSQL server in a temporary directory, on a socket that only this machine sees. It ends
/// with this object, and with the process.
class PostgresqlServer {
public:
    /// The server of the program, which is started at the first call.
    static PostgresqlServer& instance();

    PostgresqlServer();
    /// A copy of a server, which follows it from now on and cannot be written. In the settings of
    /// the other one it has the name `copy`.
    struct CopyOf {
        const PostgresqlServer& server;
    };
    explicit PostgresqlServer(CopyOf other);
    ~PostgresqlServer();
    PostgresqlServer(const PostgresqlServer&) = delete;
    PostgresqlServer& operator=(const PostgresqlServer&) = delete;

    /// A new, empty schema: the target for a log in it.
    std::string newSchema();
    /// The same for another user, or through a socket in another directory.
    std::string target(const std::string& schema, const std::string& user = "postgres",
                       const std::string& directory = {}) const;
    /// Where the socket is.
    const std::filesystem::path& directory() const { return mDirectory; }

    /// Changes a setting of the running server: `name = value`.
    void set(const std::string& setting);

    void start();
    /// The same for a copy, which cannot be written then.
    void startCopy();
    /// Makes a copy a server that can be written.
    void promote();
    /// At once: what is in memory only is lost.
    void stop();

private:
    void makeDirectory() const;
    void startProcess();
    void awaitWritable() const;
    void runAsUser(const std::vector<std::string>& command, const std::string& log);
    pid_t startAsUser(const std::vector<std::string>& command, const std::string& log) const;

    std::filesystem::path mDirectory;
    pid_t mProcess = -1;
    unsigned mSchemas = 0;
};

/// A socket in front of that of a server that passes on what comes, until the first COMMIT.
class PostgresqlRelay {
public:
    enum class AtCommit {
        Pass,
        KeepRequest, ///< the server does not get it, and nothing more on that connection
        KeepAnswer,  ///< the server gets it, and its answer does not come back
        CutBefore,   ///< the connection ends, and the server does not get it
        CutAfter     ///< the server gets it, and the connection ends
    };

    explicit PostgresqlRelay(const PostgresqlServer& server);
    ~PostgresqlRelay();
    PostgresqlRelay(const PostgresqlRelay&) = delete;
    PostgresqlRelay& operator=(const PostgresqlRelay&) = delete;

    const std::filesystem::path& directory() const { return mDirectory; }
    /// What happens at the next COMMIT; once.
    void atCommit(AtCommit what) { mAtCommit = what; }
    /// Once so many bytes have come from the server from now on, no more are taken from it, and the
    /// connection stays: as a host that has stopped.
    void stopAfter(std::size_t bytes) { mBytesLeft = bytes; }
    /// True if a connection has come to that point.
    bool hasStopped() const { return mHasStopped; }
    /// Passes on so many bytes of requests each millisecond; 0: all at once.
    void slowDown(std::size_t bytes) { mBytesEachMillisecond = bytes; }
    /// Whether new connections are refused; those that exist go on.
    void refuse(bool isRefusing) { mIsRefusing = isRefusing; }

private:
    void serve();
    void pass(int client);
    bool isToStop(std::size_t bytes);
    void sendSlowly(int to, std::string_view bytes) const;

    const std::filesystem::path mServer;
    std::filesystem::path mDirectory;
    int mListener = -1;
    std::atomic<AtCommit> mAtCommit{AtCommit::Pass};
    std::atomic<std::size_t> mBytesLeft{SIZE_MAX};
    std::atomic<bool> mHasStopped{false};
    std::atomic<std::size_t> mBytesEachMillisecond{0};
    std::atomic<bool> mIsRefusing{false};
    std::atomic<bool> mIsOver{false};
    std::vector<std::thread> mPassing;
    std::thread mServing;
};

}

#endif
