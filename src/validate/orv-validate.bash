# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash

# Completion of orv-validate in bash.
_orv_validate() {
  local word=${COMP_WORDS[COMP_CWORD]} former=${COMP_WORDS[COMP_CWORD - 1]}
  case $former in
    --format) mapfile -t COMPREPLY < <(compgen -W "text tap junit" -- "$word") ;;
    --filter | --timeout | -j | --jobs) COMPREPLY=() ;;
    *)
      if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "--format --output --filter --list --in-process \
          --timeout --jobs --version --help" -- "$word")
      else
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
      fi
      ;;
  esac
}
complete -o filenames -F _orv_validate orv-validate
