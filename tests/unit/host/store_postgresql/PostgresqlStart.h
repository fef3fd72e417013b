// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_HOST_STORE_POSTGRESQL_POSTGRESQLSTART_H
#define ORV_TESTS_HOST_STORE_POSTGRESQL_POSTGRESQLSTART_H

#include "Mixture.h"
#include "SampleStore.h"
#include "store/CommitLog.h"
#include "store_postgresql/PostgresqlConnection.h"
#include "store_postgresql/PostgresqlLog.h"
#include "store_postgresql/PostgresqlTools.h"

#include <chrono>
#include <string>

namespace OrvHost {

constexpr PostgresqlLimits kShort{std::chrono::seconds(3), std::chrono::milliseconds(700),
                                  std::chrono::milliseconds(2000), std::chrono::milliseconds(3000),
                                  std::chrono::milliseconds(2000)};

/// A host of a store.
struct Member {
    explicit Member(const std::string& target, const std::string& name = "a",
                    const PostgresqlLimits& limits = kShort)
        : log(target, sampleStoreModel(), limits), store(sampleStoreModel()) {
        store.attach(log, name);
    }

    PostgresqlLog log;
    MoStore store;
};

/// Makes a store with the objects of Mixture::load.
inline void createMixtureStore(const std::string& target) {
    initPostgresqlStore(target, sampleStoreModel());
    PostgresqlLog log(target, sampleStoreModel());
    MoStore filled(sampleStoreModel());
    Mixture::load(filled);
    filled.attach(log);
}

/// The mark in front of the first entry of a store.
inline LogMark startOf(const std::string& target) {
    PostgresqlConnection connection(target, {});
    const PostgresqlRows head = connection.run("SELECT first - 1, before FROM head");
    return {head.number(0, 0), std::string(head.text(0, 1))};
}

}

#endif
