# SPDX-License-Identifier: MIT

# Whether the words before this one begin so; how many there are may be said, too.
function __nimbo_after
    argparse 'count=' -- $argv
    set -l words (commandline -opc)
    test -z "$_flag_count" -o (count $words) = "$_flag_count"
    and string match -q -- "$argv *" "$words[2..-1] "
end

function __nimbo_first
    test (count (commandline -opc)) -eq 1
end

function __nimbo_reports
    __nimbo_after awake status; or contains -- (commandline -opc)[2] usage memory processes
end

# Whether no end was given before the last word, which may be the option that wants one.
function __nimbo_on
    __nimbo_after awake on; and not string match -qr -- '^--(for|until)$' (commandline -opc)[1..-2]
end

# Whether no command stands there yet that is to run.
function __nimbo_run
    __nimbo_after awake run; and not string match -qrv -- '^--.' (commandline -opc)[4..-1]
end

complete -c nimbo -f
complete -c nimbo -n __nimbo_first -a awake -d 'Keep the machine awake'
complete -c nimbo -n __nimbo_first -a usage -d 'What is left of AI allowances'
complete -c nimbo -n __nimbo_first -a memory -d 'The use of memory'
complete -c nimbo -n __nimbo_first -a processes -d 'The largest processes'
complete -c nimbo -n __nimbo_first -a open -d 'Show the dashboard, a page of it or the settings'
complete -c nimbo -n __nimbo_first -a quit -d 'End the running program'
complete -c nimbo -n __nimbo_first -l help -d 'List the commands'
complete -c nimbo -n __nimbo_first -l version
complete -c nimbo -n __nimbo_first -l diagnostics -d 'Report memory, temperature and processes'
complete -c nimbo -n __nimbo_first -l profile -d 'Measure what the program costs'
complete -c nimbo -n __nimbo_first -l claude-desktop-check -d 'Tell what the desktop application shows'

complete -c nimbo -n '__nimbo_after --count=2 awake' -a on -d 'Keep the machine awake'
complete -c nimbo -n '__nimbo_after --count=2 awake' -a off -d 'Stop that'
complete -c nimbo -n '__nimbo_after --count=2 awake' -a extend -d 'Move the end'
complete -c nimbo -n '__nimbo_after --count=2 awake' -a status -d 'Tell whether the machine is kept awake'
complete -c nimbo -n '__nimbo_after --count=2 awake' -a run -d 'Keep it awake while a command runs'
complete -c nimbo -n '__nimbo_after --count=2 awake' -a while -d 'Keep it awake until processes have ended'
complete -c nimbo -n '__nimbo_after --count=3 awake extend' -a '30m 1h 2h 4h 8h'
complete -c nimbo -n __nimbo_on -l for -xa '30m 1h 2h 4h 8h' -d 'For a length'
complete -c nimbo -n __nimbo_on -l until -x -d 'Until a time'
complete -c nimbo -n '__nimbo_after awake on; and not __fish_contains_opt display' -l display -d 'Keep the display on, too'
complete -c nimbo -n '__nimbo_after awake while; and not __fish_contains_opt display' -l display -d 'Keep the display on, too'
complete -c nimbo -n '__nimbo_after awake while; and not string match -q -- "-*" (commandline -ct)' -xa '(__fish_complete_pids)'
complete -c nimbo -n '__nimbo_run; and not __fish_contains_opt display' -l display -d 'Keep the display on, too'
complete -c nimbo -n '__nimbo_after awake run' -xa '(__fish_complete_subcommand --fcs-skip=3)'

complete -c nimbo -n '__nimbo_reports; and not __fish_contains_opt json' -l json -d 'One object for programs'
complete -c nimbo -n '__nimbo_reports; and not __fish_contains_opt short' -l short -d 'One short line'
complete -c nimbo -n '__nimbo_reports; and not __fish_contains_opt watch' -l watch -d 'That line again with each change'
complete -c nimbo -n '__nimbo_after --count=2 processes' -s n -x -d 'How many'
complete -c nimbo -n '__nimbo_after --count=2 open' -a 'usage resources awake settings'
