// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OtherStore.h"

#include "StoreTarget.h"
#include "base/DnView.h"
#include "base/HeldFile.h"
#include "store/MoStore.h"
#include "store_postgresql/PostgresqlLog.h"
#include "store_sqlite/StoreTools.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace OrvHost {

namespace {

// What each file of the engine begins with. Instance data is JSON or XML.
constexpr std::string_view kFileStart{"SQLite format 3\0", 16};

/// The committed objects of a store in memory.
class Walk {
public:
    Walk(MoStore& store, const TakeStored& take)
        : mModel(store.model()), mTransaction(store.begin(0)), mTake(take) {}

    void all() const {
        for (const ClassDef& moc : mModel.classes) {
            if (moc.isTopLevel) {
                children("", moc);
            }
        }
    }

private:
    void children(const std::string& parent, const ClassDef& moc) const {
        ChildCursor cursor = mTransaction->children(parent, moc.name);
        for (std::string name; mTransaction->next(cursor, name);) {
            const std::string dn = DnView(parent).child(moc.name, name);
            mTake(dn, mTransaction->stored(dn));
            for (const ClassIndex child : moc.children) {
                children(dn, mModel.classes[child]);
            }
        }
    }

    const Model& mModel;
    const std::unique_ptr<StoreTransaction> mTransaction;
    const TakeStored& mTake;
};

}

bool isStore(const std::string& text) {
    std::error_code ignored;
    if (isPostgresql(text)) {
        return true;
    }
    if (!std::filesystem::is_regular_file(text, ignored)) {
        return false; // a pipe would wait, and lose what is read
    }
    if (HeldFile::isHeld(text)) {
        return true;
    }
    std::array<char, kFileStart.size()> start{};
    std::ifstream(text, std::ios::binary).read(start.data(), start.size());
    return std::string_view(start.data(), start.size()) == kFileStart;
}

void readStore(const std::string& store, const Model& model, const TakeStored& take) {
    if (!isPostgresql(store)) {
        readObjects(store, model, take);
        return;
    }
    PostgresqlLog log(postgresqlTarget(store), model);
    MoStore copy(model);
    copy.attach(log);
    Walk(copy, take).all();
}

}
