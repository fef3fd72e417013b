# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# orv_program_memory: the allocator of programs that need many small pieces of memory. With mimalloc
# in the place of the C library's, a client's work takes about a sixth fewer instructions
# (docs/performance.md). For programs only: a shared object uses that of the program that loads it.
find_package(mimalloc QUIET)
if(mimalloc_FOUND AND NOT ORV_SANITIZE AND NOT ORV_COVERAGE AND NOT ORV_FUZZ)
  set(orv_mimalloc_default ON)
else()
  set(orv_mimalloc_default OFF)
endif()
option(ORV_MIMALLOC "Link orvhost and its benchmark with mimalloc" ${orv_mimalloc_default})

add_library(orv_program_memory INTERFACE)
if(ORV_MIMALLOC)
  if(ORV_SANITIZE)
    message(FATAL_ERROR "sanitizers have an allocator of their own: set ORV_MIMALLOC to OFF")
  endif()
  find_package(mimalloc REQUIRED)
  target_link_libraries(orv_program_memory INTERFACE mimalloc)
elseif(NOT mimalloc_FOUND)
  message(STATUS "mimalloc is not found: orvhost uses the allocator of the C library")
endif()
