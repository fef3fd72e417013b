// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_INSTANCEDATAERROR_H
#define ORV_HOST_YANG_INSTANCES_INSTANCEDATAERROR_H

#include "base/Problem.h"

namespace OrvHost {

/// Instance data that cannot be read or written, with all problems.
class InstanceDataError : public ProblemsError {
public:
    using ProblemsError::ProblemsError;
};

}

#endif
