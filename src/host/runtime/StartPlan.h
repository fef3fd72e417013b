// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_RUNTIME_STARTPLAN_H
#define ORV_HOST_RUNTIME_STARTPLAN_H

#include "OrvMgmtSpiComponent_1.h"
#include "OrvMgmtSpiInterface_1.h"

#include <cstddef>
#include <string>
#include <vector>

namespace OrvHost {

/// One component in the order of starting.
struct StartStep {
    std::size_t component = 0;          ///< position in the list that the plan was made from
    std::vector<std::size_t> providers; ///< the components that must be started before this one
    std::string problem;                ///< not empty: why this component cannot be started
};

/// Puts components into an order in which each comes after those whose interfaces it requires.
///
/// A requirement is met by a table of the host, or else by the component itself, or else by the
/// first other component that offers it. A null field of a requirement matches anything.
class StartPlan {
public:
    /// Keeps nothing of the arguments except in the texts of problems.
    StartPlan(const std::vector<const VekMgmtSpiInterface_1*>& hostTables,
              const std::vector<const OrvMgmtSpiComponent_1*>& components);

    /// One step for each component. Components with a problem are in the list as well, before those
    /// that depend on them.
    const std::vector<StartStep>& steps() const { return mSteps; }

private:
    enum class Mark { New, Open, Done };

    void visit(std::size_t component);
    void require(StartStep& step, const VekMgmtSpiInterface_1& wanted);
    bool hostOffers(const VekMgmtSpiInterface_1& wanted) const;
    std::size_t findProvider(std::size_t component, const VekMgmtSpiInterface_1& wanted) const;
    void reportCycle(std::size_t first);

    const std::vector<const VekMgmtSpiInterface_1*>& mHostTables;
    const std::vector<const OrvMgmtSpiComponent_1*>& mComponents;
    std::vector<Mark> mMarks;
    std::vector<std::string> mCycles; ///< for each component, the cycle that it is part of
    std::vector<std::size_t> mPath;   ///< the components being visited, each requiring the next
    std::vector<StartStep> mSteps;
};

/// True if the null-terminated \p offers, which may be null, holds an interface that satisfies
/// \p wanted.
bool offersInterface(VekMgmtSpiInterface_1* const* offers, const VekMgmtSpiInterface_1& wanted);

}

#endif
