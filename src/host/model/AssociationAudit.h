// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_ASSOCIATIONAUDIT_H
#define ORV_HOST_MODEL_ASSOCIATIONAUDIT_H

#include "InstanceReport.h"
#include "InstanceSource.h"
#include "Model.h"

#include <vector>

namespace OrvHost {

/// Recounts all associations of the objects that `source` shows, and tells what is wrong with them:
/// references that lead nowhere or to a class that is not permitted, those that are not named back,
/// and numbers that are out of bounds. Nothing else is judged, so that a source need not show more
/// than the reference attributes, nor all objects above one.
///
/// It does not matter where the objects are: in data, in a store, or read by a client. All DNs must
/// be of one form, internal or external. An object that is referred to and not shown does not exist
/// for the audit.
///
/// Cost as InstanceChecker. Any thread; nothing is kept.
std::vector<InstanceProblem> auditAssociations(const Model& model, const InstanceSource& source);

}

#endif
