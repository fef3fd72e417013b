# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

find_package(GTest REQUIRED)
include(GoogleTest)

# orv_add_test(name SOURCES files... [LIBRARIES targets...] [LABELS labels...] [ENVIRONMENT vars...]
#              [ISOLATED])
# A GoogleTest program (GoogleMock is there too). ISOLATED runs every test case in a process of its
# own; without it the program is one CTest test. The label "threads" marks programs that also run
# under ThreadSanitizer.
function(orv_add_test name)
  cmake_parse_arguments(arg "ISOLATED" "" "SOURCES;LIBRARIES;LABELS;ENVIRONMENT" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} GTest::gmock_main orv_compile_options)
  if(arg_ISOLATED)
    # Lists are handed over as one argument each; an empty one would let the next word slip in.
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
