# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

find_package(GTest REQUIRED)
include(GoogleTest)

# The headers that nearly every test includes, compiled once for all of them.
add_executable(orv_test_headers "${CMAKE_CURRENT_LIST_DIR}/OrvTestHeaders.cpp")
target_link_libraries(orv_test_headers
  PRIVATE GTest::gmock_main Poco::Foundation orv_compile_options)
target_precompile_headers(orv_test_headers PRIVATE
  <gmock/gmock.h> <gtest/gtest.h> <list> <map> <string> <vector>)

# Builds the tests that also run under ThreadSanitizer.
add_custom_target(thread_tests)
# Builds the tests that count for the coverage of the component: its own and those of its helper
# library, which need no host. The test preset `coverage` runs those with such names.
add_custom_target(coverage_tests)

# orv_add_test(name SOURCES files... [LIBRARIES targets...] [LABELS labels...] [ENVIRONMENT vars...]
#              [ISOLATED] [OWN_HEADERS])
# Adds a program with GoogleTest and GoogleMock. ISOLATED runs every test case in its own process;
# without it the program is one CTest test. The label "threads" marks programs that also run
# under ThreadSanitizer. OWN_HEADERS is for programs with compile definitions of their own.
function(orv_add_test name)
  cmake_parse_arguments(arg "ISOLATED;OWN_HEADERS" "" "SOURCES;LIBRARIES;LABELS;ENVIRONMENT" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name}
    PRIVATE ${arg_LIBRARIES} GTest::gmock_main Poco::Foundation orv_compile_options)
  if(NOT arg_OWN_HEADERS)
    target_precompile_headers(${name} REUSE_FROM orv_test_headers)
  endif()
  if("threads" IN_LIST arg_LABELS)
    add_dependencies(thread_tests ${name})
  endif()
  if(name MATCHES "^(component|unit)_")
    add_dependencies(coverage_tests ${name})
  endif()
  if(NOT ORV_BUILD_TESTS)
    return() # the program is one of orv-validate's
  endif()
  if(arg_ISOLATED)
    # Lists are passed as one argument each; without the quotes an empty list would take the next
    # word as its value.
    set(properties TIMEOUT 600)
    if(arg_LABELS)
      list(APPEND properties LABELS "${arg_LABELS}")
    endif()
    if(arg_ENVIRONMENT)
      list(APPEND properties ENVIRONMENT "${arg_ENVIRONMENT}")
    endif()
    gtest_discover_tests(${name} TEST_PREFIX "${name}." PROPERTIES ${properties})
  else()
    add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
    set_property(TEST ${name} PROPERTY TIMEOUT 600)
    set_property(TEST ${name} PROPERTY LABELS ${arg_LABELS})
    set_property(TEST ${name} PROPERTY ENVIRONMENT ${arg_ENVIRONMENT})
  endif()
endfunction()
