// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_BOUNDSTEXT_H
#define ORV_HOST_CLIENT_BOUNDSTEXT_H

#include "model/Model.h"

#include <string>

namespace OrvHost {

/// Bounds for people: "0..1", "3", "1..*".
std::string boundsText(const Bounds& bounds);

}

#endif
