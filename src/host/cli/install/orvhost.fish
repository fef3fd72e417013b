# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# Completion for fish. Options, commands and their options come from the program's own help.

function __orvhost_value --argument-names word current help
    switch $word
        case -I --path
            __fish_complete_directories $current
        case --project -m --model -d --data --store --ext-cm -C --component --log-file -f --script \
            --connect --history --report-file --netconf-unix --netconf-passwords --host-key --shell-unix \
            --unconfirmed-note
            __fish_complete_path $current
        case --log-level
            printf '%s\n' off error warning info trace
        case '*'
            printf '%s\n' $help | sed -nE "s/^  $word TEXT:\{([^}]*)\}.*/\1/p" | tr ',' '\n'
    end
end

function __orvhost_words
    set -l words (commandline -opc)
    set -l current (commandline -ct)
    set -l program $words[1]
    set -l help ($program --help 2>/dev/null | string collect)
    set -l with_value (printf '%s\n' $help | sed -nE 's/^  (-[-a-zA-Z,]+) (TEXT|UINT).*/\1/p' | tr ',' '\n')
    set -l command
    # The words in front of the command: options, and their values.
    set -l at 2
    while test $at -le (count $words)
        set -l word $words[$at]
        if not string match -q -- '-*' $word
            set command $word
            break
        end
        set at (math $at + 1)
        if contains -- $word $with_value
            if test $at -gt (count $words)
                __orvhost_value $word $current $help
                return
            end
            set at (math $at + 1)
        end
    end
    if string match -q -- '-*' $current
        # A command has options of its own; what is used in place of one has those of the program.
        set -l own
        if test -n "$command"
            set own ($program --project= --json help $command 2>/dev/null |
                sed -nE 's/.*"options":\[([^]]*)\].*/\1 --json --help/p' | tr '",' '  ' | string split -n ' ')
        else if string match -q -- '--*=*' $current
            set -l parts (string split -m 1 = -- $current)
            printf "$parts[1]=%s\n" (__orvhost_value $parts[1] $parts[2] $help)
            return
        end
        if test -z "$own"
            set own (printf '%s\n' $help | sed -nE 's/^  (-[-a-zA-Z,]+).*/\1/p' | tr ',' '\n')
        end
        printf '%s\n' $own
    else if test -z "$command" -o "$command" = help
        $program --project= help 2>/dev/null | sed -nE '2,$s/^([a-z]+)  +(.*)/\1\t\2/p'
        if test -z "$command"
            printf '%s\n' $help | sed -nE "s/^'([a-z]+)[^']*' in place of a command.*/\1/p"
        end
    else
        __fish_complete_path $current
    end
end
complete -c orvhost -f -a '(__orvhost_words)'
