// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InstanceReport.h"

namespace OrvHost {

bool isOfAssociation(InstanceProblemKind kind) {
    switch (kind) {
    case InstanceProblemKind::NoReference:
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
