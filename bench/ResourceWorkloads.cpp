// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Values.h"
#include "Workload.h"

#include <memory>

namespace OrvBench {

namespace {

using Resource = OrvOamSpiTransactionalResource_2;
using Step = OrvReturnT (*Resource::*)(unsigned long);

/// A row of transactions with router and component as participants, driven without the host's
/// transaction service, so that each phase can be called separately.
class Transactions {
public:
    explicit Transactions(BenchHost& bench) : mBench(bench) {}
    Transactions(const Transactions&) = delete;
    Transactions& operator=(const Transactions&) = delete;

    ~Transactions() {
        for (const unsigned long handle : mHandles) {
            finish(bench().component(), handle);
            finish(bench().router(), handle);
        }
    }

    BenchHost& bench() { return mBench; }
    const std::vector<unsigned long>& handles() const { return mHandles; }

    /// Uses handles that nobody else uses; the router does not know them yet.
    void add() {
        for (int number = 0; number < callsInBody; ++number) {
            mHandles.push_back(nextHandle++);
        }
    }

    void each(const Side& side, Step step) {
        for (const unsigned long handle : mHandles) {
            check((side.resource->*step)(handle), side.name);
        }
    }

    void validate(const Side& side) {
        for (const unsigned long handle : mHandles) {
            bool valid = false;
            check(side.resource->validate(handle, &valid), side.name);
            check(valid ? OrvOk : OrvValidationFailed, side.name);
        }
    }

    /// Writes one reference in each transaction, through the component.
    void write() {
        const Side& side = mBench.component();
        int antenna = 0;
        for (const unsigned long handle : mHandles) {
            const std::string number = std::to_string(antenna++);
            const Value3 mast = Value3::references({side.dn("Mast=" + number)});
            check(side.v3->setMoAttribute(handle, side.dn("Site=free,Antenna=" + number).c_str(),
                                          "mast", mast.container()),
                  "setMoAttribute");
        }
    }

private:
    // After a measured finish the router no longer knows the transaction, and says so.
    static void finish(const Side& side, unsigned long handle) {
        side.resource->abort(handle);
        side.resource->finish(handle);
    }

    static inline unsigned long nextHandle = 1UL << 40U; ///< far from the service's handles

    BenchHost& mBench;
    std::vector<unsigned long> mHandles;
};

using Shared = std::shared_ptr<Transactions>;

Shared opened(const Round& round) {
    auto made = std::make_shared<Transactions>(round.bench);
    made->add();
    made->each(round.bench.router(), &Resource::join);
    return made;
}

Shared written(const Round& round) {
    Shared made = opened(round);
    made->write();
    return made;
}

Shared validated(const Round& round) {
    Shared made = written(round);
    made->validate(round.bench.component());
    made->validate(round.bench.router());
    return made;
}

Workload::Body stepOf(Shared transactions, const Side& side, Step step) {
    return [t = std::move(transactions), &side, step] { t->each(side, step); };
}

Workload::Body join(const Round& round) {
    auto made = std::make_shared<Transactions>(round.bench);
    made->add();
    return stepOf(made, round.side, &Resource::join);
}

Workload::Body prepare(const Round& round) {
    return stepOf(validated(round), round.side, &Resource::prepare);
}

// The transactions are only aborted afterwards: a commit would change the objects for the next
// round.
Workload::Body abort(const Round& round) {
    return stepOf(written(round), round.side, &Resource::abort);
}

// Nothing was written, so the router's commit changes nothing.
Workload::Body commit(const Round& round) {
    Shared made = opened(round);
    made->validate(round.bench.router());
    made->each(round.bench.router(), &Resource::prepare);
    return stepOf(made, round.side, &Resource::commit);
}

Workload::Body finish(const Round& round) {
    Shared made = written(round);
    made->each(round.bench.component(), &Resource::abort);
    made->each(round.bench.router(), &Resource::abort);
    return stepOf(made, round.side, &Resource::finish);
}

Workload::Body validateEmpty(const Round& round) {
    return [t = opened(round), &side = round.side] { t->validate(side); };
}

Workload::Body validateWritten(const Round& round) {
    return [t = written(round), &side = round.side] { t->validate(side); };
}

}

// The round's own transaction must not be written in before: its write would conflict with those of
// the row's transactions.
std::vector<Workload> resourceWorkloads() {
    std::vector<Workload> all = {
        {"resource/join", callsInBody, join},
        {"resource/prepare", callsInBody, prepare},
        {"resource/commit", callsInBody, commit},
        {"resource/abort", callsInBody, abort},
        {"resource/finish", callsInBody, finish},
        {"resource/validate/nothing written", callsInBody, validateEmpty},
        {"resource/validate/1 bidirectional reference", callsInBody, validateWritten},
    };
    for (Workload& workload : all) {
        workload.touched = false;
    }
    return all;
}

}
