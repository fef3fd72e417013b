// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Opens the store in a file, and says whether it was new:  store_in_file FILE

#include <orv/host/model/building/ModelBuilder.h>
#include <orv/host/store_sqlite/SqliteLog.h>

#include <cstdio>

int main(int count, char** arguments) {
    using namespace OrvHost;
    try {
        const Model model =
            ModelBuilder().add(ClassDraft("ManagedElement").topLevel().key("id")).build();
        SqliteLog log(count > 1 ? arguments[1] : "", model);
        const bool isNew = log.isNew();
        if (isNew) {
            log.fill([](const CommitLog::ObjectVisitor&) {});
        }
        std::puts(isNew ? "new" : "known");
        return 0;
    } catch (const LogUnavailable& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
