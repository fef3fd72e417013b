# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# Runs a fuzz target on its seed corpus and then on so many inputs that it makes of it. What it
# finds on the way goes to a directory of the build, never to the corpus.
#   cmake -DPROGRAM= -DCORPUS= -DDICTIONARY= -DRUNS= -DLENGTH= -DOPTIONS= -DDIRECTORY=
#     -P RunFuzzer.cmake
file(REMOVE_RECURSE "${DIRECTORY}")
file(MAKE_DIRECTORY "${DIRECTORY}/found")
set(dictionary)
if(DICTIONARY)
  set(dictionary "-dict=${DICTIONARY}")
endif()
execute_process(
  COMMAND "${PROGRAM}" -runs=${RUNS} -seed=1 -max_len=${LENGTH} -timeout=20 -rss_limit_mb=4096
    -print_final_stats=1 ${OPTIONS} ${dictionary} "-artifact_prefix=${DIRECTORY}/" "${DIRECTORY}/found" "${CORPUS}"
  WORKING_DIRECTORY "${DIRECTORY}"
  RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} ended with ${result}; what it ended on is in ${DIRECTORY}")
endif()
