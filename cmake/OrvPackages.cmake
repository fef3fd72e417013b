# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# `cpack` makes one Debian package of each component of OrvInstall.cmake. scripts/package.sh sets the
# options of the build that packages need, and tries the packages out in a fresh system.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orv-ext-cm)
set(CPACK_PACKAGE_VENDOR "The orv_ext_cm authors")
set(CPACK_PACKAGE_CONTACT "The orv_ext_cm authors <orv-ext-cm@example.org>"
  CACHE STRING "Maintainer of the packages, with an address")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/OrvDebianFiles.cmake")
set(CPACK_POST_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/OrvDebianTriggers.cmake")
set(CPACK_COMPONENTS_ALL runtime component devel docs)
if(TARGET orvhost)
  list(APPEND CPACK_COMPONENTS_ALL host)
endif()
if(TARGET orv_host)
  list(APPEND CPACK_COMPONENTS_ALL hostdevel)
endif()
if(ORV_BUILD_VALIDATOR)
  list(APPEND CPACK_COMPONENTS_ALL validate)
endif()
set(CPACK_COMPONENTS_GROUPING IGNORE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

# orv_debian_package(component name SECTION section SUMMARY line TEXT text [DEPENDS packages])
# Packages of this project depend on each other in exactly this version: they are built together.
macro(orv_debian_package component name)
  cmake_parse_arguments(arg "" "SECTION;SUMMARY;TEXT;DEPENDS" "" ${ARGN})
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME "${name}")
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION "${arg_SECTION}")
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${arg_DEPENDS}")
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${arg_SUMMARY}\n${arg_TEXT}")
endmacro()

set(same "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
get_target_property(soversion orv_common SOVERSION)
set(runtime_package "liborv-common${soversion}")

orv_debian_package(runtime "${runtime_package}" SECTION libs
  SUMMARY "helper library that managed-object components and their host share"
  TEXT "It translates names of objects, finds the tables of the host, and takes the
log. Host and components of one process share it.")
orv_debian_package(component libext-cm SECTION libs DEPENDS "${runtime_package} ${same}"
  SUMMARY "managed-object component between a host's clients and its router"
  TEXT "A host loads this library at run time. It translates names, keeps both ends
of associations consistent, validates transactions, and calls interceptors.
With it comes orv-record.so, which records all calls between host and library.")
orv_debian_package(devel orv-ext-cm-dev SECTION libdevel
  DEPENDS "${runtime_package} ${same}, libext-cm ${same}, libpoco-dev"
  SUMMARY "headers for hosts and interceptors of managed-object components"
  TEXT "Headers, files for CMake and pkg-config, and two examples to build:
a host and an interceptor.")
orv_debian_package(hostdevel orv-host-dev SECTION libdevel DEPENDS "orv-ext-cm-dev ${same}"
  SUMMARY "libraries and headers of the reference host for managed-object components"
  TEXT "Static libraries to make hosts of: model, store, router, transactions,
loader, client. Parts for YANG models and for stores in files and databases.
With an example to build.")
orv_debian_package(host orvhost SECTION net
  DEPENDS "${runtime_package} ${same}, libext-cm ${same}"
  SUMMARY "reference host for managed-object components"
  TEXT "A shell, a checker of scenarios, and a server in front of a tree of managed
objects, for those who develop components. With example models, data, and a
generator of data.")
orv_debian_package(validate orv-validate SECTION devel DEPENDS "${runtime_package} ${same}"
  SUMMARY "checks of a build of libext_cm.so"
  TEXT "It runs a build of the managed-object component in a scripted host, one
process for each case, and reports as text, TAP or JUnit.")
orv_debian_package(docs orv-ext-cm-doc SECTION doc
  SUMMARY "documents of the managed-object component"
  TEXT "How to embed the component, how to write an interceptor, and the manual of
orvhost.")
set(CPACK_DEBIAN_DOCS_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVEL_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_HOSTDEVEL_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_HOSTDEVEL_PACKAGE_SUGGESTS "pkgconf, libyang2-dev, libsqlite3-dev, libpq-dev")
set(CPACK_DEBIAN_DOCS_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_HOST_PACKAGE_SUGGESTS graphviz)

# For OrvDebianFiles.cmake.
set(CPACK_ORV_SOURCE_DIR "${PROJECT_SOURCE_DIR}")
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(CPACK_ORV_PACKAGE_${component} "${CPACK_DEBIAN_${upper}_PACKAGE_NAME}")
endforeach()
include(CPack)
