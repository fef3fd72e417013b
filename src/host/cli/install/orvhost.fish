# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# Completion for fish. Options and commands come from the program's own help.

function __orvhost_words
    set -l program (commandline -opc)[1]
    $program --help 2>/dev/null | sed -n 's/^  \(-[-a-zA-Z,]*\).*/\1/p' | tr ',' '\n'
    $program help 2>/dev/null | sed -n '2,$s/^\([a-z]*\)  *\(.*\)/\1\t\2/p'
    printf 'check\texport\treplay\tserve\tstore\n' | tr '\t' '\n'
end
complete -c orvhost -a '(__orvhost_words)'
