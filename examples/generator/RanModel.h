// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXAMPLES_GENERATOR_RANMODEL_H
#define ORV_EXAMPLES_GENERATOR_RANMODEL_H

#include "yang/schema/YangModelReader.h"

namespace RanGenerator {

/// The example's model, from the modules that were compiled in.
OrvHost::YangModel readRanModel();

}

#endif
