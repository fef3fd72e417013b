// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_XMLENTITY_H
#define ORV_HOST_YANG_INSTANCES_XMLENTITY_H

namespace OrvHost {

/// The XML entity for a character that cannot be written as it is, between elements or in an
/// attribute: "&amp;". Line ends are among these characters, so that a text stays on one line and
/// is read back unchanged. Null if the character has no entity. Any thread.
const char* xmlEntity(char character);

}

#endif
