// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_RULES_YANGRULES_H
#define ORV_HOST_YANG_RULES_YANGRULES_H

#include "model/RuleCheck.h"
#include "yang/schema/YangSchema.h"

#include <memory>

namespace OrvHost {

/// The rules of the modules that the model does not represent; null if there are none. They are
/// judged by the YANG library on trees of the touched objects, their ancestors and, for expressions
/// that ask about other objects, of those.
std::shared_ptr<const RuleCheck> rulesOf(std::shared_ptr<const YangSchema> schema);

}

#endif
