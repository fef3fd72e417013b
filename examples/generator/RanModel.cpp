// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RanModel.h"

extern const char kEmbedded_ran_types_yang[];
extern const char kEmbedded_ran_element_yang[];
extern const char kEmbedded_ran_function_yang[];
extern const char kEmbedded_ran_equipment_yang[];

namespace RanGenerator {

OrvHost::YangModel readRanModel() {
    return OrvHost::YangModelReader()
        .offerText("ran-types", "ran-types.yang", kEmbedded_ran_types_yang)
        .offerText("ran-element", "ran-element.yang", kEmbedded_ran_element_yang)
        .offerText("ran-function", "ran-function.yang", kEmbedded_ran_function_yang)
        .offerText("ran-equipment", "ran-equipment.yang", kEmbedded_ran_equipment_yang)
        .load("ran-function")
        .load("ran-equipment")
        .read();
}

}
