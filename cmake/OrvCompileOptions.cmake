# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# orv_compile_options: the compiler options of every target of this project. Warnings are errors in
# the presets only: those who build or embed the project may have another compiler.
add_library(orv_compile_options INTERFACE)
target_compile_options(orv_compile_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wformat=2
  $<$<CXX_COMPILER_ID:GNU>:-Wcast-qual>) # clang also reports libyang's macros

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # When it optimises, it reports the standard library's own code, wherever texts are joined and
  # records are moved. Other compilers, and the debug builds of this one, still warn.
  target_compile_options(orv_compile_options INTERFACE
    $<$<NOT:$<CONFIG:Debug>>:-Wno-array-bounds>
    $<$<NOT:$<CONFIG:Debug>>:-Wno-stringop-overflow>
    $<$<NOT:$<CONFIG:Debug>>:-Wno-stringop-overread>
    $<$<NOT:$<CONFIG:Debug>>:-Wno-restrict>
    $<$<NOT:$<CONFIG:Debug>>:-Wno-maybe-uninitialized>)
endif()

# orv_fast_code: for what every call of a client runs through, small enough to be optimised for speed
# alone. Calls between shared objects go there directly, without a stub, and in a static library no
# function waits for another one to take its place. Builds with a type of their own keep the options
# that they bring.
add_library(orv_fast_code INTERFACE)
target_compile_options(orv_fast_code INTERFACE
  $<$<CONFIG:Release,RelWithDebInfo>:-O3>
  $<$<CONFIG:Release,RelWithDebInfo>:-fno-plt>
  $<$<AND:$<CONFIG:Release,RelWithDebInfo>,$<STREQUAL:$<TARGET_PROPERTY:TYPE>,STATIC_LIBRARY>>:-fno-semantic-interposition>)

if(ORV_SANITIZE)
  target_compile_options(orv_compile_options INTERFACE
    -fsanitize=${ORV_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(orv_compile_options INTERFACE -fsanitize=${ORV_SANITIZE})
  target_compile_definitions(orv_compile_options INTERFACE ORV_SANITIZED) # for the sizes of tests
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # clang links its sanitizers into the program only, so a shared object has undefined symbols.
    target_link_options(orv_compile_options INTERFACE -Wl,-z,undefs)
    # It would export type information of functions as symbols.
    target_compile_options(orv_compile_options INTERFACE -fno-sanitize=function)
  else()
    # In instrumented builds gcc reports the standard library's own code.
    target_compile_options(orv_compile_options INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()

if(ORV_COVERAGE)
  target_compile_definitions(orv_compile_options INTERFACE ORV_COVERAGE) # for the sizes of tests
  target_compile_options(orv_compile_options INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(orv_compile_options INTERFACE --coverage)
endif()

# All code reports its branches to the fuzzer; the targets of fuzz/ link the fuzzer itself.
if(ORV_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "ORV_FUZZ needs clang")
  endif()
  target_compile_options(orv_compile_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
