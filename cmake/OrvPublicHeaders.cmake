# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# Those who use the package include its headers as <orv/NAME.h>, whether it is installed or a part of
# their build. For the second case the build directory has the folder that an installation has:
# links to the headers where they stand.
#
# Targets of this project have the target property ORV_USES_SOURCE_HEADERS. They include the headers
# from their own directories, so that each layer sees those below it and no other.
set(ORV_PUBLIC_INCLUDE_DIR "${PROJECT_BINARY_DIR}/include")
file(MAKE_DIRECTORY "${ORV_PUBLIC_INCLUDE_DIR}/orv")
# A header may have gone since the last time. OrvHostHeaders.cmake looks after its own.
file(GLOB former_links "${ORV_PUBLIC_INCLUDE_DIR}/orv/*.h")
if(former_links)
  file(REMOVE ${former_links})
endif()
define_property(GLOBAL PROPERTY ORV_PUBLIC_HEADERS)
set_property(GLOBAL PROPERTY ORV_PUBLIC_HEADERS)
define_property(TARGET PROPERTY ORV_USES_SOURCE_HEADERS
  INITIALIZE_FROM_VARIABLE ORV_USES_SOURCE_HEADERS)
set(ORV_USES_SOURCE_HEADERS ON)

# orv_include_directories(target directory)
# All who link the target have the folder of all public headers on the include path; targets of this
# project have the directory instead.
function(orv_include_directories target directory)
  set(inside "$<BOOL:$<TARGET_PROPERTY:ORV_USES_SOURCE_HEADERS>>")
  target_include_directories(${target} INTERFACE
    "$<BUILD_INTERFACE:$<IF:${inside},${directory},${ORV_PUBLIC_INCLUDE_DIR}>>"
    "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
endfunction()

# orv_public_headers(target DIRECTORY directory HEADERS files...)
# Makes the headers, with full paths, public as <orv/NAME.h>. DIRECTORY is that of
# orv_include_directories.
function(orv_public_headers target)
  cmake_parse_arguments(arg "" "DIRECTORY" "HEADERS" ${ARGN})
  foreach(header IN LISTS arg_HEADERS)
    cmake_path(GET header FILENAME name)
    set(link "${ORV_PUBLIC_INCLUDE_DIR}/orv/${name}")
    if(EXISTS "${link}")
      message(FATAL_ERROR "two public headers have the name ${name}")
    endif()
    file(CREATE_LINK "${header}" "${link}" SYMBOLIC)
  endforeach()
  set_property(GLOBAL APPEND PROPERTY ORV_PUBLIC_HEADERS ${arg_HEADERS})
  orv_include_directories(${target} "${arg_DIRECTORY}")
endfunction()
