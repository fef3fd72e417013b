// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Cast.h"

#include "Values.h"
#include "base/DnView.h"

namespace Soak {

namespace {

enum : std::size_t { CellDu, Carrier, CellCu, Baseband, Radio, Sector, Antenna };

OrvHost::AttributeValue network() {
    return structure({{"mcc", text("240")}, {"mnc", text("01")}});
}

std::vector<Role> makeRoles() {
    std::vector<Role> all(Antenna + 1);
    all[CellDu] = {"NRCellDU",
                   "nRCellDUId",
                   "GNBDUFunction=*",
                   8,
                   {{"cellLocalId", natural(1)}, {"nRPCI", natural(2)}, {"pLMNIdList", network()}},
                   {{"nRCellCURef", "nRCellDURef", CellCu, 1, 1},
                    {"nRSectorCarrierRef", "nRCellDURef", Carrier, 3, 4}}};
    all[Carrier] = {"NRSectorCarrier",
                    "nRSectorCarrierId",
                    "GNBDUFunction=*",
                    8,
                    {{"arfcnDL", natural(620000)}},
                    {{"nRCellDURef", "nRSectorCarrierRef", CellDu, 3, 8}}};
    all[CellCu] = {"NRCellCU",
                   "nRCellCUId",
                   "GNBCUCPFunction=1",
                   8,
                   {{"cellLocalId", natural(3)}},
                   {{"nRCellDURef", "nRCellCURef", CellDu, 1, 1},
                    {"neighbourCellRef", "neighbourOfRef", CellCu, 4, 64},
                    {"neighbourOfRef", "neighbourCellRef", CellCu, 4, 64}}};
    all[Baseband] = {"BasebandUnit",
                     "basebandUnitId",
                     "Equipment=1",
                     6,
                     {},
                     {{"standbyRef", "standbyForRef", Baseband, 1, 1},
                      {"standbyForRef", "standbyRef", Baseband, 1, 1}}};
    all[Radio] = {"RadioUnit",
                  "radioUnitId",
                  "Equipment=1",
                  6,
                  {},
                  {{"sectorRef", "radioUnitRef", Sector, 1, 6, true},
                   {"antennaRef", "radioUnitRef", Antenna, 2, 2}}};
    all[Sector] = {"Sector",
                   "sectorId",
                   "Equipment=1",
                   4,
                   {{"azimuth", natural(120)}},
                   {{"radioUnitRef", "sectorRef", Radio, 2, 1}}};
    all[Antenna] = {"Antenna", "antennaId", "Equipment=1,AntennaUnit=*",
                    6,         {},          {{"radioUnitRef", "antennaRef", Radio, 2, 4}}};
    return all;
}

}

const std::vector<Role>& roles() {
    static const std::vector<Role> all = makeRoles();
    return all;
}

std::string Cast::parentOf(std::size_t role) const {
    std::string parent = kRoot + "," + roles()[role].parent;
    if (parent.back() == '*') {
        parent.pop_back();
        parent += mName;
    }
    return parent;
}

std::string Cast::dnOf(std::size_t role, std::size_t number) const {
    return OrvHost::DnView(parentOf(role)).child(roles()[role].className, nameOf(number));
}

}
