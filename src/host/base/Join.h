// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_JOIN_H
#define ORV_HOST_BASE_JOIN_H

#include <initializer_list>
#include <string>
#include <string_view>

namespace OrvHost {

/// Joins the pieces into one text.
std::string joined(std::initializer_list<std::string_view> pieces);

}

#endif
