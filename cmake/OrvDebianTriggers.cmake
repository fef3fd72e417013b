# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# cpack runs this when the packages are made. cpack gives a package with a shared library scripts that
# call ldconfig; Debian wants a trigger, so that ldconfig runs once for many packages.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(tree "${CPACK_TOPLEVEL_DIRECTORY}/repacked")
  file(REMOVE_RECURSE "${tree}")
  execute_process(COMMAND dpkg-deb --raw-extract "${package}" "${tree}" COMMAND_ERROR_IS_FATAL ANY)
  if(EXISTS "${tree}/DEBIAN/postinst")
    file(REMOVE "${tree}/DEBIAN/postinst" "${tree}/DEBIAN/postrm")
    file(WRITE "${tree}/DEBIAN/triggers" "activate-noawait ldconfig\n")
    execute_process(COMMAND chmod 644 "${tree}/DEBIAN/triggers" COMMAND_ERROR_IS_FATAL ANY)
    # With SOURCE_DATE_EPOCH no file is younger than that.
    execute_process(COMMAND dpkg-deb --root-owner-group --build "${tree}" "${package}"
      OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  endif()
  file(REMOVE_RECURSE "${tree}")
endforeach()
