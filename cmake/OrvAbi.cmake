# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# The binary interface of both libraries: target `abi_check` compares it with that of the last
# release, which is described in docs/abi; `abi_baseline` describes it anew, at a release. What is
# only added is no difference. The description has the exported symbols and the types that they use.
# It depends on compiler and options, so the targets are there with g++ and RelWithDebInfo only: in
# the preset `release`.
find_program(ORV_ABIDW abidw)
find_program(ORV_ABIDIFF abidiff)

if(ORV_ABIDW AND ORV_ABIDIFF
   AND CMAKE_BUILD_TYPE STREQUAL RelWithDebInfo AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  set(abi_dir "${PROJECT_SOURCE_DIR}/docs/abi")
  set(check "")
  set(baseline "")
  foreach(library IN ITEMS orv_common ext_cm)
    list(APPEND check COMMAND "${ORV_ABIDIFF}" --no-added-syms
      --exported-interfaces-only --suppressions "${abi_dir}/not-compared.abignore"
      "${abi_dir}/lib${library}.abi" "$<TARGET_FILE:${library}>")
    list(APPEND baseline COMMAND "${ORV_ABIDW}"
      --exported-interfaces-only --suppressions "${abi_dir}/not-compared.abignore"
      --no-show-locs --no-corpus-path --no-comp-dir-path --out-file "${abi_dir}/lib${library}.abi"
      "$<TARGET_FILE:${library}>")
  endforeach()
  add_custom_target(abi_check ${check} VERBATIM)
  add_custom_target(abi_baseline ${baseline} VERBATIM)
  foreach(target IN ITEMS abi_check abi_baseline)
    add_dependencies(${target} orv_common ext_cm)
  endforeach()
endif()
