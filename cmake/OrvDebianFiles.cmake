# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# cpack runs this when the files of all packages are in place: it adds what only packages of Debian
# have, a changelog and a copyright file for each, and compresses the manual pages. The same source
# gives the same bytes: no time of now is in any of it.
function(orv_gzip file)
  execute_process(COMMAND gzip -9 -n -f "${file}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# The time of the source: what SOURCE_DATE_EPOCH says, or else that of the changelog.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  set(seconds "$ENV{SOURCE_DATE_EPOCH}")
else()
  file(TIMESTAMP "${CPACK_ORV_SOURCE_DIR}/CHANGELOG.md" seconds "%s" UTC)
endif()

# orv_entry(out version day): the entry of a version; day is as the program date reads it.
function(orv_entry out version day)
  execute_process(COMMAND date -u -R -d "${day}" OUTPUT_VARIABLE date
    ENCODING UTF-8 OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(${out} "orv-ext-cm (${version}-1) unstable; urgency=medium

  * What this version changes is in CHANGELOG.md of orv-ext-cm-doc.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
" PARENT_SCOPE)
endfunction()

# This version, and those before it as CHANGELOG.md has them.
orv_entry(entries "${CPACK_PACKAGE_VERSION}" "@${seconds}")
file(STRINGS "${CPACK_ORV_SOURCE_DIR}/CHANGELOG.md" headings REGEX "^## [0-9]")
foreach(heading IN LISTS headings)
  string(REGEX MATCH "^## ([0-9.]+) - ([-0-9]+)" matched "${heading}")
  if(CMAKE_MATCH_1 VERSION_LESS CPACK_PACKAGE_VERSION)
    orv_entry(entry "${CMAKE_MATCH_1}" "${CMAKE_MATCH_2}")
    string(APPEND entries "\n${entry}")
  endif()
endforeach()
string(REGEX MATCH "[0-9][0-9][0-9][0-9]" year "${headings}") # of the first release

file(READ "${CPACK_ORV_SOURCE_DIR}/LICENSES/BSD-3-Clause.txt" bsd)
string(REGEX REPLACE "\n\n" "\n.\n" bsd "${bsd}")
string(STRIP "${bsd}" bsd)
string(REPLACE "\n" "\n " bsd "${bsd}")
set(copyright "Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/
Upstream-Name: orv_ext_cm

Files: *
Copyright: ${year} The orv_ext_cm authors
License: Apache-2.0
 On Debian systems the text of this license is in
 /usr/share/common-licenses/Apache-2.0.

Files: src/host/netconf/modules/ietf-*.yang src/host/netconf/modules/notifications.yang
Copyright: IETF Trust and the persons identified as authors of the code
License: BSD-3-Clause
 ${bsd}
")

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  set(name "${CPACK_ORV_PACKAGE_${component}}")
  set(root "${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}")
  set(doc "${root}/share/doc/${name}")
  file(WRITE "${doc}/copyright" "${copyright}")
  set(changelog "${doc}/changelog.Debian")
  file(WRITE "${changelog}" "${entries}")
  orv_gzip("${changelog}")
  set(overrides "${CPACK_ORV_SOURCE_DIR}/cmake/lintian/${name}")
  if(EXISTS "${overrides}")
    file(COPY "${overrides}" DESTINATION "${root}/share/lintian/overrides")
  endif()
  file(GLOB pages "${root}/share/man/man*/*.[1-9]")
  foreach(page IN LISTS pages)
    orv_gzip("${page}")
  endforeach()
  file(REMOVE "${root}/share/doc/orv_ext_cm/LICENSE") # the copyright file says it
  file(GLOB_RECURSE files "${CPACK_TEMPORARY_DIRECTORY}/${component}/*")
  foreach(file IN LISTS files)
    if(NOT IS_SYMLINK "${file}")
      if(file MATCHES "/bin/|/libexec/.*/[^./]*$")
        execute_process(COMMAND chmod 755 "${file}" COMMAND_ERROR_IS_FATAL ANY)
      else()
        execute_process(COMMAND chmod 644 "${file}" COMMAND_ERROR_IS_FATAL ANY)
      endif()
    endif()
  endforeach()
endforeach()
