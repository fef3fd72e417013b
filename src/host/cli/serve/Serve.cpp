// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Serve.h"

#include "cli/errors/CliErrors.h"
#include "cli/setup/HostSetup.h"

#ifdef ORVHOST_NETCONF

#include "base/AtomicFile.h"
#include "base/Environment.h"
#include "base/ResidentMemory.h"
#include "cli/serve/MemoryReport.h"
#include "cli/serve/ServiceManager.h"
#include "cli/serve/ShellServer.h"
#include "cli/session/Session.h"
#include "cli/setup/StoreTarget.h"
#include "netconf/server/NetconfServer.h"

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>

#include <malloc.h>

#ifdef ORVHOST_MIMALLOC
#include <mimalloc.h>
// Programs that do not run the server need not be linked with that allocator.
#pragma weak mi_option_set
#endif

namespace OrvHost {

namespace {

/// How long the end of the program waits for commands of shells that are at work, and then for
/// requests.
constexpr std::chrono::milliseconds kPatienceWithShells{1000};
constexpr std::chrono::milliseconds kPatience{1500};
/// To free more than this of what the component keeps could take so long that the program does not
/// end in time.
constexpr std::int64_t kMostToFree = std::int64_t{256} * 1024 * 1024;
/// How often the log says how much memory is taken.
constexpr std::chrono::hours kReportPause{1};

std::string hostKeyFile(const Options& options) {
    if (options.hostKey) {
        return *options.hostKey;
    }
    return environmentVariable("HOME").value_or(".") + "/.orvhost_host_key";
}

/// Empty: none. A store that hosts share has no place of this server's own.
std::string unconfirmedNoteFile(const Options& options) {
    if (options.unconfirmedNote) {
        return *options.unconfirmedNote;
    }
    const bool isFile = !options.store.empty() && !isPostgresql(options.store);
    return isFile ? options.store + ".unconfirmed" : "";
}

ServerOptions serverOptions(const Options& options) {
    ServerOptions server;
    server.unixPath = options.netconfUnix;
    server.hostKey = hostKeyFile(options);
    server.passwordFile = options.passwordFile;
    server.readOnlyUsers = options.readOnlyUsers;
    server.candidateLimit = std::chrono::seconds(options.candidateSeconds);
    server.unconfirmedNote = unconfirmedNoteFile(options);
    for (const std::string& user : options.netconfUsers) {
        const std::size_t equals = user.find('=');
        server.userKeys.emplace_back(user.substr(0, equals), user.substr(equals + 1));
    }
    server.sshAddress = options.netconfSsh;
    const bool hasUsers = !server.userKeys.empty() || !server.passwordFile.empty();
    const bool hasOtherWay = server.unixPath || options.shellUnix;
    if (!server.sshAddress && (hasUsers || !hasOtherWay)) {
        server.sshAddress = "127.0.0.1:8300";
    }
    return server;
}

/// The text of a large reply is copied once or twice on its way. By default the C library soon
/// takes such buffers from a heap that keeps what was freed, and mimalloc, which may stand in its
/// place, gives it back later: never, in a server that has nothing else to do.
void keepNoLargeBuffers() {
#ifdef ORVHOST_MIMALLOC
#if MI_MALLOC_VERSION < 210
    constexpr mi_option_t kDelay = mi_option_decommit_delay;
#else
    constexpr mi_option_t kDelay = mi_option_purge_delay;
#endif
    if (mi_option_set != nullptr) {
        mi_option_set(kDelay, 0);
    }
#endif
#ifdef M_MMAP_THRESHOLD
    mallopt(M_MMAP_THRESHOLD, 1 << 20); // NOLINT(concurrency-mt-unsafe): no other thread yet
#endif
}

/// Signals that wait until the program takes them. Threads that begin later leave them to it.
class WaitingSignals {
public:
    WaitingSignals() {
        sigemptyset(&mSignals);
        for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
            sigaddset(&mSignals, signal);
        }
        pthread_sigmask(SIG_BLOCK, &mSignals, nullptr);
    }

    /// -1 if none has come in that time.
    int next(std::chrono::seconds patience) {
        timespec time{};
        time.tv_sec = patience.count();
        return sigtimedwait(&mSignals, nullptr, &time);
    }

private:
    sigset_t mSignals{};
};

/// Until SIGTERM or SIGINT.
void workUntilSignalled(WaitingSignals& signals, HostSetup& setup) {
    MemoryReport memory;
    int signal = -1;
    do {
        signal = signals.next(kReportPause);
        if (signal == SIGHUP && !setup.log().reopen()) {
            std::cerr << "orvhost: the log's file cannot be opened again\n";
        }
        memory.log(setup.workList()->size(), residentBytes());
    } while (signal != SIGTERM && signal != SIGINT);
}

std::unique_ptr<NetconfServer> serverOf(const Options& options, HostSetup& setup) {
    try {
        return std::make_unique<NetconfServer>(setup.host(), setup.modelReader(), setup.schema(),
                                               serverOptions(options));
    } catch (const FileError& failure) {
        throw LoadError(std::string("--unconfirmed-note: ") + failure.what());
    }
}

std::unique_ptr<ShellServer> shellsOf(const Options& options, HostSetup& setup,
                                      NetconfServer& server) {
    if (!options.shellUnix) {
        return nullptr;
    }
    const auto prepare = [&](Session& session) {
        session.showRuleCost(options.yangRules);
        session.setModelNotes(setup.modelNotes());
        session.setSchema(setup.schema());
    };
    const auto commit = [&server](const std::string& user, const std::function<void()>& work) {
        server.commitBeside(user, work);
    };
    return std::make_unique<ShellServer>(
        *options.shellUnix,
        ShellServices{setup.host(), setup.log(), prepare, commit, options.models,
                      std::chrono::seconds(options.candidateSeconds)});
}

/// True if the component has so much to free that the process must end without that.
bool serveToTheEnd(const Options& options, std::ostream& out) {
    WaitingSignals signals;
    HostSetup setup(options, std::cerr);
    const std::unique_ptr<NetconfServer> server = serverOf(options, setup);
    const std::unique_ptr<ShellServer> shells = shellsOf(options, setup, *server);
    server->tellLeftUnconfirmed();
    for (const std::string& line : server->addresses()) {
        out << line << '\n';
    }
    if (shells) {
        out << shells->address() << '\n';
    }
    out << std::flush;
    tellServiceManager("READY=1");
    workUntilSignalled(signals, setup);
    tellServiceManager("STOPPING=1");
    // The program must end in time, and nothing that is still at work has written anything that
    // lasts. A shell's open transaction could keep a confirmed commit, which the end of its session
    // takes back, from that: so the shells end first.
    const bool areShellsDone =
        !shells || shells->end(std::chrono::steady_clock::now() + kPatienceWithShells);
    const bool isServerDone = server->end(kPatience);
    if (!areShellsDone || !isServerDone) {
        server->abandon();
        std::cerr << "orvhost: a request is still at work; the program ends without it\n";
        std::_Exit(ExitOk);
    }
    const bool keepsMuch = setup.workList()->size().bytes > kMostToFree;
    if (keepsMuch) {
        setup.host().loader().leaveOpen();
    }
    return keepsMuch;
}

}

int serve(const Options& options, std::ostream& out) {
    keepNoLargeBuffers();
    if (serveToTheEnd(options, out)) {
        out << std::flush;
        std::_Exit(ExitOk);
    }
    return ExitOk;
}

}

#else

namespace OrvHost {

int serve(const Options&, std::ostream&) {
    throw LoadError("this orvhost was built without its server (see ORV_NETCONF in the README)");
}

}

#endif
