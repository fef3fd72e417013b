# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# Completion for bash. Options and commands come from the program's own help.

_orvhost() {
    local program=${COMP_WORDS[0]} current=${COMP_WORDS[COMP_CWORD]}
    local previous=${COMP_WORDS[COMP_CWORD - 1]} others="check export init replay serve store"
    local command="" commands value word words
    case $previous in
    -I | --path)
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
        return
        ;;
    --project | -m | --model | -d | --data | -f | --script | -C | --component | --ext-cm | --log-file | --history | \
        --report-file | --store | --netconf-unix | --netconf-passwords | --host-key | --unconfirmed-note | \
        --shell-unix | --connect)
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
        ;;
    -*)
        # The value of another option: one of several words, or what only the user knows.
        value=$("$program" --help 2>/dev/null |
            sed -nE "s/^  ([-a-zA-Z,]*,)?$previous ((TEXT|UINT)[^ ]*).*/\2/p")
        if [[ $value ]]; then
            words=${value#*\{}
            [[ $value == *\{* ]] && mapfile -t COMPREPLY < <(compgen -W "$(tr , " " <<<"${words%%\}*}")" -- "$current")
            return
        fi
        ;;
    esac
    commands=$("$program" help 2>/dev/null | sed -n '2,$s/^\([a-z]*\)  .*/\1/p' | tr '\n' ' ')
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ " $commands $others " == *" $word "* ]]; then
            command=$word
            break
        fi
    done
    if [[ $current == -* && $command && " $commands " == *" $command "* ]]; then
        words="--json --help "$("$program" help "$command" 2>/dev/null | tr ' [](),.;' '\n' | grep -E '^--?[a-z]')
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current" | sort -u)
    elif [[ $current == -* ]]; then
        words=$("$program" --help 2>/dev/null | sed -n 's/^  \(-[-a-zA-Z,]*\).*/\1/p' | tr ',' ' ')
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    else
        [[ ! $command ]] && mapfile -t COMPREPLY < <(compgen -W "$commands $others" -- "$current")
        mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$current")
    fi
}
complete -o filenames -F _orvhost orvhost
