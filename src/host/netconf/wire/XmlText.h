// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_WIRE_XMLTEXT_H
#define ORV_HOST_NETCONF_WIRE_XMLTEXT_H

#include <string>
#include <string_view>

namespace OrvHost {

/// \p text as it stands between elements or in an attribute. Control characters, which XML cannot
/// hold, become "?".
std::string xmlEscaped(std::string_view text);

/// `<name>text</name>`, with the text escaped.
std::string xmlElement(std::string_view name, std::string_view text);

}

#endif
