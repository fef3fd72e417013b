// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_SERVER_NETCONFSERVER_H
#define ORV_HOST_NETCONF_SERVER_NETCONFSERVER_H

#include "netconf/server/UserTable.h"
#include "yang/schema/YangModelReader.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

class Host;

/// How the server is reached and by whom.
struct ServerOptions {
    std::optional<std::string> sshAddress;                     ///< ADDRESS:PORT; none: no SSH
    std::optional<std::string> unixPath;                       ///< none: no socket
    std::string hostKey;                                       ///< a file, made if there is none
    std::vector<std::pair<std::string, std::string>> userKeys; ///< name, file of public keys
    std::string passwordFile;                                  ///< empty: none
    std::vector<std::string> readOnlyUsers;
    /// How long after its last edit a candidate is discarded; 0: never.
    std::chrono::seconds candidateLimit{0};
    /// A file that remembers what a confirmed commit that waits has changed; empty: none.
    std::string unconfirmedNote;
};

/// The server: the listeners and the sessions over them.
class NetconfServer {
public:
    /// Listens from now on. \p host is borrowed, with its components started; \p reader has read
    /// its model, \p schema. Throws ServerError, ModelError, and FileError of the file of the note.
    NetconfServer(Host& host, const YangModelReader& reader,
                  std::shared_ptr<const YangSchema> schema, const ServerOptions& options);
    /// As end(), and waits as long as it takes.
    ~NetconfServer();
    NetconfServer(const NetconfServer&) = delete;
    NetconfServer& operator=(const NetconfServer&) = delete;

    /// Logs whose confirmed commit a server before this one has left, and removes the file of the
    /// note. For when the start of the process cannot fail any more. Any thread.
    void tellLeftUnconfirmed();

    /// Ends all sessions; what is not committed is aborted. Waits for \p patience at most: a search
    /// by XPath cannot be interrupted. False if a request is still at work then. The server must
    /// not be destroyed as long as it is.
    bool end(std::chrono::milliseconds patience);
    /// For a process that ends without destroying this object: logs which sessions are still at
    /// work, and if what a confirmed commit has changed stays. After end().
    void abandon();

    /// Calls \p commit, which commits something for \p user, who is no client of this server.
    /// Throws CommitDenied, without a call, if a session has locked running or a confirmed commit
    /// waits. Any thread.
    void commitBeside(const std::string& user, const std::function<void()>& commit);

    /// Where clients find it, for people: a line for each way.
    std::vector<std::string> addresses() const;

private:
    struct Parts;
    std::unique_ptr<Parts> mParts;
};

}

#endif
