# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# Completion for bash. Options and commands come from the program's own help.

_orvhost() {
    local program=${COMP_WORDS[0]} current=${COMP_WORDS[COMP_CWORD]}
    local previous=${COMP_WORDS[COMP_CWORD - 1]} words
    case $previous in
    -I | --path)
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
        return
        ;;
    -d | --data | -f | --script | -C | --component | --ext-cm | --log-file | --history | --report-file | --store | \
        --netconf-unix | --netconf-passwords | --host-key | --unconfirmed-note | --shell-unix | --connect)
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
        ;;
    esac
    if [[ $current == -* ]]; then
        words=$("$program" --help 2>/dev/null | sed -n 's/^  \(-[-a-zA-Z,]*\).*/\1/p' | tr ',' ' ')
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    else
        words=$("$program" help 2>/dev/null | sed -n '2,$s/^\([a-z]*\)  .*/\1/p')
        mapfile -t COMPREPLY < <(compgen -W "$words check export replay serve store" -- "$current")
        mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$current")
    fi
}
complete -o filenames -F _orvhost orvhost
