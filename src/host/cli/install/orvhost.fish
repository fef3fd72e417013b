# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# Completion for fish. Options and commands come from the program's own help.

function __orvhost_words
    set -l typed (commandline -opc)
    set -l program $typed[1]
    set -l previous $typed[-1]
    set -l others check export init replay serve store
    switch $previous
        case --project -m --model -I --path -d --data -f --script -C --component --ext-cm --log-file --history --report-file --store --netconf-unix --netconf-passwords --host-key --unconfirmed-note --shell-unix --connect
            return
        case '-*'
            # The value of another option: one of several words, or what only the user knows.
            set -l value ($program --help 2>/dev/null | sed -nE "s/^  ([-a-zA-Z,]*,)?$previous ((TEXT|UINT)[^ ]*).*/\2/p")
            if test -n "$value"
                echo $value | sed -nE 's/.*\{(.*)\}.*/\1/p' | tr ',' '\n'
                return
            end
    end
    set -l commands ($program help 2>/dev/null | sed -n '2,$s/^\([a-z]*\)  .*/\1/p')
    for word in $typed[2..-1]
        if contains -- $word $commands
            printf '%s\n' --json --help
            $program help $word 2>/dev/null | tr ' [](),.;' '\n' | grep -E '^--?[a-z]'
            return
        end
        if contains -- $word $others
            $program --help 2>/dev/null | sed -n 's/^  \(-[-a-zA-Z,]*\).*/\1/p' | tr ',' '\n'
            return
        end
    end
    $program --help 2>/dev/null | sed -n 's/^  \(-[-a-zA-Z,]*\).*/\1/p' | tr ',' '\n'
    $program help 2>/dev/null | sed -n '2,$s/^\([a-z]*\)  *\(.*\)/\1\t\2/p'
    printf '%s\n' $others
end
complete -c orvhost -a '(__orvhost_words)'
