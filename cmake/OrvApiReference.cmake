# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# Target `api_reference`: the reference of the public headers as web pages, in the directory `api` of
# the build. A warning of Doxygen is an error.
find_package(Doxygen)

if(DOXYGEN_FOUND)
  set(DOXYGEN_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/api")
  set(DOXYGEN_STRIP_FROM_PATH "${ORV_PUBLIC_INCLUDE_DIR}")
  set(DOXYGEN_STRIP_FROM_INC_PATH "${ORV_PUBLIC_INCLUDE_DIR}")
  set(DOXYGEN_EXCLUDE_PATTERNS "*/orv/host/detail/*") # nothing is promised of these
  set(DOXYGEN_USE_MDFILE_AS_MAINPAGE "${PROJECT_SOURCE_DIR}/docs/api.md")
  set(DOXYGEN_EXTRACT_ALL YES)
  set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
  set(DOXYGEN_HAVE_DOT NO)
  set(DOXYGEN_GENERATE_LATEX NO)
  set(DOXYGEN_QUIET YES)
  set(DOXYGEN_WARN_IF_UNDOCUMENTED NO)
  set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
  doxygen_add_docs(api_reference
    "${ORV_PUBLIC_INCLUDE_DIR}/orv" "${PROJECT_SOURCE_DIR}/docs/api.md"
    COMMENT "API reference")
endif()
