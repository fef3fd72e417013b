# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# orv_embed_text(out_source file)
# Makes a source file that defines `extern const char kEmbedded_<name>[]` with the text of `file`.
# <name> is the file's name with "_" in place of characters that cannot be in an identifier.
function(orv_embed_text out_source file)
  set(path "${CMAKE_CURRENT_SOURCE_DIR}/${file}")
  cmake_path(GET path FILENAME filename)
  string(MAKE_C_IDENTIFIER "${filename}" name)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${path}")
  file(READ "${path}" hex HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${hex}")
  string(REGEX REPLACE "('[^']*',){24}" "\\0\n" bytes "${bytes}")
  set(source "${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp")
  file(CONFIGURE OUTPUT "${source}" CONTENT
    "extern const char kEmbedded_@name@[];\nconst char kEmbedded_@name@[] = {\n@bytes@0};\n" @ONLY)
  set(${out_source} "${source}" PARENT_SCOPE)
endfunction()
