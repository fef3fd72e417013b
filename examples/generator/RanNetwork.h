// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXAMPLES_GENERATOR_RANNETWORK_H
#define ORV_EXAMPLES_GENERATOR_RANNETWORK_H

#include "ObjectMaker.h"
#include "RanPlan.h"
#include "yang/instances/DataObject.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace RanGenerator {

/// Makes the objects of a network, parents first. Each object follows from its number alone, so
/// nothing is kept, and both sides of every association agree. The same plan and seed give the same
/// objects on every machine.
class RanNetwork {
public:
    using Sink = std::function<void(const OrvHost::DataObject& object)>;

    RanNetwork(const RanPlan& plan, std::uint64_t seed) : mPlan(plan), mSeed(seed) {}

    void generate(const Sink& sink) const;

private:
    void put(const Sink& sink, ObjectMaker& maker) const;
    std::uint64_t random(const char* what, std::uint64_t number, std::uint64_t below) const;

    void element(const Sink& sink) const;
    void distributedUnit(const Sink& sink, std::uint32_t du) const;
    void cellOfDu(const Sink& sink, std::uint32_t cell) const;
    void carrier(const Sink& sink, std::uint32_t cell) const;
    void centralUnit(const Sink& sink, std::uint32_t cu) const;
    void frequency(const Sink& sink, std::uint32_t cu, std::uint32_t number) const;
    void cellOfCu(const Sink& sink, std::uint32_t cell) const;
    void cellRelation(const Sink& sink, std::uint32_t cell, std::uint32_t number,
                      const std::string& adjacent) const;
    void externals(const Sink& sink, std::uint32_t cu) const;
    void equipment(const Sink& sink) const;
    void baseband(const Sink& sink, std::uint32_t du) const;
    void sector(const Sink& sink, std::uint32_t sector) const;
    void radioUnit(const Sink& sink, std::uint32_t sector) const;
    void antennaUnit(const Sink& sink, std::uint32_t sector) const;
    void cable(const Sink& sink, std::uint32_t sector) const;

    std::uint32_t cellsOfSector(std::uint32_t sector) const;
    std::uint32_t sectorsOfDu(std::uint32_t du) const;
    /// The sector `step` places further among those of the same distributed unit, with wrap-around.
    std::uint32_t sectorBeside(std::uint32_t sector, int step) const;
    /// The same for the cells of one sector.
    std::uint32_t cellBeside(std::uint32_t cell, int step) const;
    std::vector<std::uint32_t> neighboursOf(std::uint32_t cell) const;

    RanPlan mPlan;
    std::uint64_t mSeed;
};

}

#endif
