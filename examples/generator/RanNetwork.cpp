// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RanNetwork.h"

#include "base/DnView.h"

#include <algorithm>
#include <set>

namespace RanGenerator {
namespace {

const std::string kElement = "ManagedElement=1";
const std::string kEquipment = kElement + ",Equipment=1";
constexpr std::uint32_t kFirstChannel = 620000;

std::string numbered(const std::string& parent, const char* className, std::uint64_t number) {
    return OrvHost::DnView(parent).child(className, std::to_string(number));
}

// The generator counts from 0, but values in DNs count from 1, as people do.

std::string duDn(std::uint32_t du) {
    return numbered(kElement, "GNBDUFunction", du + 1);
}

std::string cuDn(std::uint32_t cu) {
    return numbered(kElement, "GNBCUCPFunction", cu + 1);
}

std::string cellDuDn(std::uint32_t cell) {
    return numbered(duDn(cell / kCellsPerDu), "NRCellDU", cell % kCellsPerDu + 1);
}

std::string carrierDn(std::uint32_t cell) {
    return numbered(duDn(cell / kCellsPerDu), "NRSectorCarrier", cell % kCellsPerDu + 1);
}

std::string cellCuDn(std::uint32_t cell) {
    return numbered(cuDn(cell / kCellsPerCu), "NRCellCU", cell % kCellsPerCu + 1);
}

std::string frequencyDn(std::uint32_t cu, std::uint32_t number) {
    return numbered(cuDn(cu), "NRFrequency", kFirstChannel + number * 1000);
}

std::string externalDn(std::uint32_t cu) {
    return numbered(cuDn(cu), "ExternalGNBCUCPFunction", 1);
}

std::string externalCellDn(std::uint32_t cu, std::uint32_t number) {
    return numbered(externalDn(cu), "ExternalNRCellCU", number + 1);
}

std::string cabinetDn(std::uint32_t du) {
    return numbered(kEquipment, "Cabinet", du + 1);
}

std::string basebandDn(std::uint32_t du) {
    return numbered(kEquipment, "BasebandUnit", du + 1);
}

std::string sectorDn(std::uint32_t sector) {
    return numbered(kEquipment, "Sector", sector + 1);
}

std::string radioUnitDn(std::uint32_t sector) {
    return numbered(kEquipment, "RadioUnit", sector + 1);
}

std::string antennaUnitDn(std::uint32_t sector) {
    return numbered(kEquipment, "AntennaUnit", sector + 1);
}

std::string antennaDn(std::uint32_t sector, std::uint32_t number) {
    return numbered(antennaUnitDn(sector), "Antenna", number + 1);
}

/// Scatters a number over 64 bits (the finaliser of splitmix64). The generators of the standard
/// library keep a state, and with them an object would depend on those made before it.
std::uint64_t scatter(std::uint64_t number) {
    number += 0x9E3779B97F4A7C15ULL;
    number = (number ^ (number >> 30U)) * 0xBF58476D1CE4E5B9ULL;
    number = (number ^ (number >> 27U)) * 0x94D049BB133111EBULL;
    return number ^ (number >> 31U);
}

/// `number` moved by `step` within 0 to `size` - 1, with wrap-around.
std::uint32_t beside(std::uint32_t number, int step, std::uint32_t size) {
    const auto length = static_cast<std::int64_t>(size);
    const std::int64_t moved = static_cast<std::int64_t>(number) + step;
    return static_cast<std::uint32_t>((moved % length + length) % length);
}

ObjectMaker plmn() {
    return members().text("mcc", "240").text("mnc", "01");
}

}

void RanNetwork::put(const Sink& sink, ObjectMaker& maker) const {
    sink(maker.take());
}

std::uint64_t RanNetwork::random(const char* what, std::uint64_t number,
                                 std::uint64_t below) const {
    std::uint64_t mixed = scatter(mSeed);
    for (const char* c = what; *c != '\0'; ++c) {
        mixed = scatter(mixed ^ static_cast<unsigned char>(*c));
    }
    return scatter(mixed ^ number) % below;
}

std::uint32_t RanNetwork::cellsOfSector(std::uint32_t sector) const {
    return std::min(kCellsPerSector, mPlan.cells - sector * kCellsPerSector);
}

std::uint32_t RanNetwork::sectorsOfDu(std::uint32_t du) const {
    return std::min(kSectorsPerDu, mPlan.sectors() - du * kSectorsPerDu);
}

std::uint32_t RanNetwork::sectorBeside(std::uint32_t sector, int step) const {
    const std::uint32_t first = sector - sector % kSectorsPerDu;
    return first + beside(sector - first, step, sectorsOfDu(sector / kSectorsPerDu));
}

std::uint32_t RanNetwork::cellBeside(std::uint32_t cell, int step) const {
    const std::uint32_t first = cell - cell % kCellsPerSector;
    return first + beside(cell - first, step, cellsOfSector(cell / kCellsPerSector));
}

/// The cells next to this one on either side, in the circle of its central unit's cells. The
/// relation is symmetric: each neighbour has this cell as its neighbour.
std::vector<std::uint32_t> RanNetwork::neighboursOf(std::uint32_t cell) const {
    const std::uint32_t cu = cell / kCellsPerCu;
    const std::uint32_t first = cu * kCellsPerCu;
    const std::uint32_t size = mPlan.cellsOfCu(cu);
    std::set<std::uint32_t> found;
    const int reach = static_cast<int>(kNeighbours / 2);
    for (int step = -reach; step <= reach; ++step) {
        const std::uint32_t neighbour = first + beside(cell - first, step, size);
        if (neighbour != cell) {
            found.insert(neighbour);
        }
    }
    return {found.begin(), found.end()};
}

void RanNetwork::generate(const Sink& sink) const {
    element(sink);
    for (std::uint32_t du = 0; du < mPlan.distributedUnits(); ++du) {
        distributedUnit(sink, du);
    }
    for (std::uint32_t cu = 0; cu < mPlan.centralUnits(); ++cu) {
        centralUnit(sink, cu);
    }
    equipment(sink);
}

void RanNetwork::element(const Sink& sink) const {
    ObjectMaker maker(kElement);
    maker.text("networkManagedElementId", "gnb-" + std::to_string(mSeed))
        .text("userLabel", "Generated network")
        .choice("elementType", "GNB")
        .structs("location",
                 {members()
                      .decimal("latitude",
                               static_cast<double>(50000000 + random("lat", 0, 8000000)) / 1e6)
                      .decimal("longitude",
                               static_cast<double>(5000000 + random("lon", 0, 9000000)) / 1e6)
                      .number("altitude", static_cast<std::int64_t>(random("alt", 0, 900)))})
        .text("softwareVersion", "1.0." + std::to_string(random("software", 0, 100)))
        .count("uptime", random("uptime", 0, 10000000));
    put(sink, maker);
}

void RanNetwork::distributedUnit(const Sink& sink, std::uint32_t du) const {
    const std::uint32_t cu = du / kDusPerCu;
    ObjectMaker maker(duDn(du));
    maker.text("userLabel", "Distributed unit " + std::to_string(du + 1))
        .count("gNBId", 1000 + cu)
        .count("gNBIdLength", 24)
        .count("gNBDUId", du + 1)
        .reference("gNBCUCPFunctionRef", cuDn(cu));
    put(sink, maker);
    const std::uint32_t first = du * kCellsPerDu;
    const std::uint32_t end = std::min(first + kCellsPerDu, mPlan.cells);
    for (std::uint32_t cell = first; cell < end; ++cell) {
        cellOfDu(sink, cell);
    }
    for (std::uint32_t cell = first; cell < end; ++cell) {
        carrier(sink, cell);
    }
}

void RanNetwork::cellOfDu(const Sink& sink, std::uint32_t cell) const {
    std::vector<std::string> carriers{carrierDn(cell)};
    if (cellBeside(cell, 1) != cell) {
        carriers.push_back(carrierDn(cellBeside(cell, 1)));
    }
    ObjectMaker maker(cellDuDn(cell));
    maker.text("userLabel", "Cell " + std::to_string(cell + 1))
        .choice("administrativeState", random("locked", cell, 20) == 0 ? "LOCKED" : "UNLOCKED")
        .choice("operationalState", "ENABLED")
        .count("cellLocalId", cell % kCellsPerCu)
        .count("nRPCI", random("pci", cell, 1008))
        .count("nRTAC", 100 + cell / kCellsPerDu)
        .structs("pLMNIdList", {plmn()})
        .reference("nRCellCURef", cellCuDn(cell))
        .references("nRSectorCarrierRef", std::move(carriers));
    put(sink, maker);
}

void RanNetwork::carrier(const Sink& sink, std::uint32_t cell) const {
    const std::uint32_t sector = cell / kCellsPerSector;
    std::vector<std::string> cells{cellDuDn(cell)};
    if (cellBeside(cell, -1) != cell) {
        cells.push_back(cellDuDn(cellBeside(cell, -1)));
    }
    const auto azimuth = random("azimuth", sector, 360);
    ObjectMaker maker(carrierDn(cell));
    maker.choice("administrativeState", "UNLOCKED")
        .choice("operationalState", "ENABLED")
        .count("arfcnDL", kFirstChannel + cell % kFrequencies * 1000)
        .count("bSChannelBwDL", 100)
        .number("configuredMaxTxPower", 40000)
        .references("nRCellDURef", std::move(cells))
        .reference("sectorRef", sectorDn(sector));
    if (mPlan.hasAntennas) {
        maker.structs("beam", {members()
                                   .count("index", 0)
                                   .reference("antennaRef", antennaDn(sector, 0))
                                   .count("azimuth", azimuth)
                                   .number("tilt", 4)});
    }
    put(sink, maker);
}

void RanNetwork::centralUnit(const Sink& sink, std::uint32_t cu) const {
    const std::uint32_t firstDu = cu * kDusPerCu;
    std::vector<std::string> units;
    for (std::uint32_t du = firstDu; du < std::min(firstDu + kDusPerCu, mPlan.distributedUnits());
         ++du) {
        units.push_back(duDn(du));
    }
    ObjectMaker maker(cuDn(cu));
    maker.text("userLabel", "Central unit " + std::to_string(cu + 1))
        .count("gNBId", 1000 + cu)
        .structs("pLMNId", {plmn()})
        .references("gNBDUFunctionRef", std::move(units));
    put(sink, maker);
    const std::uint32_t firstCell = cu * kCellsPerCu;
    for (std::uint32_t cell = firstCell; cell < firstCell + mPlan.cellsOfCu(cu); ++cell) {
        cellOfCu(sink, cell);
    }
    for (std::uint32_t number = 0; number < mPlan.frequencies; ++number) {
        frequency(sink, cu, number);
    }
    if (mPlan.hasExternals) {
        externals(sink, cu);
    }
}

void RanNetwork::frequency(const Sink& sink, std::uint32_t cu, std::uint32_t number) const {
    ObjectMaker maker(frequencyDn(cu, number));
    maker.count("absoluteFrequencySSB", kFirstChannel + number * 1000)
        .choice("sSBSubCarrierSpacing", "KHZ30")
        .counts("multiFrequencyBandList", {77, 78});
    put(sink, maker);
}

void RanNetwork::cellOfCu(const Sink& sink, std::uint32_t cell) const {
    const std::uint32_t cu = cell / kCellsPerCu;
    std::vector<std::string> neighbours;
    for (const std::uint32_t neighbour : neighboursOf(cell)) {
        neighbours.push_back(cellCuDn(neighbour));
    }
    const std::string own = cellCuDn(cell);
    const std::string channel = frequencyDn(cu, cell % std::min(mPlan.frequencies, kFrequencies));
    ObjectMaker maker(own);
    maker.text("userLabel", "Cell " + std::to_string(cell + 1))
        .count("cellLocalId", cell % kCellsPerCu)
        .reference("nRCellDURef", cellDuDn(cell))
        .references("neighbourCellRef", neighbours)
        .references("neighbourOfRef", neighbours)
        .reference("nRFrequencyRef", channel)
        .texts("mobilityEvent", {"A3", "A5"})
        .count("connectedUsers", random("users", cell, 400));
    put(sink, maker);
    std::uint32_t number = 0;
    for (const std::string& neighbour : neighbours) {
        cellRelation(sink, cell, ++number, neighbour);
    }
    if (mPlan.hasExternals && cell % kCellsPerCu == 0) {
        cellRelation(sink, cell, ++number, externalCellDn(cu, 0));
    }
    if (mPlan.hasFreqRelations) {
        ObjectMaker relation(numbered(own, "NRFreqRelation", 1));
        relation.reference("nRFrequencyRef", channel)
            .count("cellReselectionPriority", random("priority", cell, 8))
            .number("qRxLevMin", -120);
        put(sink, relation);
    }
}

void RanNetwork::cellRelation(const Sink& sink, std::uint32_t cell, std::uint32_t number,
                              const std::string& adjacent) const {
    const std::string own = cellCuDn(cell);
    ObjectMaker maker(numbered(own, "NRCellRelation", number));
    maker.reference("adjacentNRCellRef", adjacent);
    if (mPlan.hasFreqRelations) {
        maker.reference("nRFreqRelationRef", numbered(own, "NRFreqRelation", 1));
    }
    const std::uint64_t offset = random("offset", cell * std::uint64_t{64} + number, 49);
    maker.flag("isHOAllowed", true)
        .structs("cellIndividualOffset",
                 {members().number("rsrpOffsetSSB", static_cast<std::int64_t>(offset) - 24)});
    put(sink, maker);
}

void RanNetwork::externals(const Sink& sink, std::uint32_t cu) const {
    ObjectMaker neighbour(externalDn(cu));
    neighbour.text("userLabel", "Across the river").count("gNBId", 900000 + cu);
    put(sink, neighbour);
    const bool isLast = cu + 1 == mPlan.centralUnits();
    const std::uint32_t cells = kExternalCells + (isLast ? mPlan.extraExternalCells : 0);
    for (std::uint32_t number = 0; number < cells; ++number) {
        ObjectMaker maker(externalCellDn(cu, number));
        maker.count("cellLocalId", number)
            .count("nRPCI", random("external", number, 1008))
            .reference("nRFrequencyRef", frequencyDn(cu, 0));
        put(sink, maker);
    }
}

void RanNetwork::equipment(const Sink& sink) const {
    ObjectMaker maker(kEquipment);
    put(sink, maker);
    for (std::uint32_t du = 0; mPlan.hasBaseband && du < mPlan.distributedUnits(); ++du) {
        baseband(sink, du);
    }
    for (std::uint32_t number = 0; number < mPlan.sectors(); ++number) {
        sector(sink, number);
        radioUnit(sink, number);
        if (mPlan.hasAntennas) {
            antennaUnit(sink, number);
        }
        if (mPlan.hasCables) {
            cable(sink, number);
        }
    }
}

void RanNetwork::baseband(const Sink& sink, std::uint32_t du) const {
    ObjectMaker cabinet(cabinetDn(du));
    cabinet.text("userLabel", "Cabinet " + std::to_string(du + 1))
        .choice("climate", random("climate", du, 2) == 0 ? "INDOOR" : "OUTDOOR");
    put(sink, cabinet);
    ObjectMaker unit(basebandDn(du));
    unit.choice("administrativeState", "UNLOCKED")
        .choice("operationalState", "ENABLED")
        .text("serialNumber", "B" + std::to_string(random("baseband", du, 1000000000)))
        .reference("cabinetRef", cabinetDn(du));
    // Two units form a pair: each is the standby of the other.
    const std::uint32_t other = du % 2 == 0 ? du + 1 : du - 1;
    if (other < mPlan.distributedUnits()) {
        unit.reference("standbyRef", basebandDn(other))
            .reference("standbyForRef", basebandDn(other));
    }
    put(sink, unit);
}

void RanNetwork::sector(const Sink& sink, std::uint32_t sector) const {
    ObjectMaker maker(sectorDn(sector));
    maker.text("userLabel", "Sector " + std::to_string(sector + 1))
        .count("azimuth", random("azimuth", sector, 360))
        .references("radioUnitRef", {radioUnitDn(sector)});
    put(sink, maker);
}

void RanNetwork::radioUnit(const Sink& sink, std::uint32_t sector) const {
    ObjectMaker maker(radioUnitDn(sector));
    maker.choice("administrativeState", "UNLOCKED")
        .choice("operationalState", "ENABLED")
        .text("serialNumber", "R" + std::to_string(random("radio", sector, 1000000000)))
        .number("temperature", 20 + static_cast<std::int64_t>(random("heat", sector, 40)))
        .reference("sectorRef", sectorDn(sector));
    if (mPlan.hasAntennas) {
        std::vector<std::string> antennas{antennaDn(sector, 0), antennaDn(sector, 1)};
        if (sectorBeside(sector, 1) != sector) {
            antennas.push_back(antennaDn(sectorBeside(sector, 1), 0));
        }
        maker.references("antennaRef", std::move(antennas));
    }
    put(sink, maker);
}

void RanNetwork::antennaUnit(const Sink& sink, std::uint32_t sector) const {
    ObjectMaker unit(antennaUnitDn(sector));
    unit.decimal("mechanicalTilt", static_cast<double>(random("tilt", sector, 80)) / 10);
    put(sink, unit);
    for (std::uint32_t number = 0; number < 2; ++number) {
        std::vector<std::string> radioUnits{radioUnitDn(sector)};
        if (number == 0 && sectorBeside(sector, -1) != sector) {
            radioUnits.push_back(radioUnitDn(sectorBeside(sector, -1)));
        }
        ObjectMaker antenna(antennaDn(sector, number));
        antenna.choice("polarization", "CROSS")
            .number("electricalTilt", static_cast<std::int64_t>(random("etilt", sector, 100)))
            .references("radioUnitRef", std::move(radioUnits));
        put(sink, antenna);
    }
}

void RanNetwork::cable(const Sink& sink, std::uint32_t sector) const {
    const std::uint32_t du = sector / kSectorsPerDu;
    ObjectMaker maker(numbered(kEquipment, "CableLink", sector + 1));
    maker.choice("medium", "FIBRE")
        .structs("endA",
                 {members()
                      .reference("unitRef", basebandDn(du))
                      .text("port", "A" + std::to_string(sector % kSectorsPerDu))
                      .structs("place", {members().reference("cabinetRef", cabinetDn(du))})})
        .structs("endB", {members()
                              .reference("unitRef", radioUnitDn(sector))
                              .text("port", "D1")
                              .structs("place", {members().decimal("height", 30)})});
    put(sink, maker);
}

}
