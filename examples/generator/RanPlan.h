// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXAMPLES_GENERATOR_RANPLAN_H
#define ORV_EXAMPLES_GENERATOR_RANPLAN_H

#include <cstdint>

namespace RanGenerator {

/// How many cells share which parts. Cells are numbered from 0 through the whole network.
constexpr std::uint32_t kCellsPerSector = 3;
constexpr std::uint32_t kSectorsPerDu = 4;
constexpr std::uint32_t kCellsPerDu = kCellsPerSector * kSectorsPerDu;
constexpr std::uint32_t kDusPerCu = 250;
constexpr std::uint32_t kCellsPerCu = kCellsPerDu * kDusPerCu;
constexpr std::uint32_t kNeighbours = 6;    ///< of a cell, if its central unit has enough cells
constexpr std::uint32_t kFrequencies = 3;   ///< of a central unit
constexpr std::uint32_t kExternalCells = 4; ///< of a central unit

constexpr std::uint32_t kFewestObjects = 10;
constexpr std::uint32_t kMostObjects = 1000000;

/// The parts of a network with a given number of objects. A network with room for only one cell has
/// none or only some of the optional parts; in a larger one, the rest of the objects becomes cells
/// of the neighbouring base station.
struct RanPlan {
    std::uint32_t cells = 1;
    std::uint32_t frequencies = kFrequencies;
    bool hasBaseband = true; ///< a cabinet and a baseband unit for each distributed unit
    bool hasCables = true;   ///< one for each radio unit; only with a baseband
    bool hasAntennas = true; ///< an antenna unit with two antennas for each sector
    bool hasFreqRelations = true;
    bool hasExternals = true;             ///< a neighbouring base station for each central unit
    std::uint32_t extraExternalCells = 0; ///< of the last central unit

    std::uint32_t sectors() const { return divideUp(cells, kCellsPerSector); }
    std::uint32_t distributedUnits() const { return divideUp(cells, kCellsPerDu); }
    std::uint32_t centralUnits() const { return divideUp(cells, kCellsPerCu); }

    /// The cells of the central unit with that number.
    std::uint32_t cellsOfCu(std::uint32_t cu) const;
    /// The number of neighbours of each cell, if one central unit has that many cells.
    static std::uint32_t neighboursAmong(std::uint32_t cellsOfOneCu);

    /// The number of objects.
    std::uint64_t size() const;

    /// The plan for exactly that many objects, from kFewestObjects to kMostObjects.
    static RanPlan forSize(std::uint32_t objects);

private:
    static std::uint32_t divideUp(std::uint32_t number, std::uint32_t divisor) {
        return (number + divisor - 1) / divisor;
    }
    std::uint64_t sizeOfCu(std::uint32_t cellsOfOneCu) const;
};

}

#endif
