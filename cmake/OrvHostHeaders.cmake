# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# The libraries of the reference host for other projects. Their public headers are <orv/host/...>, with
# the folders of src/host. What a public header includes besides is installed too, but in
# <orv/host/detail/...>, for which nothing is promised.
#
# In src/host the headers name each other from there ("model/Model.h"), and such names would mean
# other files in projects that have a folder `model`. So users get copies, in which each include is
# the whole name. Targets of this project use the headers where they stand: see OrvPublicHeaders.cmake.

# The rooms that need a library of others, by its name for pkg-config; each is a component of its own.
set(ORV_HOST_EXTRA_ROOMS yang store_sqlite store_postgresql)
set(ORV_HOST_EXTRA_LIBRARIES libyang sqlite3 libpq)

set(ORV_HOST_SOURCE_DIR "${PROJECT_SOURCE_DIR}/src/host")
define_property(GLOBAL PROPERTY ORV_HOST_COMPONENTS)
define_property(GLOBAL PROPERTY ORV_HOST_PUBLIC_HEADERS)
set_property(GLOBAL PROPERTY ORV_HOST_COMPONENTS)
set_property(GLOBAL PROPERTY ORV_HOST_PUBLIC_HEADERS)

# orv_host_library(target COMPONENT component [PUBLIC_HEADERS files...])
# The target orv_NAME becomes OrvExtCm::NAME, which `find_package(OrvExtCm COMPONENTS component)`
# finds. The files are relative to the directory.
function(orv_host_library target)
  cmake_parse_arguments(arg "" "COMPONENT" "PUBLIC_HEADERS" ${ARGN})
  string(REGEX REPLACE "^orv_" "" name ${target})
  add_library(OrvExtCm::${name} ALIAS ${target})
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
  get_property(components GLOBAL PROPERTY ORV_HOST_COMPONENTS)
  if(NOT arg_COMPONENT IN_LIST components)
    set_property(GLOBAL APPEND PROPERTY ORV_HOST_COMPONENTS ${arg_COMPONENT})
  endif()
  set_property(GLOBAL APPEND PROPERTY ORV_HOST_COMPONENT_${arg_COMPONENT} ${target})
  foreach(header IN LISTS arg_PUBLIC_HEADERS)
    cmake_path(ABSOLUTE_PATH header OUTPUT_VARIABLE path)
    cmake_path(RELATIVE_PATH path BASE_DIRECTORY "${ORV_HOST_SOURCE_DIR}")
    set_property(GLOBAL APPEND PROPERTY ORV_HOST_PUBLIC_HEADERS "${path}")
  endforeach()
endfunction()

# The file that an include with quotes means, relative to src/host; empty if it is one of <orv/NAME.h>.
function(orv_host_included out includer name)
  cmake_path(GET includer PARENT_PATH folder)
  foreach(candidate IN ITEMS "${folder}/${name}" "${name}")
    if(EXISTS "${ORV_HOST_SOURCE_DIR}/${candidate}")
      set(${out} "${candidate}" PARENT_SCOPE)
      return()
    endif()
  endforeach()
  if(NOT EXISTS "${ORV_PUBLIC_INCLUDE_DIR}/orv/${name}")
    message(FATAL_ERROR "${includer}: ${name} is neither in src/host nor a public header")
  endif()
  set(${out} "" PARENT_SCOPE)
endfunction()

# Makes the copies in ${ORV_PUBLIC_INCLUDE_DIR}/orv/host. Call it after all orv_host_library.
function(orv_host_copy_headers)
  get_property(public GLOBAL PROPERTY ORV_HOST_PUBLIC_HEADERS)
  set(target_dir "${ORV_PUBLIC_INCLUDE_DIR}/orv/host")
  set(queue ${public})
  set(done ${public})
  set(copies "")
  while(queue)
    list(POP_FRONT queue header)
    file(READ "${ORV_HOST_SOURCE_DIR}/${header}" text)
    string(REGEX MATCHALL "#include \"[^\"\n]+\"" includes "${text}")
    foreach(include IN LISTS includes)
      string(REGEX REPLACE "#include \"(.*)\"" "\\1" name "${include}")
      orv_host_included(file "${header}" "${name}")
      if(file STREQUAL "")
        set(whole "orv/${name}")
      elseif(file IN_LIST public)
        set(whole "orv/host/${file}")
      else()
        set(whole "orv/host/detail/${file}")
      endif()
      string(REPLACE "${include}" "#include <${whole}>" text "${text}")
      if(file AND NOT file IN_LIST done)
        list(APPEND queue "${file}")
        list(APPEND done "${file}")
      endif()
    endforeach()
    set(copy "${target_dir}/${header}")
    if(NOT header IN_LIST public)
      set(copy "${target_dir}/detail/${header}")
    endif()
    # A copy that is the same keeps its time, so that nothing is compiled again.
    file(WRITE "${PROJECT_BINARY_DIR}/host_header.h" "${text}")
    cmake_path(GET copy PARENT_PATH folder)
    file(MAKE_DIRECTORY "${folder}")
    file(COPY_FILE "${PROJECT_BINARY_DIR}/host_header.h" "${copy}" ONLY_IF_DIFFERENT)
    list(APPEND copies "${copy}")
    set_property(DIRECTORY APPEND PROPERTY
      CMAKE_CONFIGURE_DEPENDS "${ORV_HOST_SOURCE_DIR}/${header}")
  endwhile()
  # What an earlier configuration has made and this one has not.
  file(GLOB_RECURSE found "${target_dir}/*.h")
  list(REMOVE_ITEM found ${copies})
  if(found)
    file(REMOVE ${found})
  endif()
endfunction()
