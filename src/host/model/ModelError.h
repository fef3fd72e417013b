// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_MODELERROR_H
#define ORV_HOST_MODEL_MODELERROR_H

#include "base/Problem.h"

namespace OrvHost {

/// A model that cannot be used, with all its problems.
class ModelError : public ProblemsError {
public:
    using ProblemsError::ProblemsError;
};

}

#endif
