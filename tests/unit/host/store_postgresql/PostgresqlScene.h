// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_HOST_STORE_POSTGRESQL_POSTGRESQLSCENE_H
#define ORV_TESTS_HOST_STORE_POSTGRESQL_POSTGRESQLSCENE_H

#include "Mixture.h"
#include "PostgresqlServer.h"
#include "PostgresqlStart.h"
#include "SampleStore.h"
#include "store/LogFollower.h"
#include "store_postgresql/PostgresqlLog.h"
#include "store_postgresql/PostgresqlTools.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace OrvHost {

using namespace std::chrono_literals;

inline const std::string kA = "Network=1,Node=a";

// For one that waits until the server has ended another one.
constexpr PostgresqlLimits kPatient{3s, 700ms, 20s, 30s, 2000ms};

class PostgresqlScene : public testing::Test, protected SampleStore {
protected:
    /// A store with the objects of the sample.
    void fill() {
        initPostgresqlStore(target, model);
        PostgresqlLog log(target, model);
        SampleStore filled;
        filled.store.attach(log);
    }
    static void setLabel(MoStore& where, const std::string& label, TransactionId id = 7) {
        const auto tx = where.begin(id, "alice");
        tx->set(kA, "label", text(label));
        tx->commit();
    }
    /// On an object for itself.
    static void setOtherLabel(MoStore& where, const std::string& label) {
        const auto tx = where.begin(8);
        tx->set("Network=1,Node=b", "label", text(label));
        tx->commit();
    }
    static AttributeValue labelOf(MoStore& where) { return where.begin(1)->get(kA, "label"); }
    std::vector<std::string> contentOfNewHost() const {
        Member member(target);
        return contentOf(member.store);
    }
    void sql(const std::string& statements) const {
        PostgresqlConnection(target, {}).runAll(statements);
    }
    std::string through(const PostgresqlRelay& relay) const {
        return server.target(schema, "postgres", relay.directory());
    }

    PostgresqlServer& server = PostgresqlServer::instance();
    std::string schema = server.newSchema();
    std::string target = server.target(schema);
};

/// Waits for something for some seconds at most.
inline bool happens(const std::function<bool()>& what) {
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (!what()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(5ms);
    }
    return true;
}

/// What a follower has said.
class Reports {
public:
    LogFollower::Report taker() {
        return [this](const std::string& text) {
            const std::lock_guard<std::mutex> guard(mMutex);
            mTexts.push_back(text);
        };
    }
    std::vector<std::string> texts() const {
        const std::lock_guard<std::mutex> guard(mMutex);
        return mTexts;
    }

private:
    mutable std::mutex mMutex;
    std::vector<std::string> mTexts;
};

}

#endif
