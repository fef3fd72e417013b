// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CHECK_XMLESCAPE_H
#define ORV_HOST_CLI_CHECK_XMLESCAPE_H

#include <string>

namespace OrvHost {

/// \p text for use in XML, in an attribute or between elements. Line ends and tabs are kept. What
/// XML cannot hold, such as other control characters or bytes that are not UTF-8, becomes a
/// replacement character.
std::string escapeXml(const std::string& text);

}

#endif
