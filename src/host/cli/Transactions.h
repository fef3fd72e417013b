// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_TRANSACTIONS_H
#define ORV_HOST_CLI_TRANSACTIONS_H

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

/// The transactions that the user has open, by name, and which of them commands work in. The host
/// knows handles only; this keeps the names, also of those that have ended, so that a conflict can
/// be told with them.
///
/// It begins and ends nothing: see Session. One thread.
class Transactions {
public:
    struct Entry {
        std::string name;
        unsigned long handle = 0;
        std::size_t writes = 0; ///< commands that wrote in it
    };

    /// Throws UsageError if \p name cannot be the name of a new transaction.
    void requireFree(const std::string& name) const;
    /// "t1", "t2" and so on: the first that has never been used.
    std::string freeName() const;

    /// Enters a transaction that has begun, under a free name, and makes it the current one.
    void add(const std::string& name, unsigned long handle);
    /// Notes the handle of a write that is to end with its command.
    void addUnnamed(unsigned long handle);
    /// Takes an entry out; if it is the current one, none is.
    void remove(unsigned long handle);

    /// Makes that transaction the current one. Throws UsageError if it is not open.
    void use(const std::string& name);
    /// No transaction is the current one from now on; all stay open.
    void leave() { mCurrent.reset(); }

    /// The one that commands work in, or null.
    Entry* current();
    /// The one of that name or, without a name, the current one. Throws UsageError if it is not
    /// open.
    Entry& require(const std::optional<std::string>& name);

    /// In the order in which they began.
    const std::vector<Entry>& all() const { return mOpen; }
    std::vector<std::string> names() const;

    /// \p text with "transaction 12" replaced by what the user calls that transaction.
    std::string withNames(const std::string& text) const;

    /// What stands in front of a line that somebody types: tells the current transaction.
    std::string prompt();

private:
    Entry* find(const std::string& name);

    std::vector<Entry> mOpen;
    std::optional<std::string> mCurrent;
    std::map<unsigned long, std::string> mPhrases; ///< by handle, for all there ever were
    std::map<std::string, unsigned long> mUsedNames;
};

}

#endif
