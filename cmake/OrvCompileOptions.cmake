# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# orv_compile_options: what every target of this project is compiled with.
add_library(orv_compile_options INTERFACE)
target_compile_options(orv_compile_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wformat=2 -Werror
  $<$<CXX_COMPILER_ID:GNU>:-Wcast-qual>) # clang complains of libyang's macros too

if(ORV_SANITIZE)
  target_compile_options(orv_compile_options INTERFACE
    -fsanitize=${ORV_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(orv_compile_options INTERFACE -fsanitize=${ORV_SANITIZE})
  target_compile_definitions(orv_compile_options INTERFACE ORV_SANITIZED) # for the sizes of tests
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # Its sanitizers stand in the program: a shared object cannot have all symbols on its own.
    target_link_options(orv_compile_options INTERFACE -Wl,-z,undefs)
    # Puts type information of functions among the exported symbols.
    target_compile_options(orv_compile_options INTERFACE -fno-sanitize=function)
  else()
    # Warns of the standard library's own code in instrumented builds.
    target_compile_options(orv_compile_options INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()

if(ORV_COVERAGE)
  target_compile_options(orv_compile_options INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(orv_compile_options INTERFACE --coverage)
endif()

# Everything tells the fuzzer which way it went; the targets of fuzz/ bring the fuzzer itself.
if(ORV_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "ORV_FUZZ needs clang")
  endif()
  target_compile_options(orv_compile_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
