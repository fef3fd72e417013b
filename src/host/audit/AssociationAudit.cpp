// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AssociationAudit.h"

#include "InstanceChecker.h"

#include <algorithm>

namespace OrvHost {

std::vector<InstanceProblem> auditAssociations(const Model& model, const InstanceSource& source) {
    std::vector<InstanceProblem> problems = InstanceChecker(model).check(source).problems;
    problems.erase(
        std::remove_if(problems.begin(), problems.end(),
                       [](const auto& problem) { return !isOfAssociation(problem.kind); }),
        problems.end());
    return problems;
}

}
