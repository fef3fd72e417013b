# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# The classes that keep bidirectional associations consistent and judge them, on the scripted host.
add_library(bidir_test_support STATIC BiDirClient.cpp BiDirScene.cpp PlainHost.cpp)
target_include_directories(bidir_test_support PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")
target_link_libraries(bidir_test_support
  PUBLIC ext_cm_objects component_test_support
  PRIVATE orv_compile_options)

orv_add_test(unit_ext_cm_bidir
  SOURCES
    BiDirDeleteTest.cpp
    BiDirEditsTest.cpp
    BiDirLargeTest.cpp
    BiDirLocksTest.cpp
    BiDirModifyTest.cpp
    BiDirPendingTest.cpp
    BiDirQueriesTest.cpp
    BiDirShapeTest.cpp
    BiDirTrapsTest.cpp
    BiDirValidatorCallsTest.cpp
    BiDirValidatorEdgesTest.cpp
    BiDirValidatorTest.cpp
    ModelWalkTest.cpp
    PendingAdditionsTest.cpp
    SlotOrderTest.cpp
  LIBRARIES bidir_test_support)

orv_add_test(unit_ext_cm_bidir_threads
  SOURCES BiDirThreadsTest.cpp
  LIBRARIES bidir_test_support
  LABELS threads)

# The same for unidirectional associations.
orv_add_test(unit_ext_cm_unidir
  SOURCES UniDirEdgesTest.cpp UniDirStorageTest.cpp UniDirValidatorTest.cpp
  LIBRARIES component_test_support ext_cm_objects)

orv_add_test(unit_ext_cm_unidir_threads
  SOURCES UniDirThreadsTest.cpp
  LIBRARIES component_test_support ext_cm_objects
  LABELS threads)
