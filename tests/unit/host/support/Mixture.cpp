// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Mixture.h"

#include "ReplayLog.h"
#include "SampleStore.h"
#include "base/HostError.h"

#include <map>
#include <set>
#include <utility>

namespace OrvHost {

namespace {

constexpr unsigned kAccounts = 10;
constexpr std::int64_t kSum = 1000;
constexpr unsigned kTrees = 4;
const std::string kNetwork = "Network=1";
const std::string kCounter = "Network=1,Node=counter";
const std::string kRack = "Network=1,Node=counter,Rack=r";

std::string account(unsigned at) {
    return "Network=1,Node=account" + std::to_string(at);
}

std::string tree(unsigned at) {
    return "Network=1,Box=tree" + std::to_string(at);
}

std::int64_t heightOf(const StoreTransaction& tx, const std::string& dn) {
    const AttributeValue value = tx.get(dn, "height");
    return value.values.empty() ? 0 : std::get<std::int64_t>(value.values[0]);
}

AttributeValue height(std::int64_t value) {
    return {ValueKind::Int, {value}};
}

AttributeValue label(const std::string& value) {
    return {ValueKind::String, {value}};
}

void createTree(StoreTransaction& tx, const std::string& dn) {
    tx.create(kNetwork, "Box", "id", dn.substr(dn.rfind('=') + 1), {});
    tx.create(dn, "Box", "id", "a", {});
    tx.create(dn + ",Box=a", "Box", "id", "b", {{"label", label("deep")}});
}

void appendBelow(const StoreTransaction& tx, const Model& model, const std::string& parent,
                 std::vector<std::string>& lines) {
    for (const ClassDef& moc : model.classes) {
        const bool fits =
            parent.empty() ? moc.isTopLevel : moc.mayStandUnder(*model.findClassOfDn(parent));
        if (!fits) {
            continue;
        }
        for (const std::string& name : namesOf(tx, parent, moc.name)) {
            const std::string dn = (parent.empty() ? "" : parent + ",") + moc.name + "=" + name;
            std::string line = dn;
            for (const auto& [attribute, value] : tx.stored(dn)) {
                line += " " + attribute;
                for (const Value& one : value.values) {
                    line += " " + toText(one);
                }
            }
            lines.push_back(line);
            appendBelow(tx, model, dn, lines);
        }
    }
}

/// The marks of a store: the number of marks of each transaction, by its name.
std::map<std::string, int> marksOf(const StoreTransaction& tx) {
    std::map<std::string, int> marks;
    for (const char* parent : {"Network=first", "Network=last"}) {
        for (const std::string& name : namesOf(tx, parent, "Node")) {
            ++marks[name];
        }
    }
    return marks;
}

void checkMarks(const std::map<std::string, int>& marks,
                const std::vector<std::string>& acknowledged,
                std::vector<std::string>& violations) {
    for (const auto& [name, number] : marks) {
        if (number != 2) {
            violations.push_back("half of transaction " + name + " is there");
        }
    }
    for (const std::string& name : acknowledged) {
        if (marks.count(name) == 0) {
            violations.push_back("transaction " + name + " was acknowledged and is missing");
        }
    }
}

}

void Mixture::load(MoStore& store) {
    store.load(kNetwork, {});
    store.load("Network=first", {});
    store.load("Network=last", {});
    store.load(kCounter, {});
    store.load(kRack, {});
    store.load(kRack + ",Fan=0", {});
    for (unsigned at = 0; at < kAccounts; ++at) {
        store.load(account(at), {{"height", height(kSum / kAccounts)}});
    }
}

Mixture::Mixture(MoStore& store, std::string name, unsigned seed)
    : mStore(store),
      mName(std::move(name)),
      mFirstId(TransactionId{seed} * 1000000),
      mRandom(seed) {}

void Mixture::step(const Acknowledge& acknowledge) {
    constexpr std::pair<char, void (Mixture::*)(StoreTransaction&)> kKinds[] = {
        {'c', &Mixture::count},
        {'m', &Mixture::move},
        {'b', &Mixture::changeBounded},
        {'t', &Mixture::changeTree},
        {'i', &Mixture::changeInTree}};
    const auto [letter, change] = kKinds[below(5)];
    const std::string mark = letter + mName + "-" + std::to_string(++mNumber);
    try {
        const auto tx = mStore.begin(mFirstId + mNumber, mName);
        tx->create("Network=first", "Node", "id", mark, {});
        (this->*change)(*tx);
        tx->create("Network=last", "Node", "id", mark, {});
        if (tx->check().empty()) {
            tx->commit();
            acknowledge(mark);
        }
    } catch (const HostError& error) {
        if (error.code() != OrvHostWriteConflict) {
            throw;
        }
    }
}

void Mixture::count(StoreTransaction& tx) {
    tx.set(kCounter, "height", height(heightOf(tx, kCounter) + 1));
}

void Mixture::move(StoreTransaction& tx) {
    const std::string from = account(below(kAccounts));
    const std::string to = account(below(kAccounts));
    tx.set(from, "height", height(heightOf(tx, from) - 7));
    tx.set(to, "height", height(heightOf(tx, to) + 7));
}

void Mixture::changeBounded(StoreTransaction& tx) {
    const std::string name = std::to_string(below(4));
    const std::string dn = kRack + ",Fan=" + name;
    if (tx.exists(dn)) {
        tx.remove(dn);
    } else {
        tx.create(kRack, "Fan", "id", name, {});
    }
}

void Mixture::changeTree(StoreTransaction& tx) {
    const std::string dn = tree(below(kTrees));
    const bool isThere = tx.exists(dn);
    if (isThere) {
        tx.remove(dn);
    }
    if (!isThere || below(2) == 0) {
        createTree(tx, dn);
    }
}

void Mixture::changeInTree(StoreTransaction& tx) {
    const std::string top = tree(below(kTrees));
    if (!tx.exists(top)) {
        return;
    }
    const std::string parent = tx.exists(top + ",Box=a") && below(2) == 0 ? top + ",Box=a" : top;
    const std::string name = "x" + std::to_string(below(3));
    const std::string dn = parent + ",Box=" + name;
    if (!tx.exists(dn)) {
        tx.create(parent, "Box", "id", name, {});
    } else if (below(2) == 0) {
        tx.set(dn, "label", label(mName + std::to_string(mNumber)));
    } else {
        tx.remove(dn);
    }
}

std::vector<std::string> Mixture::violations(MoStore& store,
                                             const std::vector<std::string>& acknowledged) {
    std::vector<std::string> violations;
    const auto tx = store.begin(1);
    const std::map<std::string, int> marks = marksOf(*tx);
    checkMarks(marks, acknowledged, violations);
    std::int64_t counts = 0;
    for (const auto& [name, number] : marks) {
        counts += name.front() == 'c' ? 1 : 0;
    }
    if (heightOf(*tx, kCounter) != counts) {
        violations.push_back("the counter is " + std::to_string(heightOf(*tx, kCounter)) +
                             " after " + std::to_string(counts) + " transactions");
    }
    std::int64_t sum = 0;
    for (unsigned at = 0; at < kAccounts; ++at) {
        sum += heightOf(*tx, account(at));
    }
    if (sum != kSum) {
        violations.push_back("the sum of the accounts is " + std::to_string(sum));
    }
    const std::uint64_t fans = tx->count(kRack, "Fan");
    if (fans < 1 || fans > 2) {
        violations.push_back("there are " + std::to_string(fans) + " bounded objects");
    }
    return violations;
}

std::vector<std::string> Mixture::problems(CommitLog& log, const LogMark& start,
                                           const std::vector<std::string>& acknowledged) {
    MoStore loaded(sampleStoreModel());
    loaded.attach(log);
    MoStore replayed(sampleStoreModel());
    load(replayed);
    ReplayLog replay(log, start);
    replayed.attach(replay);
    // The server may still be at a commit of a host that was killed: both must have seen it.
    bool isEqual = false;
    for (int look = 0; look < 5 && !isEqual; ++look) {
        replayed.catchUp();
        loaded.catchUp();
        isEqual = contentOf(loaded) == contentOf(replayed);
    }
    std::vector<std::string> problems = violations(loaded, acknowledged);
    if (!isEqual) {
        problems.emplace_back("the objects are not those that the entries lead to");
    }
    return problems;
}

std::vector<std::string> linesOf(std::istream& text) {
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> contentOf(MoStore& store) {
    std::vector<std::string> lines;
    appendBelow(*store.begin(1), store.model(), "", lines);
    return lines;
}

}
