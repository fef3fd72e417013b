# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# Targets `tidy_component` and `tidy`: clang-tidy over the parts that a host loads, and over all
# sources below src/, examples/ and, if they are built, bench/. Each source has a stamp that is out
# of date when the source, a header of the project or the configuration changes.
find_program(ORV_CLANG_TIDY clang-tidy)

function(orv_collect_sources directory result)
  set(found "")
  get_property(targets DIRECTORY "${directory}" PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target IN LISTS targets)
    get_target_property(type ${target} TYPE)
    if(type MATCHES "LIBRARY|EXECUTABLE")
      get_target_property(sources ${target} SOURCES)
      get_target_property(base ${target} SOURCE_DIR)
      foreach(source IN LISTS sources)
        if(source MATCHES "\\.cpp$")
          cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY "${base}" NORMALIZE)
          list(APPEND found "${source}")
        endif()
      endforeach()
    endif()
  endforeach()
  get_property(children DIRECTORY "${directory}" PROPERTY SUBDIRECTORIES)
  foreach(child IN LISTS children)
    orv_collect_sources("${child}" below)
    list(APPEND found ${below})
  endforeach()
  set(${result} "${found}" PARENT_SCOPE)
endfunction()

# orv_add_tidy_target(name directories...)
function(orv_add_tidy_target target)
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS
    "${PROJECT_SOURCE_DIR}/src/*.h" "${PROJECT_SOURCE_DIR}/examples/*.h")
  set(stamps "")
  foreach(directory IN LISTS ARGN)
    orv_collect_sources("${PROJECT_SOURCE_DIR}/${directory}" sources)
    list(REMOVE_DUPLICATES sources)
    foreach(source IN LISTS sources)
      cmake_path(RELATIVE_PATH source BASE_DIRECTORY "${PROJECT_SOURCE_DIR}" OUTPUT_VARIABLE name)
      if(name MATCHES "^\\.\\.")
        continue()
      endif()
      set(stamp "${PROJECT_BINARY_DIR}/tidy/${name}.stamp")
      cmake_path(GET stamp PARENT_PATH stamp_directory)
      file(MAKE_DIRECTORY "${stamp_directory}")
      add_custom_command(OUTPUT "${stamp}"
        COMMAND "${PROJECT_SOURCE_DIR}/scripts/lint.py" "${PROJECT_BINARY_DIR}" "${source}"
        COMMAND "${CMAKE_COMMAND}" -E touch "${stamp}"
        DEPENDS "${source}" ${headers} "${PROJECT_SOURCE_DIR}/.clang-tidy"
        COMMENT "clang-tidy ${name}"
        VERBATIM)
      list(APPEND stamps "${stamp}")
    endforeach()
  endforeach()
  add_custom_target(${target} DEPENDS ${stamps})
endfunction()

if(ORV_CLANG_TIDY AND ORV_BUILD_HOST)
  orv_add_tidy_target(tidy_component src/spi src/common src/orv_common src/ext_cm)
  set(directories src/host examples)
  if(ORV_BUILD_BENCHMARKS)
    list(APPEND directories bench)
  endif()
  orv_add_tidy_target(tidy_rest ${directories})
  add_custom_target(tidy DEPENDS tidy_component tidy_rest)
endif()
