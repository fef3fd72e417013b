// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_AUDIT_ASSOCIATIONAUDIT_H
#define ORV_HOST_AUDIT_ASSOCIATIONAUDIT_H

#include "InstanceReport.h"
#include "InstanceSource.h"
#include "model/Model.h"

#include <vector>

namespace OrvHost {

/// Recounts all associations of the objects that `source` shows, and reports what is wrong with
/// them: references to missing objects or to classes that are not permitted, references that are
/// not named back, and counts that are out of bounds. Nothing else is checked, so a source need not
/// show more than the reference attributes, and it need not show all objects above an object.
///
/// The objects can be anywhere: in data, in a store, or read by a client. All DNs must have the
/// same form, internal or external. For the audit, an object that is referred to and not shown does
/// not exist.
///
/// Cost as InstanceChecker. Any thread; nothing is kept.
std::vector<InstanceProblem> auditAssociations(const Model& model, const InstanceSource& source);

}

#endif
