// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Opens the store in a database:  shared_store TARGET

#include <orv/host/model/building/ModelBuilder.h>
#include <orv/host/store_postgresql/PostgresqlLog.h>

#include <cstdio>

int main(int count, char** arguments) {
    using namespace OrvHost;
    try {
        const Model model =
            ModelBuilder().add(ClassDraft("ManagedElement").topLevel().key("id")).build();
        const PostgresqlLog log(count > 1 ? arguments[1] : "", model);
        return 0;
    } catch (const LogUnavailable& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
