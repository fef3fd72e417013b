// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_XMLENTITY_H
#define ORV_HOST_YANG_XMLENTITY_H

namespace OrvHost {

/// What is written in XML for a character that cannot stand there itself, between elements or in an
/// attribute: "&amp;". The ends of lines are among them, so that a text stays on its line and is
/// read again as it was. Null: the character has none. Any thread.
const char* xmlEntity(char character);

}

#endif
