# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# What is installed: the component and the helper library; in one directory, the headers that an
# interceptor or a host includes; and the files with which CMake and pkg-config find them. With the
# reference host also orvhost and the generator of data with their manual pages and completions, a
# unit for systemd, and the models and data of the examples. Then the pages and the examples to build.
#
# The components are the packages that OrvPackages.cmake makes:
#   runtime    the helper library
#   component  libext_cm.so, and orv-record.so, which stands in front of it
#   devel      headers, files of CMake and pkg-config, examples to build
#   hostdevel  libraries and headers of the reference host, with their files of CMake and pkg-config
#   host       orvhost, the generator, and what they read
#   validate   orv-validate and its cases; src/validate installs it
#   docs       the pages
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/OrvExtCm")
set(data_dir "${CMAKE_INSTALL_DATADIR}/orv_ext_cm")

# The component finds the helper library in its own directory, wherever the two are moved to.
set_target_properties(orv_common ext_cm PROPERTIES INSTALL_RPATH "$ORIGIN")
set_target_properties(orv_spi PROPERTIES EXPORT_NAME spi)
set_target_properties(orv_templates PROPERTIES EXPORT_NAME templates)
set_target_properties(orv_common PROPERTIES EXPORT_NAME common)
install(TARGETS orv_spi orv_templates orv_common
  EXPORT OrvExtCmTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT devel)
install(TARGETS ext_cm
  EXPORT OrvExtCmTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT component)

set_target_properties(orv_record PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS orv_record LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT component)

get_property(public_headers GLOBAL PROPERTY ORV_PUBLIC_HEADERS)
install(FILES ${public_headers} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/orv" COMPONENT devel)

install(EXPORT OrvExtCmTargets NAMESPACE OrvExtCm:: DESTINATION "${package_dir}" COMPONENT devel)
set(host_needs "")
foreach(room library IN ZIP_LISTS ORV_HOST_EXTRA_ROOMS ORV_HOST_EXTRA_LIBRARIES)
  string(APPEND host_needs "set(OrvExtCm_needs_of_host_${room} ${library})\n")
endforeach()
configure_package_config_file(
  "${CMAKE_CURRENT_LIST_DIR}/OrvExtCmConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/OrvExtCmConfig.cmake"
  INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/OrvExtCmConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/OrvExtCmConfig.cmake"
  "${PROJECT_BINARY_DIR}/OrvExtCmConfigVersion.cmake"
  DESTINATION "${package_dir}" COMPONENT devel)

# The .pc files find their prefix relative to their own place. Poco has none of its own.
file(RELATIVE_PATH pc_to_prefix
  "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" pc_to_prefix "${pc_to_prefix}")
# orv_install_pc(name component template)
function(orv_install_pc name component template)
  configure_file("${CMAKE_CURRENT_FUNCTION_LIST_DIR}/${template}.pc.in"
    "${PROJECT_BINARY_DIR}/${name}.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${name}.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT ${component})
endfunction()
orv_install_pc(orv_common devel orv_common)
orv_install_pc(orv_ext_cm devel orv_ext_cm)
foreach(example IN ITEMS interceptor embedding)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/${example}"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}/examples" COMPONENT devel)
endforeach()

if(TARGET orv_host)
  install(DIRECTORY "${ORV_PUBLIC_INCLUDE_DIR}/orv/host"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/orv" COMPONENT hostdevel)
  get_property(components GLOBAL PROPERTY ORV_HOST_COMPONENTS)
  foreach(component IN LISTS components)
    get_property(libraries GLOBAL PROPERTY ORV_HOST_COMPONENT_${component})
    install(TARGETS ${libraries} EXPORT OrvExtCm-${component}
      ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT hostdevel)
    install(EXPORT OrvExtCm-${component} NAMESPACE OrvExtCm:: DESTINATION "${package_dir}"
      COMPONENT hostdevel)
  endforeach()
  orv_install_pc(orv_host hostdevel orv_host)
  foreach(room library IN ZIP_LISTS ORV_HOST_EXTRA_ROOMS ORV_HOST_EXTRA_LIBRARIES)
    if(TARGET orv_host_${room})
      orv_install_pc(orv_host_${room} hostdevel orv_host_room)
    endif()
  endforeach()
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/host"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}/examples" COMPONENT hostdevel)
endif()

install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md"
  DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT docs)
# A package of Debian has its copyright file in place of this one.
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT docs)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT docs
  FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN "abi" EXCLUDE)

if(TARGET orvhost)
  file(RELATIVE_PATH bin_to_lib "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  set_target_properties(orvhost orv-ran-generate PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
  install(TARGETS orvhost orv-ran-generate
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT host)
  install(FILES "${PROJECT_SOURCE_DIR}/src/host/cli/install/orvhost.1"
    "${PROJECT_SOURCE_DIR}/examples/generator/orv-ran-generate.1"
    DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT host)
  install(FILES "${PROJECT_SOURCE_DIR}/src/host/cli/install/orvhost.bash"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" RENAME orvhost COMPONENT host)
  install(FILES "${PROJECT_SOURCE_DIR}/src/host/cli/install/_orvhost"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions" COMPONENT host)
  install(FILES "${PROJECT_SOURCE_DIR}/src/host/cli/install/orvhost.fish"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d" COMPONENT host)
  if(ORV_NETCONF)
    configure_file("${PROJECT_SOURCE_DIR}/src/host/cli/install/orvhost.service.in"
      "${PROJECT_BINARY_DIR}/orvhost.service" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/orvhost.service" DESTINATION lib/systemd/system
      COMPONENT host)
  endif()
  foreach(directory IN ITEMS examples/models src/host/yang/modules)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/${directory}/" DESTINATION "${data_dir}/models"
      COMPONENT host
      FILES_MATCHING PATTERN "*.yang")
  endforeach()
  foreach(directory IN ITEMS data scenarios)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/${directory}" DESTINATION "${data_dir}"
      COMPONENT host)
  endforeach()
  # So that what the pages show can be typed beside them, too.
  file(RELATIVE_PATH examples_to_data
    "${CMAKE_INSTALL_FULL_DOCDIR}/examples" "${CMAKE_INSTALL_FULL_DATADIR}/orv_ext_cm")
  file(MAKE_DIRECTORY "${PROJECT_BINARY_DIR}/example_links")
  foreach(directory IN ITEMS models data scenarios)
    set(link "${PROJECT_BINARY_DIR}/example_links/${directory}")
    file(CREATE_LINK "${examples_to_data}/${directory}" "${link}" SYMBOLIC)
    install(FILES "${link}" DESTINATION "${CMAKE_INSTALL_DOCDIR}/examples" COMPONENT host)
  endforeach()
endif()
