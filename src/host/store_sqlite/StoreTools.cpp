// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StoreTools.h"

#include "SqliteConnection.h"
#include "StoreHolder.h"
#include "StoreSchema.h"
#include "base/DnView.h"
#include "model/ModelFingerprint.h"
#include "store/AttributeBytes.h"
#include "store/CheckedBytes.h"
#include "store/CommitLog.h"
#include "store/LogChange.h"
#include "store/RecordLayout.h"

#include <unordered_map>
#include <utility>

namespace OrvHost {

namespace {

/// The right to use a file, and the open file.
class HeldStore {
public:
    explicit HeldStore(const std::filesystem::path& file)
        : mHolder(requireExisting(file)), mConnection(file, SqliteConnection::Mode::Existing) {
        // Otherwise the engine needs a further file beside it, for which there may be no room.
        mConnection.run("PRAGMA locking_mode=EXCLUSIVE");
        requireStore(mConnection);
    }

    SqliteConnection& connection() { return mConnection; }

private:
    static const std::filesystem::path& requireExisting(const std::filesystem::path& file) {
        std::error_code error;
        if (!std::filesystem::exists(file, error)) {
            throw SqliteError(0, "there is no such file");
        }
        return file;
    }

    StoreHolder mHolder;
    SqliteConnection mConnection;
};

template <class Work>
auto withStore(const std::filesystem::path& file, const Work& work) {
    try {
        HeldStore store(file);
        return work(store.connection());
    } catch (const SqliteError& error) {
        refuseStore(file, error.what());
    } catch (const BytesError& error) {
        refuseStore(file, error.what());
    }
}

// Each query counts rows that cannot be.
struct Rule {
    const char* query;
    const char* text;
};
constexpr Rule kRules[] = {
    {"SELECT count(*) FROM objects AS one WHERE parent <> 0 AND NOT EXISTS "
     "(SELECT 1 FROM objects WHERE oid = one.parent)",
     "objects without their parents"},
    {"SELECT count(*) FROM objects WHERE parent >= oid", "objects that stand before their parents"},
    {"SELECT count(*) FROM objects, head WHERE oid >> 24 > pos OR changed > pos",
     "objects of commits that are not in the log"},
    {"SELECT count(*) FROM (SELECT 1 FROM objects GROUP BY parent, class, name "
     "HAVING count(*) > 1)",
     "names that several objects have"},
    {"SELECT count(*) FROM objects WHERE class < 0 OR class >= "
     "(SELECT count(*) FROM model WHERE subject LIKE 'class %')",
     "objects of classes that the model does not have"},
    {"SELECT count(*) FROM log, head WHERE log.pos > head.pos OR log.pos < first",
     "entries outside of the log's bounds"},
    {"SELECT pos - first + 1 - (SELECT count(*) FROM log WHERE log.pos BETWEEN first AND head.pos) "
     "FROM head",
     "entries that are missing"},
    {"SELECT count(*) FROM head JOIN log USING (pos) WHERE head.id <> log.id",
     "last entries that are not the one that the table 'head' names"},
};

std::vector<std::string> problemsOf(SqliteConnection& connection) {
    std::vector<std::string> problems;
    SqliteStatement rows(connection, "PRAGMA integrity_check");
    while (rows.step()) {
        if (rows.text(0) != "ok") {
            problems.emplace_back(rows.text(0));
        }
    }
    if (!problems.empty()) {
        return problems; // the rows say nothing then
    }
    if (connection.number("SELECT count(*) FROM head") != 1) {
        return {"the table 'head' has not exactly one row"};
    }
    for (const Rule& rule : kRules) {
        const std::int64_t number = connection.number(rule.query);
        if (number != 0) {
            problems.push_back(std::to_string(number) + " " + rule.text);
        }
    }
    return problems;
}

// The values of a record, with the names that its model gave them.
std::vector<NamedValue> valuesOf(const ClassDef& moc, std::string_view attributes) {
    requireAttributes(moc, attributes);
    std::vector<NamedValue> values;
    for (AttributeIndex index = 0; index < moc.attributes.size(); ++index) {
        if (auto value = AttributeBytes::read(moc, attributes, index)) {
            values.emplace_back(moc.attributes[index].name, std::move(*value));
        }
    }
    return values;
}

void readRows(SqliteConnection& connection, const StoredObject& take) {
    SqliteStatement head(connection, "SELECT layout FROM head");
    if (!head.step()) {
        throw SqliteError(0, "it does not say which model it is of");
    }
    const Model model = decodedLayout(head.bytes(0));
    std::unordered_map<ObjectId, std::string> dns{{0, ""}};
    SqliteStatement rows(connection,
                         "SELECT oid, parent, class, name, attributes FROM objects ORDER BY oid");
    while (rows.step()) {
        const auto parent = dns.find(rows.number(1));
        if (parent == dns.end() || rows.number(2) >= model.classes.size()) {
            throw SqliteError(0, "object " + std::to_string(rows.number(0)) +
                                     " has no parent, or no class");
        }
        const ClassDef& moc = model.classes[rows.number(2)];
        std::string dn = parent->second;
        appendStep(dn, moc.name, rows.text(3));
        try {
            take(dn, valuesOf(moc, rows.bytes(4)));
        } catch (const BytesError& error) {
            throw SqliteError(0, dn + " cannot be read: " + error.what());
        }
        dns.emplace(rows.number(0), std::move(dn));
    }
}

// What a host would find.
std::vector<std::string> unreadableOf(SqliteConnection& connection) {
    std::vector<std::string> problems;
    if (fingerprintOf(storedFacts(connection)) != connection.text("SELECT model FROM head")) {
        problems.emplace_back("the fingerprint is not that of the model in it");
    }
    try {
        readRows(connection, [](const std::string&, const std::vector<NamedValue>&) {});
    } catch (const SqliteError& error) {
        problems.emplace_back(error.what());
    } catch (const BytesError& error) {
        problems.push_back(std::string("what its model says of records: ") + error.what());
    }
    SqliteStatement entries(connection, "SELECT pos, change FROM log ORDER BY pos");
    while (entries.step()) {
        try {
            LogChange::decoded(entries.bytes(1));
        } catch (const BytesError& error) {
            problems.push_back("entry " + std::to_string(entries.number(0)) + ": " + error.what());
        }
    }
    return problems;
}

std::uint64_t sizeOf(const std::filesystem::path& file) {
    std::error_code unknown;
    const std::uintmax_t size = std::filesystem::file_size(file, unknown);
    return unknown ? 0 : size;
}

}

StoreInfo readStoreInfo(const std::filesystem::path& file) {
    return withStore(file, [&](SqliteConnection& connection) {
        StoreInfo info;
        info.objects =
            static_cast<std::uint64_t>(connection.number("SELECT count(*) FROM objects"));
        SqliteStatement head(connection, "SELECT pos, first, model FROM head");
        while (head.step()) {
            info.position = head.number(0);
            info.firstEntry = head.number(1);
            info.model = head.text(2);
        }
        SqliteStatement last(connection, "SELECT author, at FROM log ORDER BY pos DESC LIMIT 1");
        while (last.step()) {
            info.lastAuthor = last.text(0);
            info.lastAt = static_cast<std::int64_t>(last.number(1));
        }
        info.bytes = sizeOf(file);
        return info;
    });
}

std::vector<std::string> checkStore(const std::filesystem::path& file) {
    return withStore(file, [](SqliteConnection& connection) {
        std::vector<std::string> problems = problemsOf(connection);
        return problems.empty() ? unreadableOf(connection) : problems;
    });
}

std::pair<std::uint64_t, std::uint64_t> compactStore(const std::filesystem::path& file) {
    return withStore(file, [&](SqliteConnection& connection) {
        connection.run("PRAGMA wal_checkpoint(TRUNCATE)");
        const std::uint64_t before = sizeOf(file);
        connection.run("VACUUM");
        connection.run("PRAGMA wal_checkpoint(TRUNCATE)");
        return std::pair(before, sizeOf(file));
    });
}

void readObjects(const std::filesystem::path& file, const StoredObject& take) {
    withStore(file, [&](SqliteConnection& connection) { readRows(connection, take); });
}

void readObjects(const std::filesystem::path& file, const Model& model, const StoredObject& take) {
    withStore(file, [&](SqliteConnection& connection) {
        requireModel(connection, modelFacts(model));
        readRows(connection, take);
    });
}

}
