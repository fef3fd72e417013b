# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# Completion for bash. Options, commands and their options come from the program's own help.

_orvhost() {
    local program=${COMP_WORDS[0]} current=${COMP_WORDS[COMP_CWORD]} at=1
    local help with_value word= command= words
    help=$("$program" --help 2>/dev/null)
    with_value=$(sed -nE 's/^  (-[-a-zA-Z,]+) (TEXT|UINT).*/\1/p' <<<"$help" | tr ',\n' '  ')
    # The words in front of the command: options, and their values.
    while ((at < COMP_CWORD)); do
        word=${COMP_WORDS[at]}
        if [[ $word != -* ]]; then
            command=$word
            break
        fi
        ((at += 1))
        if [[ " $with_value " == *" $word "* ]]; then
            # bash makes three words of --report=tap.
            [[ ${COMP_WORDS[at]} == = ]] && ((at += 1))
            ((at += 1))
        fi
    done
    if ((at > COMP_CWORD)); then
        [[ $current == = ]] && current=
        case $word in
        -I | --path)
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            return
            ;;
        --project | -m | --model | -d | --data | --store | --ext-cm | -C | --component | --log-file | -f | --script | \
            --connect | --history | --report-file | --netconf-unix | --netconf-passwords | --host-key | --shell-unix | \
            --unconfirmed-note)
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        --log-level) words="off error warning info trace" ;;
        *) words=$(sed -nE "s/^  $word TEXT:\{([^}]*)\}.*/\1/p" <<<"$help" | tr ',' ' ') ;;
        esac
    elif [[ $current == -* ]]; then
        # A command has options of its own; what is used in place of one has those of the program.
        words=
        if [[ -n $command ]]; then
            words=$("$program" --project= --json help "$command" 2>/dev/null |
                sed -nE 's/.*"options":\[([^]]*)\].*/\1 --json --help/p' | tr '",' '  ')
        fi
        if [[ -z $words ]]; then
            words=$(sed -nE 's/^  (-[-a-zA-Z,]+).*/\1/p' <<<"$help" | tr ',' ' ')
        fi
    elif [[ -z $command || $command == help ]]; then
        words="$("$program" --project= help 2>/dev/null | sed -nE '2,$s/^([a-z]+)  .*/\1/p')"
        if [[ -z $command ]]; then
            words+=" $(sed -nE "s/^'([a-z]+)[^']*' in place of a command.*/\1/p" <<<"$help")"
        fi
    else
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -o filenames -F _orvhost orvhost
