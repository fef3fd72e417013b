// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SETUP_COMPONENTFINDER_H
#define ORV_HOST_CLI_SETUP_COMPONENTFINDER_H

#include <string>

namespace OrvHost {

/// The path of the libext_cm.so that belongs to this program: in the same directory, or in the
/// library directory next to it, as in the build tree and in an installation. Throws LoadError with
/// the places that were searched.
std::string findExtCm();

}

#endif
