// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AssociationAudit.h"

#include "InstanceChecker.h"

#include <algorithm>

namespace OrvHost {

namespace {

bool isOfAssociation(const InstanceProblem& problem) {
    switch (problem.kind) {
    case InstanceProblemKind::WrongCardinality:
    case InstanceProblemKind::NoTargetClass:
    case InstanceProblemKind::ForbiddenClass:
    case InstanceProblemKind::NoTarget:
    case InstanceProblemKind::RepeatedTarget:
    case InstanceProblemKind::MissingBackPointer:
        return true;
    case InstanceProblemKind::NoClass:
    case InstanceProblemKind::RepeatedObject:
    case InstanceProblemKind::NoParent:
    case InstanceProblemKind::WrongNumber:
    case InstanceProblemKind::NoAttribute:
    case InstanceProblemKind::WrongCount:
    case InstanceProblemKind::WrongChoice:
        return false;
    }
    return false;
}

}

std::vector<InstanceProblem> auditAssociations(const Model& model, const InstanceSource& source) {
    std::vector<InstanceProblem> problems = InstanceChecker(model).check(source).problems;
    problems.erase(std::remove_if(problems.begin(), problems.end(),
                                  [](const auto& problem) { return !isOfAssociation(problem); }),
                   problems.end());
    return problems;
}

}
