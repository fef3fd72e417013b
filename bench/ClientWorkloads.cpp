// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "HostWorkloads.h"
#include "HostWorld.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace OrvBench {

namespace {

// The same numbers in the same disorder in each run.
std::vector<int> inDisorder(int size) {
    std::vector<int> numbers(static_cast<std::size_t>(size));
    std::iota(numbers.begin(), numbers.end(), 0);
    std::shuffle(numbers.begin(), numbers.end(), std::mt19937(1)); // NOLINT(cert-msc51-cpp)
    return numbers;
}

Value3 toMast(int number) {
    return Value3::references({HostWorld::mast(number)});
}

Value3 toMasts(int first, int count) {
    std::vector<std::string> dns;
    for (int number = first; number < first + count; ++number) {
        dns.push_back(HostWorld::mast(number));
    }
    return Value3::references(std::move(dns));
}

void read(const std::string& component, int size, const Meter& measure) {
    constexpr int kReads = 20000;
    HostShape shape;
    shape.antennaCount = size;
    HostWorld world(component, shape);
    std::vector<std::string> dns;
    for (const int number : inDisorder(size)) {
        dns.push_back(HostWorld::antenna(number));
    }
    const unsigned long tx = world.begin();
    std::size_t letters = 0;
    measure("get", kReads, [&] {
        for (std::size_t at = 0; at < kReads; ++at) {
            OrvMoAttributeValueResult_3 result{};
            world.table().getMoAttribute(tx, dns[at % dns.size()].c_str(), "label", &result);
            letters += std::string_view(result.container->values[0].string).size();
            result.release(result.container);
        }
    });
    require(letters > kReads, "labels");
    world.abort(tx);
}

void setReference(const std::string& component, int size, const Meter& measure) {
    HostShape shape;
    shape.antennaCount = shape.mastCount = size;
    HostWorld world(component, shape);
    const std::vector<int> order = inDisorder(size);
    std::vector<std::string> dns;
    std::vector<Value3> values;
    for (const int number : order) {
        dns.push_back(HostWorld::antenna(number));
        values.push_back(toMast(number));
    }
    measure("set, commit", size, [&] {
        const unsigned long tx = world.begin();
        for (std::size_t at = 0; at < dns.size(); ++at) {
            world.set(tx, dns[at], "masts", values[at]);
        }
        world.commit(tx);
    });
    const unsigned long tx = world.begin();
    require(world.texts(tx, HostWorld::mast(size / 2), "antennas") ==
                std::vector{HostWorld::antenna(size / 2)},
            "reference back");
    world.abort(tx);
}

void setMany(const std::string& component, int size, const Meter& measure) {
    HostShape shape;
    shape.antennaCount = 1;
    shape.mastCount = 2 * size;
    HostWorld world(component, shape);
    const std::string antenna = HostWorld::antenna(0);
    const auto write = [&](const Value3& value) {
        const unsigned long tx = world.begin();
        world.set(tx, antenna, "masts", value);
        world.commit(tx);
    };
    const Value3 first = toMasts(0, size);
    const Value3 second = toMasts(size / 2, size);
    measure("set all, commit", size, [&] { write(first); });
    measure("replace half, commit", size, [&] { write(second); });
    const unsigned long tx = world.begin();
    require(world.texts(tx, HostWorld::mast(0), "antennas").empty(), "reference back");
    require(world.texts(tx, HostWorld::mast(size), "antennas").size() == 1, "reference back");
    world.abort(tx);
}

void createWithReference(const std::string& component, int size, const Meter& measure) {
    HostShape shape;
    shape.masts = {1, 1};
    shape.antennas = {0, 1};
    HostWorld world(component, shape);
    std::vector<std::string> names;
    std::vector<NamedValues> values(static_cast<std::size_t>(size));
    for (int number = 0; number < size; ++number) {
        names.push_back(std::to_string(number));
        values[static_cast<std::size_t>(number)].add("masts", toMast(number));
    }
    const auto& table = world.table();
    measure("create 2, commit", size, [&] {
        const unsigned long tx = world.begin();
        for (std::size_t at = 0; at < names.size(); ++at) {
            table.createMo(tx, HostWorld::site().c_str(), "Antenna", "antennaId", names[at].c_str(),
                           values[at].list());
        }
        for (const std::string& name : names) {
            table.createMo(tx, "ManagedElement=1", "Mast", "mastId", name.c_str(), nullptr);
        }
        world.commit(tx);
    });
    const unsigned long tx = world.begin();
    require(world.texts(tx, HostWorld::mast(size - 1), "antennas").size() == 1, "reference back");
    world.abort(tx);
}

void deleteSubtree(const std::string& component, int size, const Meter& measure) {
    HostShape shape;
    shape.antennaCount = shape.mastCount = size;
    shape.areMounted = true;
    HostWorld world(component, shape);
    measure("delete, commit", size, [&] {
        const unsigned long tx = world.begin();
        require(world.table().deleteMo(tx, HostWorld::site().c_str()) == OrvOk, "deleteMo");
        world.commit(tx);
    });
    const unsigned long tx = world.begin();
    require(world.texts(tx, HostWorld::mast(0), "antennas").empty(), "reference back");
    world.abort(tx);
}

void validate(const std::string& component, int size, const Meter& measure) {
    HostShape shape;
    shape.masts = {1, 1};
    shape.antennas = {0, 4};
    shape.antennaCount = shape.mastCount = size;
    shape.areMounted = true;
    HostWorld world(component, shape);
    const unsigned long tx = world.begin();
    for (const int number : inDisorder(size)) {
        world.set(tx, HostWorld::antenna(number), "masts", toMast((number + 1) % size));
    }
    measure("validate, commit", size, [&] { world.commit(tx); });
    const unsigned long wrong = world.begin();
    world.set(wrong, HostWorld::antenna(0), "masts", Value3::references({}));
    require(!world.host().transactions().validate(wrong).accepted, "verdict");
    world.abort(wrong);
}

}

std::vector<HostWorkload> clientWorkloads() {
    return {{"W1 read a text by DN", {10000}, read},
            {"W2 set a reference", {1000}, setReference},
            {"W3 set many references", {1000}, setMany},
            {"W4 create with a reference", {1000}, createWithReference},
            {"W5 delete a subtree", {1000}, deleteSubtree},
            {"W6 validate a changed reference", {1000}, validate}};
}

}
