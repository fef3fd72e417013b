# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# The classes behind the MO operations that keep associations consistent and judge them.
set(ORV_ASSOCIATION_SOURCES
  src/BiDirUtils.cpp
  src/BiDirValidator.cpp
  src/PendingAdditions.cpp
  src/ReferenceList.cpp
  src/UniDirStorage.cpp
  src/UniDirValidator.cpp)
