// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RanPlan.h"

#include <algorithm>

namespace RanGenerator {
namespace {

/// The network element and its equipment.
constexpr std::uint32_t kRoots = 2;

/// A plan without any optional part.
RanPlan barePlan() {
    RanPlan plan;
    plan.frequencies = 1;
    plan.hasBaseband = plan.hasCables = plan.hasAntennas = false;
    plan.hasFreqRelations = plan.hasExternals = false;
    return plan;
}

/// Replaces `plan` by `next` if that is not too large.
void growTo(RanPlan& plan, const RanPlan& next, std::uint32_t objects) {
    if (next.size() <= objects) {
        plan = next;
    }
}

/// One cell, and as many optional parts as there is room for.
RanPlan smallPlan(std::uint32_t objects) {
    RanPlan plan = barePlan();
    for (bool RanPlan::*part : {&RanPlan::hasBaseband, &RanPlan::hasAntennas,
                                &RanPlan::hasFreqRelations, &RanPlan::hasExternals}) {
        RanPlan next = plan;
        next.*part = true;
        growTo(plan, next, objects);
    }
    if (plan.hasBaseband) {
        RanPlan next = plan;
        next.hasCables = true;
        growTo(plan, next, objects);
    }
    return plan;
}

/// As many cells as there is room for, all with every part.
RanPlan largePlan(std::uint32_t objects) {
    RanPlan plan;
    std::uint32_t tooMany = objects;
    while (tooMany - plan.cells > 1) {
        RanPlan next;
        next.cells = plan.cells + (tooMany - plan.cells) / 2;
        if (next.size() <= objects) {
            plan = next;
        } else {
            tooMany = next.cells;
        }
    }
    return plan;
}

}

std::uint32_t RanPlan::cellsOfCu(std::uint32_t cu) const {
    return std::min(kCellsPerCu, cells - cu * kCellsPerCu);
}

std::uint32_t RanPlan::neighboursAmong(std::uint32_t cellsOfOneCu) {
    return std::min(kNeighbours, cellsOfOneCu - 1);
}

std::uint64_t RanPlan::sizeOfCu(std::uint32_t cellsOfOneCu) const {
    std::uint64_t size = 1 + frequencies;
    // The first cell has a relation to the neighbouring base station in addition.
    size += hasExternals ? 1 + kExternalCells + 1 : 0;
    const std::uint64_t perCell = 1 + (hasFreqRelations ? 1 : 0) + neighboursAmong(cellsOfOneCu);
    return size + cellsOfOneCu * perCell;
}

std::uint64_t RanPlan::size() const {
    std::uint64_t size = kRoots + extraExternalCells;
    size += std::uint64_t{2} * cells; // the cells and carriers of the distributed units
    size += std::uint64_t{distributedUnits()} * (hasBaseband ? 3U : 1U);
    // A sector and its radio unit, the antenna unit with its antennas, the cable.
    size += std::uint64_t{sectors()} * (2U + (hasAntennas ? 3U : 0U) + (hasCables ? 1U : 0U));
    for (std::uint32_t cu = 0; cu < centralUnits(); ++cu) {
        size += sizeOfCu(cellsOfCu(cu));
    }
    return size;
}

RanPlan RanPlan::forSize(std::uint32_t objects) {
    RanPlan plan = RanPlan().size() <= objects ? largePlan(objects) : smallPlan(objects);
    const auto left = objects - static_cast<std::uint32_t>(plan.size());
    if (plan.hasExternals) {
        plan.extraExternalCells = left;
    } else {
        plan.frequencies += left;
    }
    return plan;
}

}
