// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_DATAPROBLEM_H
#define ORV_HOST_YANG_INSTANCES_DATAPROBLEM_H

#include "base/Problem.h"
#include "yang/source/YangContext.h"

#include <string>
#include <string_view>

namespace OrvHost {

/// The reason why the YANG library has just refused instance data: its message, taken out of the
/// context, with what was expected and a usual remedy. `label` is used as the name of the data's
/// file; `text` is the data.
Problem takeDataProblem(const YangContext& context, const std::string& label,
                        std::string_view text);

}

#endif
