# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# Target `docs_site`: all pages as a site with search, and the API reference in it, in the directory
# `site` of the build. A broken link is an error.
find_package(Python3 QUIET COMPONENTS Interpreter)
find_program(ORV_MKDOCS mkdocs)

if(ORV_MKDOCS AND TARGET api_reference AND Python3_FOUND)
  add_custom_target(docs_site
    COMMAND "${Python3_EXECUTABLE}" "${PROJECT_SOURCE_DIR}/scripts/make_site.py"
      "${PROJECT_SOURCE_DIR}" "${PROJECT_BINARY_DIR}/site" --api "${PROJECT_BINARY_DIR}/api/html"
    COMMENT "Site of the documents"
    VERBATIM)
  add_dependencies(docs_site api_reference)
endif()
