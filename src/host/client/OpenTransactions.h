// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_OPENTRANSACTIONS_H
#define ORV_HOST_CLIENT_OPENTRANSACTIONS_H

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace OrvHost {

/// The transactions that the user has open, by name, and the one that commands currently work in.
/// The host only knows handles; this class keeps the names, also those of the transactions that
/// ended last, so that a conflict can be reported with names.
///
/// It begins and ends no transaction: see ClientSession. One thread.
class OpenTransactions {
public:
    struct Entry {
        std::string name;
        unsigned long handle = 0;
        std::size_t writes = 0; ///< commands that wrote in it
    };

    /// Throws RequestError if \p name cannot be the name of a new transaction.
    void requireFree(const std::string& name) const;
    /// "t1", "t2" and so on: the first that has never been used.
    std::string freeName() const;

    /// Adds a transaction that has begun, under a free name, and makes it the current one. If it
    /// throws (std::bad_alloc), the current one is still the one before.
    Entry& add(const std::string& name, unsigned long handle);
    /// Records the handle of a write that ends with its command.
    void addUnnamed(unsigned long handle);
    /// Removes an entry; if it is the current one, there is no current one afterwards.
    void remove(unsigned long handle);

    /// Makes that transaction the current one. Throws RequestError if it is not open.
    void use(const std::string& name);
    /// No transaction is the current one from now on; all stay open.
    void leave() { mCurrent.reset(); }

    /// The transaction that commands work in, or null.
    Entry* current();
    /// The transaction with that name, or without a name the current one. Throws RequestError if it
    /// is not open.
    Entry& require(const std::optional<std::string>& name);

    /// In the order in which they began.
    const std::vector<Entry>& all() const { return mOpen; }
    std::vector<std::string> names() const;

    /// \p text with "transaction 12" replaced by the user's name of that transaction.
    std::string withNames(const std::string& text) const;

    /// The text before the user's input: shows the current transaction.
    std::string prompt();

private:
    Entry* find(const std::string& name);
    void keepPhrase(unsigned long handle, std::string phrase);
    bool isOpen(unsigned long handle) const;

    std::vector<Entry> mOpen;
    std::optional<std::string> mCurrent;
    std::map<unsigned long, std::string> mPhrases; ///< by handle; those that ended last included
    /// "t1" has the number 1: all below the first one were used, and these.
    std::size_t mFirstFree = 1;
    std::set<std::size_t> mUsedNumbers;
};

}

#endif
